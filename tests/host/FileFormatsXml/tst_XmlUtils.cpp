#include <QBuffer>
#include <QDomDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"

using vx::ParseException;
using vx::XmlUtils;

namespace {

std::unique_ptr<QDomDocument> parse(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return std::unique_ptr<QDomDocument>(XmlUtils::parseXml(&buffer, nullptr));
}

const QByteArray catalogue =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- what there is -->\n"
    "<softwareList type=\"Application\">\n"
    "  <package-set base-url=\"http://example.com/\">\n"
    "    <package><name>One &amp; Two</name><file url='a?b=1&amp;c=2' file-size='1'/></package>\n"
    "    <package><comment><![CDATA[<b>bold</b>]]></comment></package>\n"
    "  </package-set>\n"
    "</softwareList>";

/** Returns its bytes in small pieces, as a reply from the network may. */
class DrippingDevice : public QIODevice
{
public:
    explicit DrippingDevice(const QByteArray& bytes)
        : m_bytes(bytes)
    {
        open(ReadOnly);
    }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 size) override
    {
        const qint64 count = std::min<qint64>({size, 7, m_bytes.size() - m_position});
        memcpy(data, m_bytes.constData() + m_position, size_t(count));
        m_position += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_position = 0;
};

/** Never ends, and counts what was taken from it. */
class EndlessDevice : public QIODevice
{
public:
    EndlessDevice() { open(ReadOnly); }
    bool isSequential() const override { return true; }
    qint64 taken = 0;

protected:
    qint64 readData(char* data, qint64 size) override
    {
        memset(data, ' ', size_t(size));
        taken += size;
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }
};

} // namespace

class XmlUtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void buildsANewDocument();
    void fillsADocument();
    void leavesTheDeviceToTheCaller();
    void readsFromWhereTheDeviceStands();
    void readsADeviceInPieces();
    void keepsNamesAsWritten();
    void readsText_data();
    void readsText();
    void refusesWhatIsNotWellFormed_data();
    void refusesWhatIsNotWellFormed();
    void refusesEveryTruncation();
    void saysWhere();
    void leavesTheDocumentOnFailure();
    void refusesADeviceThatCannotBeRead();
    void stopsReadingAtTheLimit();
    void readsUpToTheLimit();
    void neverFetchesWhatIsOutside_data();
    void neverFetchesWhatIsOutside();
    void refusesParameterEntities();
    void readsADocumentType();
};

void XmlUtilsTest::buildsANewDocument()
{
    const auto document = parse(catalogue);
    const QDomElement root = document->documentElement();
    QCOMPARE(root.tagName(), QStringLiteral("softwareList"));
    QCOMPARE(root.attribute(QStringLiteral("type")), QStringLiteral("Application"));
    const QDomElement set = root.firstChildElement();
    QCOMPARE(set.elementsByTagName(QStringLiteral("package")).count(), 2);
    const QDomElement package = set.firstChildElement();
    QCOMPARE(package.firstChildElement(QStringLiteral("name")).text(), QStringLiteral("One & Two"));
    QCOMPARE(package.firstChildElement(QStringLiteral("file")).attribute(QStringLiteral("url")),
             QStringLiteral("a?b=1&c=2"));
    QCOMPARE(package.nextSiblingElement().text(), QStringLiteral("<b>bold</b>"));
    QVERIFY(root.parentNode().isDocument());
    QVERIFY(root.parentNode().parentNode().isNull());
}

void XmlUtilsTest::fillsADocument()
{
    QDomDocument document;
    document.setContent(QByteArray("<before/>"));
    QBuffer buffer;
    buffer.setData("<after/>");
    buffer.open(QIODevice::ReadOnly);
    QCOMPARE(XmlUtils::parseXml(&buffer, &document), &document);
    QCOMPARE(document.documentElement().tagName(), QStringLiteral("after"));
}

void XmlUtilsTest::leavesTheDeviceToTheCaller()
{
    QBuffer buffer;
    buffer.setData("<a/>");
    buffer.open(QIODevice::ReadOnly);
    delete XmlUtils::parseXml(&buffer, nullptr);
    QVERIFY(buffer.isOpen());
    QVERIFY(buffer.atEnd());
    QVERIFY(buffer.seek(0));
    delete XmlUtils::parseXml(&buffer, nullptr);
}

void XmlUtilsTest::readsFromWhereTheDeviceStands()
{
    QBuffer buffer;
    buffer.setData("header<a/>");
    buffer.open(QIODevice::ReadOnly);
    buffer.seek(6);
    const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(&buffer, nullptr));
    QCOMPARE(document->documentElement().tagName(), QStringLiteral("a"));
}

