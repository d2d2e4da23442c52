// Facts are written into catalogues of every style, and nothing beside them changes by a byte.
#include <QtTest>

#include "download/DownloadManager.h"
#include "host/CoreQt/ParseException.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"
#include "tools/signing/CatalogueMarkup.h"
#include "tools/signing/PackageFacts.h"
#include "tools/signing/PackageFiles.h"

namespace {

/** What stands for the digest in the rows below. */
const QByteArray digest(64, 'd');

QByteArray written(const QByteArray& document, const QList<int>& packages = {0})
{
    QMap<int, vx::PackageFacts> facts;
    for (const int package : packages) {
        facts.insert(package, {7, digest});
    }
    return vx::writePackageFacts(document, facts);
}

/** "HASH" in @p document stands for the digest. */
QByteArray expected(QByteArray document)
{
    return document.replace("HASH", digest);
}

void addRow(const char* name, const QByteArray& before, const QByteArray& after)
{
    QTest::newRow(name) << before << after;
}

} // namespace

class PackageFactsTest : public QObject
{
    Q_OBJECT

private slots:
    void values_data();
    void values();
    void additions_data();
    void additions();
    void surroundings_data();
    void surroundings();
    void everyPackageInTheOrderOfTheLibrary();
    void readsAsTheLibraryDoes();
    void refusals_data();
    void refusals();
    void secondTimeChangesNothing();
    void readsFilesOfAFolder();
};

void PackageFactsTest::values_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    addRow("elements", "<a><package><file-size>1MB</file-size><sha256>x</sha256></package></a>\n",
           "<a><package><file-size>7</file-size><sha256>HASH</sha256></package></a>\n");
    addRow("attributes", "<a><package file-size='1' sha256=\"\"/></a>\n",
           "<a><package file-size='7' sha256=\"HASH\"/></a>\n");
    addRow("element and attribute",
           "<a><package file-size=\"1\" sha256=\"x\"><file-size>2</file-size></package></a>\n",
           "<a><package file-size=\"1\" sha256=\"HASH\"><file-size>7</file-size></package></a>\n");
    addRow("only the first of two elements",
           "<a><package><sha256>x</sha256><sha256>y</sha256><file-size>1</file-size>"
           "</package></a>\n",
           "<a><package><sha256>HASH</sha256><sha256>y</sha256><file-size>7</file-size>"
           "</package></a>\n");
    addRow("file before package",
           "<a><package file-size=\"1\" sha256=\"x\"><file file-size=\"2\"><sha256>y</sha256>"
           "</file></package></a>\n",
           "<a><package file-size=\"1\" sha256=\"x\"><file file-size=\"7\"><sha256>HASH</sha256>"
           "</file></package></a>\n");
    addRow("package if the file has none",
           "<a><package sha256=\"x\"><file-size>1</file-size><file/></package></a>\n",
           "<a><package sha256=\"HASH\"><file-size>7</file-size><file/></package></a>\n");
    addRow("only the first file",
           "<a><package><file file-size=\"1\" sha256=\"x\"/><file file-size=\"2\" sha256=\"y\"/>"
           "</package></a>\n",
           "<a><package><file file-size=\"7\" sha256=\"HASH\"/>"
           "<file file-size=\"2\" sha256=\"y\"/></package></a>\n");
    addRow("whitespace around",
           "<a><package><file-size>\n\t1 </file-size><sha256> x\r\n</sha256></package></a>\n",
           "<a><package><file-size>\n\t7 </file-size><sha256> HASH\r\n</sha256></package></a>\n");
    addRow("comments inside",
           "<a><package><file-size><!-- > -->1<!-- b -->2</file-size><sha256>x<?y z?></sha256>"
           "</package></a>\n",
           "<a><package><file-size><!-- > -->7<!-- b --></file-size><sha256>HASH<?y z?></sha256>"
           "</package></a>\n");
    addRow("sections and markup inside",
           "<a><package><file-size><![CDATA[1 <2>]]></file-size><sha256>x <b>&lt;</b> y</sha256>"
           "</package></a>\n",
           "<a><package><file-size>7</file-size><sha256>HASH  </sha256></package></a>\n");
    addRow("empty elements",
           "<a><package><file-size/><sha256 lang='x' /><url>u</url></package></a>\n",
           "<a><package><file-size>7</file-size><sha256 lang='x' >HASH</sha256><url>u</url>"
           "</package></a>\n");
    addRow("elements without content",
           "<a><package><file-size></file-size><sha256> </sha256></package></a>\n",
           "<a><package><file-size>7</file-size><sha256> HASH</sha256></package></a>\n");
}

void PackageFactsTest::values()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    QCOMPARE(written(before), expected(after));
}

