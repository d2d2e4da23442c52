#include <QtTest>
#include <QtXml/QDomDocument>

#include "download/internal/catalogue/ReadingBudget.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tests/download/CatalogueProbe.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Repeats.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

constexpr int million = 1000 * 1000;

/**
 * Packages that read a million characters each and leave little of the budget to what follows.
 * Words alone would take minutes to exhaust it under sanitizers.
 */
constexpr int packagesBefore = 72;

/** What of @p length characters it takes behind those, read once for each package. */
int tooManyOf(int length)
{
    return static_cast<int>((ReadingBudget::maximum - qint64(packagesBefore) * million) / length) +
           1;
}

QByteArray catalogue(const QByteArray& fields, int packages, const QByteArray& package)
{
    return "<softwareList>" + fields + package.repeated(packages) + "</softwareList>";
}

QByteArray mostOfTheBudget()
{
    return "<package-set><file-size>" + QByteArray(million, '7') + "</file-size>" +
           QByteArray("<package/>").repeated(packagesBefore) + "</package-set>";
}

/** A catalogue of two sets, the first of which reads most of what may be read. */
QByteArray afterMostOfTheBudget(const QByteArray& set)
{
    return "<softwareList>" + mostOfTheBudget() + "<package-set>" + set +
           "</package-set></softwareList>";
}

QByteArray words(int count)
{
    QByteArray list;
    for (int i = 0; i < count; ++i) {
        list += QByteArray::number(i) + ' ';
    }
    return list;
}

/** The content of a set whose packages inherit so many words, each with one more of its own. */
QByteArray manyWords(int inherited, int packages)
{
    QByteArray own;
    for (int i = 0; i < packages; ++i) {
        own += "<package platform='own" + QByteArray::number(i) + "'/>";
    }
    return "<platform>" + words(inherited) + "</platform>" + own;
}

} // namespace

class CatalogueBoundsTest : public QObject
{
    Q_OBJECT

private slots:
    void refusesWhatInheritsTooMuch_data();
    void refusesWhatInheritsTooMuch();
    void readsWhatAHostBuiltWithoutLimit();
    void sharesSingleValues();
    void sharesWordsOfSets();
    void sharesWordsThatPackagesAdd_data();
    void sharesWordsThatPackagesAdd();
    void readsManyWordsOfTheirOwn();
    void refusesTooManyWordsOfTheirOwn();
    void readsManyUrlsWithoutLanguage();
    void readsManyFieldsBesideManyPackages();
    void readsDeepNesting();
};

void CatalogueBoundsTest::refusesWhatInheritsTooMuch_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<int>("tooMany");

    const QByteArray longText(million, '7');
    const auto field = [&longText](const QByteArray& tag) {
        return '<' + tag + '>' + longText + "</" + tag + '>';
    };
    QTest::newRow("sizes") << field("file-size") << QByteArray("<package/>") << tooManyOf(million);
    QTest::newRow("languages of notes")
        << field("language") << QByteArray("<package><release-notes/></package>")
        << tooManyOf(million);
    QTest::newRow("notes") << QByteArray("<readme/>").repeated(10000) << QByteArray("<package/>")
                           << tooManyOf(10000 * int(ReadingBudget::entry));
}

void CatalogueBoundsTest::refusesWhatInheritsTooMuch()
{
    QFETCH(QByteArray, fields);
    QFETCH(QByteArray, package);
    QFETCH(int, tooMany);
    LogCapture log;
    const auto packages = [&](int count) {
        return parseText(afterMostOfTheBudget(fields + package.repeated(count))).size();
    };
    QCOMPARE(packages(3), packagesBefore + 3);
    QCOMPARE(log.count(2, "XML parser error"), 0);
    QCOMPARE(packages(tooMany), 0);
    QCOMPARE(log.count(2, "XML parser error"), 1);
}

// A document that is there already has its memory; only what comes from outside is bounded.
void CatalogueBoundsTest::readsWhatAHostBuiltWithoutLimit()
{
    QDomDocument document;
    QVERIFY(document.setContent(catalogue("<platform>" + words(20000) + "</platform>", 300,
                                          "<package name='p' platform='own' url='a.zip'/>")));
    PackageInfoList packages;
    CatalogueProbe::parseSet(document.documentElement(), packages);
    QCOMPARE(packages.size(), 300);
    for (const PackageInfo& package : qAsConst(packages)) {
        QCOMPARE(package.platforms.size(), 20001);
        QCOMPARE(package.packageType, QString("zip"));
    }
}

