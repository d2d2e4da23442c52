#include <QBuffer>
#include <QDomDocument>
#include <QtTest>

#include <memory>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tests/support/TestMain.h"

using vx::XmlUtils;

namespace {

bool isRead(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    try {
        delete XmlUtils::parseXml(&buffer, nullptr);
        return true;
    } catch (const vx::ParseException&) {
        return false;
    }
}

QByteArray nested(int depth, const QByteArray& innermost)
{
    return QByteArray("<a>").repeated(depth) + innermost + QByteArray("</a>").repeated(depth);
}

QByteArray withAttributes(int count)
{
    QByteArray attributes;
    for (int i = 0; i < count; ++i) {
        attributes += " a" + QByteArray::number(i) + "='" + (i % 2 == 0 ? ">" : "\"") + "'";
    }
    return "<a" + attributes + "/>";
}

QByteArray withType(const QByteArray& declarations, const QByteArray& content)
{
    return "<!DOCTYPE a [" + declarations + "]><a>" + content + "</a>";
}

/** An entity "e" of @p size characters. */
QByteArray entity(qint64 size)
{
    return "<!ENTITY e '" + QByteArray(int(size), 'x') + "'>";
}

QByteArray declaredAttributes(int count, const QByteArray& value)
{
    QByteArray declarations;
    for (int i = 0; i < count; ++i) {
        declarations += "<!ATTLIST b a" + QByteArray::number(i) + " CDATA " + value + ">";
    }
    return declarations;
}

/** Entities of which each is ten times the one before. */
QByteArray tenfold(int steps)
{
    QByteArray declarations = "<!ENTITY e0 'ha'>";
    for (int i = 1; i <= steps; ++i) {
        const QByteArray before = "&e" + QByteArray::number(i - 1) + ';';
        declarations += "<!ENTITY e" + QByteArray::number(i) + " '" + before.repeated(10) + "'>";
    }
    return declarations;
}

} // namespace

class XmlLimitsTest : public QObject
{
    Q_OBJECT

private slots:
    void depth();
    void depthThroughEntities();
    void depthThatClosesAgain();
    void attributes();
    void declaredAttributesCount();
    void nodes_data();
    void nodes();
    void nodesUpToTheLimit();
    void expansionInContent();
    void expansionInAttributes();
    void expansionThroughEntities();
    void expansionOfDefaultValues();
    void expansionOfUnusedDefaultValues();
    void charactersAreNoExpansion();
    void markupThatHidesInLiterals();
    void manyEntitiesAreQuick();
};

void XmlLimitsTest::depth()
{
    const int limit = XmlUtils::maximumDepth;
    QVERIFY(isRead(nested(limit, "text")));
    QVERIFY(!isRead(nested(limit + 1, "text")));
    QVERIFY(isRead(nested(limit - 1, "<b/>")));
    QVERIFY(!isRead(nested(limit, "<b/>")));
    QVERIFY(!isRead(nested(1000000, "")));
    QVERIFY(!isRead(QByteArray("<a>").repeated(1000000)));
}

void XmlLimitsTest::depthThroughEntities()
{
    const QByteArray five = "<!ENTITY e '" + nested(5, "x") + "'>";
    const int limit = XmlUtils::maximumDepth;
    QVERIFY(isRead(withType(five, nested(limit - 6, "&e;"))));
    QVERIFY(!isRead(withType(five, nested(limit - 5, "&e;"))));
    const QByteArray written = "<!ENTITY e '&#60;b>&#x3C;c/>&#60;/b>'>";
    QVERIFY(isRead(withType(written, nested(limit - 3, "&e;"))));
    QVERIFY(!isRead(withType(written, nested(limit - 2, "&e;"))));
}

void XmlLimitsTest::depthThatClosesAgain()
{
    const QByteArray sibling =
        nested(200, "<b x='/'/><b/><c>t</c><!-- <d> --><![CDATA[<e>]]><?f <g>?>");
    QVERIFY(isRead("<a>" + sibling.repeated(20) + "</a>"));
}

void XmlLimitsTest::attributes()
{
    QVERIFY(isRead(withAttributes(XmlUtils::maximumAttributes)));
    QVERIFY(!isRead(withAttributes(XmlUtils::maximumAttributes + 1)));
}

void XmlLimitsTest::declaredAttributesCount()
{
    const int limit = XmlUtils::maximumAttributes;
    QVERIFY(isRead(withType(declaredAttributes(limit, "'x'"), "<b/>")));
    QVERIFY(!isRead(withType(declaredAttributes(limit + 1, "'x'"), "<b/>")));
    QVERIFY(isRead(withType(declaredAttributes(limit, "#IMPLIED"), "<b/>")));
    QVERIFY(!isRead(withType(declaredAttributes(limit + 1, "#IMPLIED"), "<b/>")));
    QVERIFY(!isRead(withType(declaredAttributes(limit, "'x'"), "<b another='y'/>")));
}

void XmlLimitsTest::nodes_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<int>("nodesOfPiece");
    QTest::newRow("elements") << QByteArray("<b/>") << 1;
    QTest::newRow("elements with end tags") << QByteArray("<b></b>") << 1;
    QTest::newRow("attributes") << QByteArray("<b c='' d=\"\" e=''/>") << 4;
    QTest::newRow("texts") << QByteArray("x<b/>") << 2;
    QTest::newRow("comments") << QByteArray("<!---->") << 1;
    QTest::newRow("CDATA") << QByteArray("<![CDATA[x]]>") << 1;
    QTest::newRow("instructions") << QByteArray("<?p?>") << 1;
}