void PackageFactsTest::additions_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    addRow("element behind the size",
           "<a>\n  <package>\n    <file-size>1</file-size>\n  </package>\n</a>\n",
           "<a>\n  <package>\n    <file-size>7</file-size>\n    <sha256>HASH</sha256>\n"
           "  </package>\n</a>\n");
    addRow("element in one line",
           "<a><package><url>u</url><file-size>1</file-size></package></a>\n",
           "<a><package><url>u</url><file-size>7</file-size><sha256>HASH</sha256></package></a>\n");
    addRow("indent without blank lines",
           "<a><package>\n\n\t<file-size/><!-- size --></package></a>\n",
           "<a><package>\n\n\t<file-size>7</file-size>\n\t<sha256>HASH</sha256><!-- size -->"
           "</package></a>\n");
    addRow("attribute behind the size", "<a><package url='u' file-size='1' name='n'/></a>\n",
           "<a><package url='u' file-size='7' sha256='HASH' name='n'/></a>\n");
    addRow("attribute in a line of its own",
           "<a><package name=\"n\"\n         file-size = \"1\"\n         url=\"u\"/></a>\n",
           "<a><package name=\"n\"\n         file-size = \"7\"\n         sha256=\"HASH\"\n"
           "         url=\"u\"/></a>\n");
    addRow("both behind the address", "<a><package>\n <url>u</url>\n</package></a>\n",
           "<a><package>\n <url>u</url>\n <file-size>7</file-size>\n <sha256>HASH</sha256>\n"
           "</package></a>\n");
    addRow("both behind the attribute of the file",
           "<a><package sort='1'><file url=\"u>\"/></package></a>\n",
           "<a><package sort='1'><file url=\"u>\" file-size=\"7\" sha256=\"HASH\"/></package>"
           "</a>\n");
    addRow("size behind the digest", "<a><package><sha256>x</sha256></package></a>\n",
           "<a><package><sha256>HASH</sha256><file-size>7</file-size></package></a>\n");
    addRow("size of a set is overridden", "<a file-size=\"1\"><package url=\"u\"/></a>\n",
           "<a file-size=\"1\"><package url=\"u\" file-size=\"7\" sha256=\"HASH\"/></a>\n");
    addRow("digest of a set does not count", "<a sha256=\"x\"><package file-size=\"1\"/></a>\n",
           "<a sha256=\"x\"><package file-size=\"7\" sha256=\"HASH\"/></a>\n");
    addRow("nothing to go by", "<a><package/></a>\n",
           "<a><package file-size=\"7\" sha256=\"HASH\"/></a>\n");
    addRow("nothing but a name", "<a><package name=\"n\" ></package></a>\n",
           "<a><package name=\"n\" file-size=\"7\" sha256=\"HASH\" ></package></a>\n");
    addRow("nothing but a file", "<a><package name=\"n\"><file></file></package></a>\n",
           "<a><package name=\"n\"><file file-size=\"7\" sha256=\"HASH\"></file></package></a>\n");
}

void PackageFactsTest::additions()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    QCOMPARE(written(before), expected(after));
}

void PackageFactsTest::surroundings_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const QByteArray package = "<a><package file-size=\"1\" sha256=\"x\"/></a>";
    const QByteArray done = "<a><package file-size=\"7\" sha256=\"HASH\"/></a>";
    addRow("CRLF", "<a>\r\n <package>\r\n  <file-size>1</file-size>\r\n </package>\r\n</a>\r\n",
           "<a>\r\n <package>\r\n  <file-size>7</file-size>\r\n  <sha256>HASH</sha256>\r\n"
           " </package>\r\n</a>\r\n");
    addRow("last end of line", package, done + '\n');
    addRow("last end of line, LF", "<?xml version='1.0'?>\n" + package,
           "<?xml version='1.0'?>\n" + done + '\n');
    addRow("last end of line, CRLF", "<?xml version='1.0'?>\r\n" + package,
           "<?xml version='1.0'?>\r\n" + done + "\r\n");
    addRow("whitespace at the end", package + "\n \t", done + "\n \t\n");
    addRow("byte-order mark", "\xef\xbb\xbf" + package + '\n', "\xef\xbb\xbf" + done + '\n');
    addRow("Latin-1",
           "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a><package name=\"\xdcser\""
           " file-size=\"1\"/></a>\n",
           "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a><package name=\"\xdcser\""
           " file-size=\"7\" sha256=\"HASH\"/></a>\n");
    addRow("UTF-8", "<a><package comment=\"\xe2\x80\x9e\xc3\xbc\" file-size=\"1\"/></a>\n",
           "<a><package comment=\"\xe2\x80\x9e\xc3\xbc\" file-size=\"7\" sha256=\"HASH\"/></a>\n");
    addRow("document type",
           "<!DOCTYPE a [<!-- ]> --><?x ]> ?><!ENTITY s \"1>]\"><!ELEMENT a ANY>] >"
           "<a><package file-size=\"1\"><sha256>&s;</sha256></package></a>\n",
           "<!DOCTYPE a [<!-- ]> --><?x ]> ?><!ENTITY s \"1>]\"><!ELEMENT a ANY>] >"
           "<a><package file-size=\"7\"><sha256>HASH</sha256></package></a>\n");
    addRow("packages that are none",
           "<!-- <package> --><a><?x <package>?><comment><![CDATA[<package>]]></comment>"
           "<other><package/></other><package name=\"a>b\"/></a>\n",
           "<!-- <package> --><a><?x <package>?><comment><![CDATA[<package>]]></comment>"
           "<other><package/></other><package name=\"a>b\" file-size=\"7\""
           " sha256=\"HASH\"/></a>\n");
}