void XmlUtilsTest::readsADeviceInPieces()
{
    DrippingDevice device(catalogue);
    const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(&device, nullptr));
    QCOMPARE(document->toByteArray(), parse(catalogue)->toByteArray());
}

void XmlUtilsTest::keepsNamesAsWritten()
{
    const auto document =
        parse("<x:list xmlns:x='urn:x' y:undeclared='1'><x:package Name='2'/></x:list>");
    const QDomElement root = document->documentElement();
    QCOMPARE(root.tagName(), QStringLiteral("x:list"));
    QCOMPARE(root.attribute(QStringLiteral("y:undeclared")), QStringLiteral("1"));
    QVERIFY(!root.firstChildElement(QStringLiteral("x:package")).isNull());
    QVERIFY(root.firstChildElement(QStringLiteral("package")).isNull());
    QVERIFY(!root.firstChildElement().hasAttribute(QStringLiteral("name")));
}

void XmlUtilsTest::readsText_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("text");
    QTest::newRow("references") << QByteArray("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;</a>")
                                << QStringLiteral("<>&\"'AB");
    QTest::newRow("white space around") << QByteArray("<a>  b  </a>") << QStringLiteral("  b  ");
    QTest::newRow("line ends") << QByteArray("<a>b\r\nc\rd</a>") << QStringLiteral("b\nc\nd");
    QTest::newRow("comment between") << QByteArray("<a>b<!-- x -->c</a>") << QStringLiteral("bc");
    QTest::newRow("CDATA") << QByteArray("<a>b<![CDATA[<&>]]>c</a>") << QStringLiteral("b<&>c");
    QTest::newRow("empty element") << QByteArray("<a/>") << QString();
    QTest::newRow("white space alone") << QByteArray("<a> \t\r\n</a>") << QString();
    QTest::newRow("white space between elements")
        << QByteArray("<a> <b>x</b> <c> </c> </a>") << QStringLiteral("x");
    QTest::newRow("references to white space")
        << QByteArray("<a>&#32;&#x9;&#10;&#13;</a>") << QString();
    QTest::newRow("white space to be preserved")
        << QByteArray("<a xml:space='preserve'>  </a>") << QString();
    QTest::newRow("white space as an entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e ' '>]><a>&e;</a>") << QString();
    QTest::newRow("white space in CDATA") << QByteArray("<a><![CDATA[ \t\n]]></a>") << QString();
    QTest::newRow("white space in CDATA between texts")
        << QByteArray("<a>b<![CDATA[ ]]>c</a>") << QStringLiteral("bc");
    QTest::newRow("white space in CDATA, nested")
        << QByteArray("<a><b><c><![CDATA[  ]]></c>x<![CDATA[ ]]></b></a>") << QStringLiteral("x");
    QTest::newRow("white space in CDATA in an entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e '<![CDATA[ ]]>'>]><a>&e;</a>") << QString();
    QTest::newRow("white space in CDATA around text")
        << QByteArray("<a> <![CDATA[ b ]]> </a>") << QStringLiteral(" b ");
    // What counts as white space is more than XML says.
    QTest::newRow("other spaces in CDATA")
        << QByteArray("<a><![CDATA[\xc2\x85\xc2\xa0\xe2\x80\xa8\xe3\x80\x80]]></a>") << QString();
    QTest::newRow("no space in CDATA")
        << QByteArray("<a><![CDATA[\xe2\x80\x8b]]></a>") << QString(QChar(0x200b));
    QTest::newRow("empty CDATA") << QByteArray("<a><![CDATA[]]></a>") << QString();
    QTest::newRow("character beyond the first plane")
        << QByteArray("<a>&#x1F4F7;\xf0\x9f\x93\xb7</a>")
        << QString::fromUtf8("\xf0\x9f\x93\xb7\xf0\x9f\x93\xb7");
    QTest::newRow("entity") << QByteArray("<!DOCTYPE a [<!ENTITY e 'two'>]><a>one &e;</a>")
                            << QStringLiteral("one two");
    QTest::newRow("entity in entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e '(&f;&f;)'><!ENTITY f 'x'>]><a>&e;</a>")
        << QStringLiteral("(xx)");
    QTest::newRow("elements in an entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e '<b>x</b><b>y</b>'>]><a>&e;</a>")
        << QStringLiteral("xy");
    QTest::newRow("entity with character references")
        << QByteArray("<!DOCTYPE a [<!ENTITY e '&#38;#60;&#x42;'>]><a>&e;</a>")
        << QStringLiteral("<B");
    QTest::newRow("entity declared twice")
        << QByteArray("<!DOCTYPE a [<!ENTITY e '1'><!ENTITY e '2'>]><a>&e;</a>")
        << QStringLiteral("1");
}