void XmlLimitsTest::nodes()
{
    QFETCH(QByteArray, piece);
    QFETCH(int, nodesOfPiece);
    const int count = int(XmlUtils::maximumNodes) / nodesOfPiece;
    QVERIFY(!isRead("<a>" + piece.repeated(count) + "</a>"));
}

void XmlLimitsTest::nodesUpToTheLimit()
{
    const QByteArray ten =
        "<b/>\n <c d=''></c>x<!-- <e/> --><![CDATA[<f/>]]><?p <g/>?>y<h i=''/>\n";
    const QByteArray nine = "<b/><b/><b/><b/><b/><b/><b/><b/><b/>";
    const int count = int(XmlUtils::maximumNodes) / 10 - 1;
    QVERIFY(isRead("<a>" + ten.repeated(count) + nine + "</a>\n"));
    QVERIFY(!isRead("<a>" + ten.repeated(count) + nine + "<b/></a>\n"));
}

void XmlLimitsTest::expansionInContent()
{
    const qint64 limit = XmlUtils::maximumEntityExpansion;
    QVERIFY(isRead(withType(entity(limit), "&e;")));
    QVERIFY(!isRead(withType(entity(limit + 1), "&e;")));
    QVERIFY(isRead(withType(entity(limit / 64), QByteArray("&e;").repeated(64))));
    QVERIFY(!isRead(withType(entity(limit / 64), QByteArray("&e;").repeated(65))));
    QVERIFY(!isRead(withType(entity(60000), QByteArray("&e;<b/>").repeated(60000))));
    QVERIFY(isRead(withType(entity(limit + 1), "not used")));
}

void XmlLimitsTest::expansionInAttributes()
{
    const qint64 limit = XmlUtils::maximumEntityExpansion;
    const QByteArray declaration = entity(limit / 64);
    QVERIFY(isRead(withType(declaration, "<b c='" + QByteArray("&e;").repeated(64) + "'/>")));
    QVERIFY(!isRead(withType(declaration, "<b c='" + QByteArray("&e;").repeated(65) + "'/>")));
    QVERIFY(!isRead(withType(declaration, QByteArray("<b c=\"&e;\"/>").repeated(65))));
}

void XmlLimitsTest::expansionThroughEntities()
{
    QVERIFY(isRead(withType(tenfold(4), "&e4;")));
    QVERIFY(!isRead(withType(tenfold(5), "&e5;&e5;&e5;&e5;")));
    QVERIFY(!isRead(withType(tenfold(9), "&e9;")));
    QVERIFY(!isRead(withType(tenfold(9), "<b c='&e9;'/>")));
    QVERIFY(!isRead(withType(tenfold(30), "&e30;")));
    QVERIFY(isRead(withType(tenfold(30), "not used")));
}

void XmlLimitsTest::expansionOfDefaultValues()
{
    const QByteArray value = "'" + QByteArray(1024, 'x') + "'";
    const QByteArray declaration = "<!ATTLIST b c CDATA " + value + ">";
    QVERIFY(isRead(withType(declaration, QByteArray("<b/>").repeated(1024))));
    QVERIFY(!isRead(withType(declaration, QByteArray("<b/>").repeated(1025))));
    QVERIFY(isRead(withType(declaration, QByteArray("<d/>").repeated(5000))));
    const QByteArray referring = entity(1024) + "<!ATTLIST b c CDATA '&e;'>";
    QVERIFY(isRead(withType(referring, QByteArray("<b/>").repeated(1000))));
    QVERIFY(!isRead(withType(referring, QByteArray("<b/>").repeated(1025))));
}

void XmlLimitsTest::expansionOfUnusedDefaultValues()
{
    const QByteArray value = "'" + QByteArray("&e;").repeated(2000) + "'";
    QVERIFY(!isRead(withType(entity(1000) + "<!ATTLIST b c CDATA " + value + ">", "")));
}

void XmlLimitsTest::charactersAreNoExpansion()
{
    QVERIFY(isRead(withType("<!ENTITY e 'x'>", QByteArray("&amp;&#65;").repeated(200000))));
    QVERIFY(isRead("<a b='" + QByteArray("&amp;").repeated(400000) + "'/>"));
}

void XmlLimitsTest::markupThatHidesInLiterals()
{
    const QByteArray deep = nested(XmlUtils::maximumDepth, "");
    for (const QByteArray& before :
         {QByteArray("<!-- ' -->"), QByteArray("<?p \" ?>"), QByteArray("<![CDATA[<!--]]>"),
          QByteArray("<b c='<!--'/>"), QByteArray("<b c='>'/>"), QByteArray("<b c=\"'\"/>"),
          QByteArray("<!-->-->"), QByteArray("<?p <!-- ?>")}) {
        QVERIFY2(!isRead("<a>" + before + deep + "</a>"), before.constData());
    }
    QVERIFY(!isRead(withType("<!-- <!ENTITY e ''> -->" + entity(600000), "&e;&e;")));
    QVERIFY(!isRead(withType("<?p <!ENTITY e ''> ?>" + entity(600000), "&e;&e;")));
    QVERIFY(!isRead(withType("<!ENTITY f \"<!ENTITY e ''>\">" + entity(600000), "&e;&e;")));
}

void XmlLimitsTest::manyEntitiesAreQuick()
{
    QByteArray declarations;
    for (int i = 0; i < 50000; ++i) {
        declarations += "<!ENTITY e" + QByteArray::number(i) + " 'x'>";
    }
    QVERIFY(isRead(withType(declarations, "&e1;&e49999;")));
}

VX_TEST_MAIN(XmlLimitsTest)
#include "tst_XmlLimits.moc"