void PackageFactsTest::surroundings()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    QCOMPARE(written(before), expected(after));
}

void PackageFactsTest::everyPackageInTheOrderOfTheLibrary()
{
    const QByteArray document = "<a><package-set><package url=\"1\"/></package-set>"
                                "<package url=\"0\"/><x><package/></x>"
                                "<package-set><package-set><package url=\"2\"/></package-set>"
                                "</package-set></a>\n";
    QByteArray first = document;
    first.replace("url=\"0\"", "url=\"0\" file-size=\"7\" sha256=\"HASH\"");
    QCOMPARE(written(document, {0}), expected(first));
    QByteArray all = first;
    all.replace("url=\"1\"", "url=\"1\" file-size=\"7\" sha256=\"HASH\"");
    all.replace("url=\"2\"", "url=\"2\" file-size=\"7\" sha256=\"HASH\"");
    QCOMPARE(written(document, {0, 1, 2}), expected(all));
    QCOMPARE(written(document, {}), document);
}

void PackageFactsTest::readsAsTheLibraryDoes()
{
    QByteArray document =
        "<a url=\"u0\"><base-url>http://h.example/</base-url><package/>"
        "<package url=\"u1&amp;\"><file/></package><package url=\"x\"><url>u2</url></package>"
        "<package-set base-url=\"http://i.example/\"><package url=\"x\"><file>"
        "<url>u3</url><base-url/></file><file-size>\n 1 <!-- kB? --> </file-size></package>"
        "</package-set></a>\n";
    document = written(document, {0, 1, 2, 3});
    QBuffer buffer(&document);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const vx::PackageInfoList packages = vx::DownloadManager::parseXML(&buffer);
    const vx::CatalogueMarkup markup(document);
    QCOMPARE(packages.size(), 4);
    QCOMPARE(static_cast<int>(markup.packages().size()), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(markup.packages().at(static_cast<size_t>(i)).address(), packages.at(i).url);
        QCOMPARE(packages.at(i).fileSize, decltype(vx::PackageInfo::fileSize){7});
    }
}

void PackageFactsTest::refusals_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("no XML") << QByteArray("<a><package>");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("package from an entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY p \"<package/>\">]><a><package/>&p;</a>\n");
    QTest::newRow("package in no encoding of its own")
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-7\"?><a>+ADw-package/+AD4-</a>\n");
    const char16_t wide[] = u"\ufeff<a><package/></a>\n";
    QTest::newRow("UTF-16") << QByteArray(reinterpret_cast<const char*>(wide),
                                          sizeof wide - sizeof wide[0]);
}

void PackageFactsTest::refusals()
{
    QFETCH(QByteArray, document);

    VX_VERIFY_THROWS(written(document), vx::ParseException);
}

void PackageFactsTest::secondTimeChangesNothing()
{
    const QByteArray once = written("<a><package>\n <url>u</url></package></a>");
    QCOMPARE(written(once), once);
}

void PackageFactsTest::readsFilesOfAFolder()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("a b.zip"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("abc") == 3);
    file.close();
    const QByteArray result =
        vx::writeFactsOfFolder("<a base-url=\"http://h.example/x/\"><package url=\"a%20b.zip\"/>"
                               "<package url=\"missing.zip\"/><package/></a>\n",
                               folder.path());
    // The digest of "abc" as in FIPS 180-2.
    QCOMPARE(result,
             QByteArray("<a base-url=\"http://h.example/x/\"><package url=\"a%20b.zip\""
                        " file-size=\"3\" sha256=\"ba7816bf8f01cfea414140de5dae2223b00361a396177a9c"
                        "b410ff61f20015ad\"/><package url=\"missing.zip\"/><package/></a>\n"));
}

VX_TEST_MAIN(PackageFactsTest)
#include "tst_PackageFacts.moc"