void CatalogueBoundsTest::sharesSingleValues()
{
    const QByteArray comment = "<comment>" + QByteArray(million, 'c') + "</comment>";
    const PackageInfoList packages = parseText(catalogue(comment, 5000, "<package url='a.zip'/>"));
    QCOMPARE(packages.size(), 5000);
    QCOMPARE(packages.last().comment.size(), million);
    // Copies of it would take ten gigabytes.
    QCOMPARE(packages.last().comment.constData(), packages.first().comment.constData());
}

void CatalogueBoundsTest::sharesWordsOfSets()
{
    const QByteArray platforms = "<platform>" + words(20000) + "</platform>";
    const PackageInfoList packages =
        parseText(catalogue(platforms, 5000, "<package><file url='a.zip'/></package>"));
    QCOMPARE(packages.size(), 5000);
    QCOMPARE(packages.first().platforms.size(), 20000);
    const QStringSet::const_iterator first = packages.first().platforms.constFind("1");
    const QStringSet::const_iterator last = packages.last().platforms.constFind("1");
    QCOMPARE(&*last, &*first);
}

void CatalogueBoundsTest::sharesWordsThatPackagesAdd_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::newRow("attribute") << QByteArray("<package platform='own'/>");
    QTest::newRow("element") << QByteArray("<package><platform>own</platform></package>");
    QTest::newRow("on the file") << QByteArray("<package><file platform='own'/></package>");
    QTest::newRow("several") << QByteArray(
        "<package platform='own'><platform>other</platform><platform>another</platform></package>");
}

void CatalogueBoundsTest::sharesWordsThatPackagesAdd()
{
    QFETCH(QByteArray, package);
    const QByteArray set = "<package-set>" + package.repeated(2500) + "</package-set>";
    const PackageInfoList packages =
        parseText(catalogue("<platform>" + words(20000) + "</platform>" + set, 2500, package));
    QCOMPARE(packages.size(), 5000);
    QVERIFY(packages.first().platforms.contains("own"));
    QVERIFY(packages.first().platforms.contains("19999"));
    // Copies of it would take gigabytes.
    QCOMPARE(&*packages.last().platforms.constFind("1"),
             &*packages.first().platforms.constFind("1"));
}

void CatalogueBoundsTest::readsManyWordsOfTheirOwn()
{
    constexpr int count = repeats(14000);
    const PackageInfoList packages =
        parseText("<softwareList>" + manyWords(300, count) + "</softwareList>");
    QCOMPARE(packages.size(), count);
    QCOMPARE(packages.last().platforms.size(), 301);
}

void CatalogueBoundsTest::refusesTooManyWordsOfTheirOwn()
{
    const int tooMany = tooManyOf(20000 * int(ReadingBudget::entry));
    LogCapture log;
    QCOMPARE(parseText(afterMostOfTheBudget(manyWords(20000, 3))).size(), packagesBefore + 3);
    QCOMPARE(log.count(2, "XML parser error"), 0);
    QVERIFY(parseText(afterMostOfTheBudget(manyWords(20000, tooMany))).isEmpty());
    QCOMPARE(log.count(2, "XML parser error"), 1);
}

void CatalogueBoundsTest::readsManyUrlsWithoutLanguage()
{
    const PackageInfoList packages =
        parseText("<softwareList><package>" + QByteArray("<readme/>").repeated(50000) +
                  "<language>de</language><url>http://u</url></package></softwareList>");
    QCOMPARE(packages.first().readme.size(), 50000);
    QCOMPARE(packages.first().readme.lastKey(), QString("de"));
}

void CatalogueBoundsTest::readsManyFieldsBesideManyPackages()
{
    const QByteArray fields = QByteArray("<x/><name>n</name>").repeated(20000);
    const PackageInfoList packages = parseText(catalogue(fields, 20000, "<package url='a.zip'/>"));
    QCOMPARE(packages.size(), 20000);
    QCOMPARE(packages.last().name, QString("n"));
}

void CatalogueBoundsTest::readsDeepNesting()
{
    constexpr int depth = XmlUtils::maximumDepth - 2; // without the root and the innermost package
    const QByteArray set = "<package-set><package url='a.zip'/>";
    const PackageInfoList packages =
        parseText("<softwareList type='t'>" + set.repeated(depth) +
                  QByteArray("</package-set>").repeated(depth) + "</softwareList>");
    QCOMPARE(packages.size(), depth);
    QCOMPARE(packages.last().type, QString("t"));
    // Deeper than any document may be: refused, and not run into the end of the stack.
    LogCapture log;
    QVERIFY(parseText("<softwareList>" + set.repeated(depth + 1) +
                      QByteArray("</package-set>").repeated(depth + 1) + "</softwareList>")
                .isEmpty());
    QCOMPARE(log.count(2, "XML parser error"), 1);
}

VX_TEST_MAIN(CatalogueBoundsTest)
#include "tst_CatalogueBounds.moc"
