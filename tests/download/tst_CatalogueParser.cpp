#include <QtTest>
#include <QtXml/QDomDocument>

#include <stdexcept>

#include "tests/download/CatalogueProbe.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"

using namespace vx;
using namespace vx::test;

namespace {

/** The single package of a catalogue with @p content in its root. */
PackageInfo onlyPackage(const QByteArray& content)
{
    const PackageInfoList packages = parseText("<softwareList>" + content + "</softwareList>");
    return packages.size() == 1 ? packages.first() : PackageInfo("not one package");
}

QStringList namesOf(const PackageInfoList& packages)
{
    QStringList names;
    for (const PackageInfo& package : packages) {
        names.append(package.name);
    }
    return names;
}

/** A device whose reading ends in another exception than that of the parser. */
class ThrowingDevice : public QIODevice
{
protected:
    qint64 readData(char*, qint64) override { throw std::runtime_error("no"); }
    qint64 writeData(const char*, qint64) override { return -1; }
};

} // namespace

class CatalogueParserTest : public QObject
{
    Q_OBJECT

private slots:
    void fillsEveryField();
    void leavesWhatHasNoTag();
    void missingFieldsAreEmpty();
    void singleField_data();
    void singleField();
    void nearerLevelsHideFartherOnes();
    void emptyValueHidesTheSet();
    void firstElementOfALevelCounts();
    void onlyTheFirstFileIsRead();
    void fileAloneInheritsEverything();
    void wordsOfAllLevelsAreUnited();
    void urlIsPlainConcatenation_data();
    void urlIsPlainConcatenation();
    void releaseNotes_data();
    void releaseNotes();
    void severalUrlsOfALanguageStay();
    void readmeIsApart();
    void packagesComeBeforeNestedSets();
    void structureIsReadInSetsOnly_data();
    void structureIsReadInSetsOnly();
    void rootMayHaveAnyName();
    void rootNamedLikeAFieldIsOne();
    void parseSetAppends();
    void parsePackageAddsToSets();
    void noPackageIsNoError_data();
    void noPackageIsNoError();
    void brokenDocumentIsLogged_data();
    void brokenDocumentIsLogged();
    void otherExceptionsPass();
    void deviceStaysOpen();
};

void CatalogueParserTest::fillsEveryField()
{
    const PackageInfo package = onlyPackage(R"(<package>
        <type>Camera Firmware</type> <name>fw</name> <public-name>Firmware</public-name>
        <platform>Dome-24, Mini-12</platform>
        <release>4.2.1</release> <public-release>V4</public-release> <status>STABLE</status>
        <release-date>2012-06-01 12:30:00</release-date>
        <base-url>http://host/files/</base-url> <url>fw.mpkg.zip</url>
        <language>en de</language> <file-size>12MB</file-size> <comment>Read &amp; install</comment>
        <release-notes><language>en</language><url>http://host/notes</url></release-notes>
        <readme><language>de</language><url>http://host/readme</url></readme>
        </package>)");
    QCOMPARE(package.type, QString("Camera Firmware"));
    QCOMPARE(package.name, QString("fw"));
    QCOMPARE(package.publicName, QString("Firmware"));
    QCOMPARE(package.platforms, QStringSet({"Dome-24", "Mini-12"}));
    QCOMPARE(package.release, QString("4.2.1"));
    QCOMPARE(package.publicRelease, QString("V4"));
    QCOMPARE(package.status, QString("STABLE"));
    QCOMPARE(package.date, QDateTime(QDate(2012, 6, 1), QTime(12, 30)));
    QCOMPARE(package.url, QUrl("http://host/files/fw.mpkg.zip"));
    QCOMPARE(package.languages, QStringSet({"en", "de"}));
    QCOMPARE(package.fileSize, quintptr(12582912));
    QCOMPARE(package.comment, QString("Read & install"));
    QCOMPARE(package.relNotes, UrlMap({{"en", QUrl("http://host/notes")}}));
    QCOMPARE(package.readme, UrlMap({{"de", QUrl("http://host/readme")}}));
    QCOMPARE(package.packageType, QString("mpkg"));
}

