#include <QDomDocument>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "trust/internal/PackageDigests.h"

using namespace vx;

namespace {

const QString digest = QStringLiteral("0123456789abcdef0123456789ABCDEF"
                                      "0123456789abcdef0123456789abcdef");
const QString other = QString(64, 'a');

QDomElement packageIn(QDomDocument& document, const QString& text)
{
    document.setContent("<set sha256='" + other + "'><sha256>" + other + "</sha256>" + text +
                        "</set>");
    return document.documentElement().firstChildElement("package");
}

} // namespace

class PackageDigestsTest : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void whereItStands_data();
    void whereItStands();
    void byAddress();
    void oneAddressWithTwoDigests_data();
    void oneAddressWithTwoDigests();
};

void PackageDigestsTest::reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("state");
    const int given = PackageDigest::Given;
    const int malformed = PackageDigest::Malformed;
    QTest::newRow("either case") << digest << given;
    QTest::newRow("small") << digest.toLower() << given;
    QTest::newRow("capital") << digest.toUpper() << given;
    QTest::newRow("white space around") << "\n \t" + digest + "\r\n" << given;
    QTest::newRow("nothing at all") << QString() << malformed;
    QTest::newRow("empty") << "" << malformed;
    QTest::newRow("white space") << " \n" << malformed;
    QTest::newRow("a digit less") << digest.left(63) << malformed;
    QTest::newRow("a digit more") << digest + "0" << malformed;
    QTest::newRow("blank within") << digest.left(32) + " " + digest.mid(32) << malformed;
    QTest::newRow("blank instead") << digest.left(63) + " " << malformed;
    QTest::newRow("g") << digest.left(63) + "g" << malformed;
    QTest::newRow("between digits and letters") << digest.left(63) + ":" << malformed;
    QTest::newRow("@") << digest.left(63) + "@" << malformed;
    QTest::newRow("`") << digest.left(63) + "`" << malformed;
    QTest::newRow("wide digit") << digest.left(63) + QChar(0xff11) << malformed;
    QTest::newRow("letter with the same low bits") << digest.left(63) + QChar(0xc1) << malformed;
    QTest::newRow("no-break space") << digest + QChar(0xa0) << malformed;
    QTest::newRow("with its name") << "sha256:" + digest << malformed;
}

void PackageDigestsTest::reads()
{
    QFETCH(QString, text);
    QFETCH(int, state);
    const PackageDigest read = readPackageDigest(text);
    QCOMPARE(int(read.state), state);
    QCOMPARE(read.sha256,
             state == PackageDigest::Given ? QByteArray::fromHex(digest.toLatin1()) : QByteArray());
    QCOMPARE(int(readPackageDigest(std::nullopt).state), int(PackageDigest::Missing));
}

void PackageDigestsTest::whereItStands_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("text");
    QTest::newRow("nowhere") << "<package/>" << QString();
    QTest::newRow("nowhere at the file") << "<package><file/></package>" << QString();
    QTest::newRow("package") << "<package><sha256>a</sha256></package>"
                             << "a";
    QTest::newRow("package's attribute") << "<package sha256='a'/>"
                                         << "a";
    QTest::newRow("element first") << "<package sha256='b'><sha256>a</sha256></package>"
                                   << "a";
    QTest::newRow("first element") << "<package><sha256>a</sha256><sha256>b</sha256></package>"
                                   << "a";
    QTest::newRow("file") << "<package sha256='b'><sha256>b</sha256><file>"
                             "<sha256>a</sha256></file></package>"
                          << "a";
    QTest::newRow("file's attribute")
        << "<package sha256='b'><sha256>b</sha256><file sha256='a'/></package>"
        << "a";
    QTest::newRow("element of the file first")
        << "<package><file sha256='b'><sha256>a</sha256></file></package>"
        << "a";
    QTest::newRow("from the package for the file") << "<package sha256='a'><file/></package>"
                                                   << "a";
    QTest::newRow("only the first file")
        << "<package sha256='a'><file/><file sha256='b'/></package>"
        << "a";
    QTest::newRow("empty is near") << "<package sha256='b'><sha256/></package>"
                                   << "";
    QTest::newRow("empty attribute is near") << "<package sha256='b'><file sha256=''/></package>"
                                             << "";
    QTest::newRow("deeper") << "<package><x><sha256>a</sha256></x></package>" << QString();
    QTest::newRow("other case") << "<package><SHA256>a</SHA256></package>" << QString();
    QTest::newRow("in pieces") << "<package><sha256>a<b>b</b><![CDATA[c]]></sha256></package>"
                               << "abc";
}

void PackageDigestsTest::whereItStands()
{
    QFETCH(QString, package);
    QFETCH(QString, text);
    QDomDocument document;
    const std::optional<QString> read = packageDigestText(packageIn(document, package));
    QCOMPARE(read.has_value(), !text.isNull());
    QCOMPARE(read.value_or(QString()), text);
}

void PackageDigestsTest::byAddress()
{
    PackageDigests digests;
    digests.add(QUrl("http://download.example.com/a.zip"), readPackageDigest(digest));
    digests.add(QUrl("http://download.example.com/b.zip"), readPackageDigest(other));
    digests.add(QUrl("http://download.example.com/c.zip"), readPackageDigest(std::nullopt));
    digests.add(QUrl("http://download.example.com/d.zip"), readPackageDigest(QString()));
    QCOMPARE(digests.of(QUrl("http://download.example.com/a.zip")).sha256.toHex(),
             digest.toLower().toLatin1());
    QCOMPARE(digests.of(QUrl("http://download.example.com/b.zip")).sha256.toHex(),
             other.toLatin1());
    QCOMPARE(int(digests.of(QUrl("http://download.example.com/c.zip")).state),
             int(PackageDigest::Missing));
    QCOMPARE(int(digests.of(QUrl("http://download.example.com/d.zip")).state),
             int(PackageDigest::Malformed));
    QCOMPARE(int(digests.of(QUrl("http://download.example.com/e.zip")).state),
             int(PackageDigest::Missing));
    QCOMPARE(int(digests.of(QUrl()).state), int(PackageDigest::Missing));
}

void PackageDigestsTest::oneAddressWithTwoDigests_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("state");
    QTest::newRow("the same") << QStringList{digest, digest} << int(PackageDigest::Given);
    QTest::newRow("other case") << QStringList{digest, digest.toLower()}
                                << int(PackageDigest::Given);
    QTest::newRow("different") << QStringList{digest, other} << int(PackageDigest::Malformed);
    QTest::newRow("different, then the first again")
        << QStringList{digest, other, digest} << int(PackageDigest::Malformed);
    QTest::newRow("malformed, too") << QStringList{digest, "x"} << int(PackageDigest::Malformed);
    QTest::newRow("malformed first") << QStringList{"x", digest} << int(PackageDigest::Malformed);
}

void PackageDigestsTest::oneAddressWithTwoDigests()
{
    QFETCH(QStringList, texts);
    PackageDigests digests;
    const QUrl address("http://download.example.com/a.zip");
    for (const QString& text : texts) {
        digests.add(address, std::optional<QString>(text));
    }
    QTEST(int(digests.of(address).state), "state");
    QCOMPARE(digests.of(address).sha256.isEmpty(),
             digests.of(address).state != PackageDigest::Given);
}

VX_TEST_MAIN(PackageDigestsTest)
#include "tst_PackageDigests.moc"