void XmlUtilsTest::readsText()
{
    QFETCH(QByteArray, xml);
    QFETCH(QString, text);
    QCOMPARE(parse(xml)->documentElement().text(), text);
}

void XmlUtilsTest::refusesWhatIsNotWellFormed_data()
{
    QTest::addColumn<QByteArray>("xml");
    const auto row = [](const char* name, const QByteArray& xml) { QTest::newRow(name) << xml; };
    row("empty", "");
    row("blank", " \n");
    row("text", "404 Not Found");
    row("markup of another kind", "<html><body><br></body></html>");
    row("JSON", "{\"a\": 1}");
    row("no end tag", "<a>");
    row("crossed tags", "<a><b></a></b>");
    row("two roots", "<a/><b/>");
    row("text behind the root", "<a/>x");
    row("other case", "<a></A>");
    row("attribute twice", "<a b='1' b='2'/>");
    row("attribute without quotes", "<a b=1/>");
    row("attribute without value", "<a b/>");
    row("open quotes", "<a b='1/>");
    row("< in an attribute", "<a b='<'/>");
    row("bare ampersand", "<a>b & c</a>");
    row("undeclared entity", "<a>&nbsp;</a>");
    row("undeclared entity in an attribute", "<a b='&nbsp;'/>");
    row("entity that refers to itself", "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>");
    row("entities that refer to each other",
        "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a b='&e;'/>");
    row("half an element in an entity", "<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>");
    row("half a tag in an entity", "<!DOCTYPE a [<!ENTITY e '<b'>]><a>&e; c='1'/></a>");
    row("no such character", "<a>&#0;</a>");
    row("character beyond Unicode", "<a>&#x110000;</a>");
    row("NUL byte", QByteArray("<a>x\0y</a>", 10));
    row("NUL byte in a name", QByteArray("<a\0b/>", 6));
    row("NUL bytes only", QByteArray(100, '\0'));
    row("control character", "<a>\x01</a>");
    row("no character", "<a>\xef\xbf\xbf</a>");
    row("reference to no character", "<a>&#xFFFE;</a>");
    row("reference to a surrogate", "<a>&#xD800;</a>");
    row("reference to a control character", "<a>&#11;</a>");
    row("other version", "<?xml version='1.1'?><a/>");
    row("standalone perhaps", "<?xml version='1.0' standalone='perhaps'?><a/>");
    row("two colons in a name", "<a:b:c/>");
    row("double hyphen in a comment", "<a><!-- b -- c --></a>");
    row("]]> in text", "<a>]]></a>");
    row("declaration not at the start", " <?xml version='1.0'?><a/>");
    row("document type behind the root", "<a/><!DOCTYPE a>");
    row("document type within the root", "<a><!DOCTYPE a></a>");
    row("two document types", "<!DOCTYPE a [<!ELEMENT a ANY>]><!DOCTYPE a><a/>");
    row("open document type", "<!DOCTYPE a [<!ENTITY e 'x'>");
    row("document type that is no list", "<!DOCTYPE a [ nonsense ]><a/>");
    row("open declaration", "<!DOCTYPE a [<!ENTITY e 'x' ]><a/>");
}

void XmlUtilsTest::refusesWhatIsNotWellFormed()
{
    QFETCH(QByteArray, xml);
    VX_VERIFY_THROWS(parse(xml), ParseException);
}

void XmlUtilsTest::refusesEveryTruncation()
{
    const QByteArray withType =
        "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE a SYSTEM 'a.dtd' [<!-- ' --><?p \"?>"
        "<!ENTITY e \"<b/>\"><!ATTLIST a b CDATA 'c'>]><a d=\"e\">&e;<![CDATA[f]]><?g h?>"
        "<!-- i --></a>";
    for (const QByteArray& whole : {catalogue, withType}) {
        QVERIFY(!parse(whole)->documentElement().isNull());
        for (int size = 0; size < whole.size(); ++size) {
            VX_VERIFY_THROWS(parse(whole.left(size)), ParseException);
        }
    }
}