void CatalogueParserTest::leavesWhatHasNoTag()
{
    const PackageInfo package = onlyPackage(
        R"(<package known="1" localFile="/x" confirmInstall="1" flags="3" packageType="exe"/>)");
    QVERIFY(!package.flags.known);
    QVERIFY(!package.flags.superseded);
    QVERIFY(package.localFile.isNull());
    QVERIFY(!package.confirmInstall);
    QVERIFY(package.packageType.isEmpty());
}

void CatalogueParserTest::missingFieldsAreEmpty()
{
    LogCapture log;
    const PackageInfo package =
        onlyPackage("<package><name>fw</name><release>1</release></package>");
    QVERIFY(package.publicName.isEmpty());
    QVERIFY(package.publicRelease.isEmpty());
    QVERIFY(package.date.isNull());
    QVERIFY(package.url.isEmpty());
    QCOMPARE(package.fileSize, quintptr(0));
    QVERIFY(package.platforms.isEmpty());
    QVERIFY(package.relNotes.isEmpty());
    // The suffix of no URL is suspicious, and nothing else is worth a line.
    QCOMPARE(log.lines(3).size(), 1);
    QVERIFY(log.lines(2).isEmpty());
}

void CatalogueParserTest::singleField_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("type");

    const auto add = [](const char* row, const char* content, const char* type) {
        QTest::newRow(row) << QByteArray(content) << type;
    };
    add("element", "<package><type>a</type></package>", "a");
    add("attribute", "<package type='a'/>", "a");
    add("element before attribute", "<package type='a'><type>b</type></package>", "b");
    add("set", "<package-set type='a'><package/></package-set>", "a");
    add("nested set", "<package-set type='a'><package-set><package/></package-set></package-set>",
        "a");
    add("nested set's own",
        "<package-set type='a'><package-set type='b'><package/></package-set>"
        "</package-set>",
        "b");
    add("root", "<type>a</type><package/>", "a");
    add("behind the package", "<package/><type>a</type>", "a");
    add("package's own", "<package-set type='a'><package type='b'/></package-set>", "b");
    add("file's own",
        "<package-set type='a'><package type='b'><file type='c'/></package>"
        "</package-set>",
        "c");
    add("file's element", "<package type='b'><file><type>c</type></file></package>", "c");
    add("text in pieces", "<package><type>a<![CDATA[<b>]]><x>c</x><!-- d -->e</type></package>",
        "a<b>ce");
    add("case matters", "<package><Type>a</Type></package>", "");
    add("not within an unknown element", "<package><x><type>a</type></x></package>", "");
    add("white space stays", "<package type=' a '/>", " a ");
}

void CatalogueParserTest::singleField()
{
    QFETCH(QByteArray, content);
    QTEST(onlyPackage(content).type, "type");
}

void CatalogueParserTest::nearerLevelsHideFartherOnes()
{
    // A nearer attribute goes before a farther element.
    QCOMPARE(onlyPackage("<package-set><name>set</name><package name='own'/></package-set>").name,
             QString("own"));
    QCOMPARE(onlyPackage("<package-set name='set'><package><name>own</name></package>"
                         "</package-set>")
                 .name,
             QString("own"));
}

void CatalogueParserTest::emptyValueHidesTheSet()
{
    QVERIFY(onlyPackage("<name>set</name><package><name/></package>").name.isEmpty());
    QVERIFY(onlyPackage("<name>set</name><package name=''/>").name.isEmpty());
    QVERIFY(onlyPackage("<name>set</name><package><name></name><name>b</name></package>")
                .name.isEmpty());
}

void CatalogueParserTest::firstElementOfALevelCounts()
{
    QCOMPARE(onlyPackage("<package><name>a</name><name>b</name></package>").name, QString("a"));
}

void CatalogueParserTest::onlyTheFirstFileIsRead()
{
    const PackageInfo package = onlyPackage("<package><file><name>a</name></file>"
                                            "<file type='b' platform='c'><name>d</name></file>"
                                            "</package>");
    QCOMPARE(package.name, QString("a"));
    QVERIFY(package.type.isEmpty());
    QVERIFY(package.platforms.isEmpty());
}

void CatalogueParserTest::fileAloneInheritsEverything()
{
    const PackageInfo package =
        onlyPackage("<type>set</type><package name='own'><file/></package>");
    QCOMPARE(package.type, QString("set"));
    QCOMPARE(package.name, QString("own"));
}

