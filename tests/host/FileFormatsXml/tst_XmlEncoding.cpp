#include <QBuffer>
#include <QDomDocument>
#include <QTextCodec>
#include <QtTest>

#include <memory>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"

namespace {

QString rootTextOf(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const std::unique_ptr<QDomDocument> document(vx::XmlUtils::parseXml(&buffer, nullptr));
    return document->documentElement().text();
}

QString document(const char* encoding, const QString& text)
{
    const QString declaration =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?>\n").arg(QLatin1String(encoding));
    return (*encoding != '\0' ? declaration : QString()) + QStringLiteral("<a>") + text +
           QStringLiteral("</a>");
}

QByteArray encoded(const QString& text, const char* codecName, bool withMark)
{
    QTextCodec::ConverterState state(withMark ? QTextCodec::DefaultConversion
                                              : QTextCodec::IgnoreHeader);
    QByteArray bytes =
        QTextCodec::codecForName(codecName)->fromUnicode(text.constData(), text.size(), &state);
    if (withMark && qstrcmp(codecName, "UTF-8") == 0 && !bytes.startsWith("\xef\xbb\xbf")) {
        bytes.prepend("\xef\xbb\xbf");
    }
    return bytes;
}

} // namespace

class XmlEncodingTest : public QObject
{
    Q_OBJECT

private slots:
    void readsTheEncoding_data();
    void readsTheEncoding();
    void readsADeclarationInAnyForm_data();
    void readsADeclarationInAnyForm();
    void refuses_data();
    void refuses();
};

void XmlEncodingTest::readsTheEncoding_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("declared");
    QTest::addColumn<bool>("withMark");
    const auto row = [](const char* codec, const char* declared, bool withMark) {
        QTest::addRow("%s, declared \"%s\"%s", codec, declared, withMark ? ", with mark" : "")
            << QByteArray(codec) << QByteArray(declared) << withMark;
    };
    row("UTF-8", "", false);
    row("UTF-8", "", true);
    row("UTF-8", "UTF-8", false);
    row("UTF-8", "utf-8", true);
    row("UTF-16LE", "UTF-16", false);
    row("UTF-16LE", "UTF-16", true);
    row("UTF-16LE", "", true);
    row("UTF-16LE", "", false);
    row("UTF-16BE", "UTF-16", false);
    row("UTF-16BE", "UTF-16", true);
    row("UTF-16BE", "UTF-16BE", false);
    row("UTF-32LE", "UTF-32", true);
    row("UTF-32LE", "UTF-32", false);
    row("UTF-32BE", "UTF-32", true);
    row("UTF-32BE", "UTF-32", false);
    row("ISO-8859-1", "ISO-8859-1", false);
    row("ISO-8859-1", "latin1", false);
    row("windows-1252", "windows-1252", false);
    row("ISO-8859-15", "ISO-8859-15", false);
}

void XmlEncodingTest::readsTheEncoding()
{
    QFETCH(QByteArray, codec);
    QFETCH(QByteArray, declared);
    QFETCH(bool, withMark);
    const QString text = QString::fromUtf8("Gr\xc3\xb6\xc3\x9f\x65 \xc3\xa9");
    const QByteArray bytes =
        encoded(document(declared.constData(), text), codec.constData(), withMark);
    QCOMPARE(rootTextOf(bytes), text);
}

void XmlEncodingTest::readsADeclarationInAnyForm_data()
{
    QTest::addColumn<QByteArray>("declaration");
    QTest::newRow("single quotes") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?>");
    QTest::newRow("standalone") << QByteArray(
        "<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?>");
    QTest::newRow("white space") << QByteArray(
        "<?xml\tversion = \"1.0\"\n  encoding =\r\n \"ISO-8859-1\" ?>");
    QTest::newRow("small letters") << QByteArray("<?xml version='1.0' encoding='iso-8859-1'?>");
}

void XmlEncodingTest::readsADeclarationInAnyForm()
{
    QFETCH(QByteArray, declaration);
    QCOMPARE(rootTextOf(declaration + "<a>\xe9</a>"), QString(QChar(0xe9)));
}

void XmlEncodingTest::refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("unknown encoding") << QByteArray("<?xml version='1.0' encoding='X-7'?><a/>");
    QTest::newRow("Latin-1 without declaration") << QByteArray("<a>\xe9</a>");
    QTest::newRow("cut character") << QByteArray("<a/>\xc3");
    QTest::newRow("overlong character") << QByteArray("<\xc0\xaf/>");
    QTest::newRow("surrogate in UTF-8") << QByteArray("<a>\xed\xa0\x80</a>");
    QTest::newRow("odd bytes in UTF-16") << QByteArray("\xff\xfe<\0a\0/\0>\0\0", 11);
    QTest::newRow("lone surrogate in UTF-16")
        << QByteArray("\xff\xfe<\0a\0>\0\0\xd8<\0/\0a\0>\0", 18);
    QTest::newRow("mark only") << QByteArray("\xef\xbb\xbf");
    QTest::newRow("bytes of no text") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
}

void XmlEncodingTest::refuses()
{
    QFETCH(QByteArray, bytes);
    VX_VERIFY_THROWS(rootTextOf(bytes), vx::ParseException);
}

VX_TEST_MAIN(XmlEncodingTest)
#include "tst_XmlEncoding.moc"