void XmlUtilsTest::saysWhere()
{
    try {
        parse("<a>\n  <b></c>\n</a>");
        QFAIL("nothing thrown");
    } catch (const ParseException& exception) {
        QVERIFY2(exception.message().startsWith(QLatin1String("Line 2, column ")),
                 qPrintable(exception.message()));
    }
}

void XmlUtilsTest::leavesTheDocumentOnFailure()
{
    QDomDocument document;
    document.setContent(QByteArray("<before/>"));
    QBuffer buffer;
    buffer.setData("<a><b/></x>");
    buffer.open(QIODevice::ReadOnly);
    VX_VERIFY_THROWS(XmlUtils::parseXml(&buffer, &document), ParseException);
    QCOMPARE(document.documentElement().tagName(), QStringLiteral("before"));
}

void XmlUtilsTest::refusesADeviceThatCannotBeRead()
{
    VX_VERIFY_THROWS(XmlUtils::parseXml(nullptr, nullptr), ParseException);
    QBuffer closed;
    closed.setData("<a/>");
    VX_VERIFY_THROWS(XmlUtils::parseXml(&closed, nullptr), ParseException);
    QBuffer writeOnly;
    writeOnly.open(QIODevice::WriteOnly);
    VX_VERIFY_THROWS(XmlUtils::parseXml(&writeOnly, nullptr), ParseException);
}

void XmlUtilsTest::stopsReadingAtTheLimit()
{
    EndlessDevice device;
    VX_VERIFY_THROWS(XmlUtils::parseXml(&device, nullptr), ParseException);
    QVERIFY(device.taken > XmlUtils::maximumDocumentSize);
    QVERIFY(device.taken < XmlUtils::maximumDocumentSize + 1024 * 1024);
}

void XmlUtilsTest::readsUpToTheLimit()
{
    QByteArray xml = "<a></a>";
    xml.insert(3, QByteArray(int(XmlUtils::maximumDocumentSize) - xml.size(), ' '));
    QCOMPARE(qint64(xml.size()), XmlUtils::maximumDocumentSize);
    QCOMPARE(parse(xml)->documentElement().tagName(), QStringLiteral("a"));
    VX_VERIFY_THROWS(parse(xml + ' '), ParseException);
}

void XmlUtilsTest::neverFetchesWhatIsOutside_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("external entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e SYSTEM '%1'>]><a>before &e; after</a>");
    QTest::newRow("public external entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e PUBLIC 'p' '%1'>]><a>before &e; after</a>");
    QTest::newRow("external document type") << QByteArray("<!DOCTYPE a SYSTEM '%1'><a>b</a>");
}

void XmlUtilsTest::neverFetchesWhatIsOutside()
{
    QFETCH(QByteArray, xml);
    QTemporaryDir folder;
    QFile secret(folder.filePath(QStringLiteral("secret")));
    QVERIFY(secret.open(QIODevice::WriteOnly));
    secret.write("SECRET");
    secret.close();
    const auto document = parse(xml.replace("%1", "file://" + secret.fileName().toUtf8()));
    QVERIFY(!document->documentElement().isNull());
    QVERIFY(!document->documentElement().text().contains(QLatin1String("SECRET")));
}

void XmlUtilsTest::refusesParameterEntities()
{
    VX_VERIFY_THROWS(parse("<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>&e;</a>"),
                     ParseException);
    VX_VERIFY_THROWS(parse("<!DOCTYPE a [<!ENTITY % p SYSTEM 'file:///etc/hostname'>%p;]><a/>"),
                     ParseException);
    QCOMPARE(parse("<!DOCTYPE a [<!ENTITY % p 'unused'>]><a>b</a>")->documentElement().text(),
             QStringLiteral("b"));
}

void XmlUtilsTest::readsADocumentType()
{
    const auto document = parse("<!DOCTYPE list PUBLIC 'p' 's' [ <!-- ]> -->\n<?pi ]> ?>"
                                "<!ELEMENT list (package*)><!NOTATION n SYSTEM 'x'>"
                                "<!ATTLIST package type CDATA \"]>\" kind (x|y) #REQUIRED>\n] >"
                                "<list><package kind='x'/></list>");
    QCOMPARE(document->doctype().name(), QStringLiteral("list"));
    const QDomElement package = document->documentElement().firstChildElement();
    QCOMPARE(package.attribute(QStringLiteral("kind")), QStringLiteral("x"));
    QCOMPARE(package.attribute(QStringLiteral("type")), QStringLiteral("]>"));
}

VX_TEST_MAIN(XmlUtilsTest)
#include "tst_XmlUtils.moc"