void CatalogueParserTest::wordsOfAllLevelsAreUnited()
{
    const PackageInfo package = onlyPackage(R"(<platform>a</platform><platform>b</platform>
        <package-set platform="c; d"><package platform="a">
        <platform>e</platform><platform/><file platform=" f "/></package></package-set>)");
    QCOMPARE(package.platforms, QStringSet({"a", "b", "c", "d", "e", "f"}));
}

void CatalogueParserTest::urlIsPlainConcatenation_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("packageType");

    const auto add = [](const char* row, const char* content, const char* url, const char* type) {
        QTest::newRow(row) << QByteArray(content) << url << type;
    };
    add("both", "<package base-url='http://host/' url='a.tar.gz'/>", "http://host/a.tar.gz",
        "tar.gz");
    add("no separator", "<package base-url='http://host/a' url='b.exe'/>", "http://host/ab.exe",
        "exe");
    add("nothing is resolved", "<package base-url='http://host/a/' url='/b.exe'/>",
        "http://host/a//b.exe", "exe");
    add("two whole addresses", "<package base-url='http://host/' url='http://other/b.exe'/>",
        "http://host/http://other/b.exe", "exe");
    add("url alone", "<package url='http://host/a.zip'/>", "http://host/a.zip", "zip");
    add("base alone", "<package base-url='http://host/a.dmg'/>", "http://host/a.dmg", "dmg");
    add("from several levels",
        "<base-url>http://host/</base-url><package><file url='a.msi'/>"
        "</package>",
        "http://host/a.msi", "msi");
    add("neither", "<package/>", "", "");
}

void CatalogueParserTest::urlIsPlainConcatenation()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, url);
    const PackageInfo package = onlyPackage(content);
    QCOMPARE(package.url, QUrl(url));
    QTEST(package.packageType, "packageType");
}

void CatalogueParserTest::releaseNotes_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("url");

    const auto add = [](const char* row, const char* content, const char* language,
                        const char* url) {
        QTest::newRow(row) << QByteArray(content) << language << url;
    };
    add("elements",
        "<package><release-notes><language>de</language><url>http://n</url>"
        "</release-notes></package>",
        "de", "http://n");
    add("attributes of the element",
        "<package><release-notes language='de' url='http://n'/>"
        "</package>",
        "de", "http://n");
    add("no language anywhere", "<package><release-notes url='http://n'/></package>", "en",
        "http://n");
    add("package's language", "<package language='fr'><release-notes url='http://n'/></package>",
        "fr", "http://n");
    add("set's language",
        "<package-set language='fr'><package><release-notes url='http://n'/>"
        "</package></package-set>",
        "fr", "http://n");
    add("language taken whole",
        "<package language='en de'><release-notes url='http://n'/>"
        "</package>",
        "en de", "http://n");
    add("first language element",
        "<package><language>de</language><language>fr</language>"
        "<release-notes url='http://n'/></package>",
        "de", "http://n");
    add("empty language",
        "<language>fr</language><package><release-notes language='' "
        "url='http://n'/></package>",
        "en", "http://n");
    add("package's url", "<package url='http://p'><release-notes language='de'/></package>", "de",
        "http://p");
    add("no url anywhere", "<package><release-notes language='de'/></package>", "de", "");
    add("text is not read", "<package><release-notes>http://n</release-notes></package>", "en", "");
    add("base-url is not put in front",
        "<package base-url='http://b/'><release-notes url='n'/>"
        "</package>",
        "en", "n");
    add("on the file", "<package><file><release-notes url='http://n'/></file></package>", "en",
        "http://n");
    add("on the set", "<package-set><release-notes url='http://n'/><package/></package-set>", "en",
        "http://n");
    add("on the set, the set's language",
        "<package-set language='de'><release-notes url='http://n'/>"
        "<package language='fr'/></package-set>",
        "de", "http://n");
    add("in a file of its own",
        "<package language='en'><release-notes language='de'>"
        "<file language='fr' url='http://n'/></release-notes></package>",
        "fr", "http://n");
    add("partly in a file of its own",
        "<package><release-notes language='de'>"
        "<file url='http://n'/></release-notes></package>",
        "de", "http://n");
    add("attribute", "<package release-notes='http://n'/>", "en", "http://n");
    add("attribute of the set", "<package-set release-notes='http://n'><package/></package-set>",
        "en", "http://n");
    add("attribute and language", "<package language='de' release-notes='http://n'/>", "de",
        "http://n");
    add("attribute, the set's language",
        "<package-set language='fr'>"
        "<package release-notes='http://n'/></package-set>",
        "fr", "http://n");
    add("attribute beside a file",
        "<package release-notes='http://n' language='en'>"
        "<file language='de'/></package>",
        "de", "http://n");
    add("attribute of a set with a file",
        "<package-set release-notes='http://n' language='en'>"
        "<file language='de'/><package/></package-set>",
        "de", "http://n");
    add("attribute, another url", "<package url='http://p' release-notes='http://n'/>", "en",
        "http://n");
}

void CatalogueParserTest::releaseNotes()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, language);
    QFETCH(QString, url);
    QCOMPARE(onlyPackage(content).relNotes, UrlMap({{language, QUrl(url)}}));
}

void CatalogueParserTest::severalUrlsOfALanguageStay()
{
    const PackageInfo package = onlyPackage(R"(<release-notes url="root"/>
        <package-set release-notes="set"><package release-notes="attribute">
        <release-notes url="first"/><release-notes url="second"/>
        <file><release-notes url="file"/></file></package></package-set>)");
    // The last one inserted comes first: the outermost level wins.
    const QList<QUrl> expected = {QUrl("root"),   QUrl("set"),   QUrl("attribute"),
                                  QUrl("second"), QUrl("first"), QUrl("file")};
    QCOMPARE(package.relNotes.values(), expected);
    QCOMPARE(package.releaseNotesUrl("en", "en"), QUrl("root"));
}

void CatalogueParserTest::readmeIsApart()
{
    const PackageInfo package =
        onlyPackage("<package release-notes='http://n'><readme url='http://r'/></package>");
    QCOMPARE(package.relNotes, UrlMap({{"en", QUrl("http://n")}}));
    QCOMPARE(package.readme, UrlMap({{"en", QUrl("http://r")}}));
}

void CatalogueParserTest::packagesComeBeforeNestedSets()
{
    const PackageInfoList packages = parseText(R"(<softwareList>
        <package-set><package name="c"/>
            <package-set><package name="e"/></package-set>
        <package name="d"/></package-set>
        <package name="a"/>
        <package-set><package name="f"/></package-set>
        <package name="b"/></softwareList>)");
    QCOMPARE(namesOf(packages), QStringList({"a", "b", "c", "d", "e", "f"}));
}

void CatalogueParserTest::structureIsReadInSetsOnly_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("package in a package") << QByteArray("<package><package/></package>");
    QTest::newRow("package in a file") << QByteArray("<package><file><package/></file></package>");
    QTest::newRow("set in a package")
        << QByteArray("<package><package-set><package/></package-set></package>");
    QTest::newRow("set in a file")
        << QByteArray("<package><file><package-set><package/></package-set></file></package>");
    QTest::newRow("package in an unknown element") << QByteArray("<package/><x><package/></x>");
    QTest::newRow("package in a field") << QByteArray("<package/><name><package/></name>");
    QTest::newRow("package in capitals") << QByteArray("<package/><Package/>");
}

void CatalogueParserTest::structureIsReadInSetsOnly()
{
    QFETCH(QByteArray, content);
    QCOMPARE(parseText("<softwareList>" + content + "</softwareList>").size(), 1);
}

void CatalogueParserTest::rootMayHaveAnyName()
{
    for (const QByteArray root : {"softwareList", "package-set", "package", "file", "x", "list"}) {
        const PackageInfoList packages =
            parseText('<' + root + " type='a'><package name='b'/></" + root + '>');
        QCOMPARE(packages.size(), 1);
        QCOMPARE(packages.first().type, QString("a"));
        QCOMPARE(packages.first().name, QString("b"));
    }
}

void CatalogueParserTest::rootNamedLikeAFieldIsOne()
{
    // The climb ends above the document, whose child the root is.
    const PackageInfoList packages =
        parseText("<comment><package><name>a</name></package><package comment='own'/></comment>");
    QCOMPARE(packages.size(), 2);
    QCOMPARE(packages.at(0).comment, QString("a"));
    QCOMPARE(packages.at(1).comment, QString("own"));

    const PackageInfoList words =
        parseText("<platform platform='p'><package name='x'><name>a b</name></package></platform>");
    QCOMPARE(words.first().platforms, QStringSet({"a", "b", "p"}));

    const PackageInfoList notes =
        parseText("<readme url='http://r' language='de'><package/></readme>");
    QCOMPARE(notes.first().readme, UrlMap({{"de", QUrl("http://r")}}));
}

void CatalogueParserTest::parseSetAppends()
{
    QDomDocument document;
    document.setContent(QByteArray("<list type='a'><package-set><package/></package-set></list>"));
    PackageInfoList packages = {PackageInfo("first")};
    // From the middle of the tree the fields above are still found.
    CatalogueProbe::parseSet(document.documentElement().firstChildElement(), packages);
    QCOMPARE(packages.size(), 2);
    QCOMPARE(packages.at(0).type, QString("first"));
    QCOMPARE(packages.at(1).type, QString("a"));
    CatalogueProbe::parseSet(QDomElement(), packages);
    QCOMPARE(packages.size(), 2);
}

void CatalogueParserTest::parsePackageAddsToSets()
{
    QDomDocument document;
    document.setContent(QByteArray("<package platform='new' language='new' release-notes='n'/>"));
    PackageInfo info("old", "old", "old", "old", QDateTime::currentDateTime(), {"old"}, {"old"},
                     "old", "old");
    info.flags.known = true;
    info.localFile = "/x";
    info.relNotes.insert("old", QUrl("o"));
    CatalogueProbe::parsePackage(document.documentElement(), info);
    QCOMPARE(info.platforms, QStringSet({"old", "new"}));
    QCOMPARE(info.languages, QStringSet({"old", "new"}));
    QCOMPARE(info.relNotes, UrlMap({{"old", QUrl("o")}, {"new", QUrl("n")}}));
    QVERIFY(info.type.isEmpty());
    QVERIFY(info.publicName.isEmpty());
    QVERIFY(!info.date.isValid());
    QVERIFY(info.flags.known);
    QCOMPARE(info.localFile, QString("/x"));
}

void CatalogueParserTest::noPackageIsNoError_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("empty document") << QByteArray();
    QTest::newRow("empty root") << QByteArray("<softwareList/>");
    QTest::newRow("fields alone") << QByteArray("<softwareList><name>a</name></softwareList>");
    QTest::newRow("empty sets") << QByteArray("<softwareList><package-set/></softwareList>");
    QTest::newRow("another document") << QByteArray("<html><body/></html>");
}

void CatalogueParserTest::noPackageIsNoError()
{
    QFETCH(QByteArray, document);
    LogCapture log;
    QVERIFY(parseText(document).isEmpty());
    QVERIFY(log.lines(2).isEmpty());
    QVERIFY(log.lines(3).isEmpty());
}

void CatalogueParserTest::brokenDocumentIsLogged_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("cut off") << QByteArray("<softwareList><package>");
    QTest::newRow("broken behind a package") << QByteArray("<softwareList><package/></x>");
    QTest::newRow("no document at all") << QByteArray("404 not found");
}

void CatalogueParserTest::brokenDocumentIsLogged()
{
    QFETCH(QByteArray, document);
    LogCapture log;
    QVERIFY(parseText(document).isEmpty());
    QCOMPARE(log.count(2, "XML parser error"), 1);
    QCOMPARE(log.lines(2).size(), 1);
    QVERIFY(log.lines(1).isEmpty());
    QVERIFY(log.lines(3).isEmpty());
}

void CatalogueParserTest::otherExceptionsPass()
{
    LogCapture log;
    ThrowingDevice device;
    device.open(QIODevice::ReadOnly);
    VX_VERIFY_THROWS(DownloadManager::parseXML(&device), std::runtime_error);
    QVERIFY(log.lines(2).isEmpty());
}

void CatalogueParserTest::deviceStaysOpen()
{
    QBuffer device;
    device.setData("<softwareList><package/></softwareList>");
    device.open(QIODevice::ReadOnly);
    QCOMPARE(DownloadManager::parseXML(&device).size(), 1);
    QVERIFY(device.isOpen());
}

VX_TEST_MAIN(CatalogueParserTest)
#include "tst_CatalogueParser.moc"
