#include <QTranslator>
#include <QtTest>

#include "host/CoreQt/QtVersions.h"
#include "host/CoreQt/StringUtils.h"
#include "tests/support/TestMain.h"

using vx::QStringSet;
using vx::StringUtils;

namespace {

QStringSet set(const char* words)
{
    const QStringList list = QString::fromUtf8(words).split(QLatin1Char('|'));
    return QStringSet(list.begin(), list.end());
}

/** Translates "x" in the context "Download" to "y", and nothing else. */
class OneWordTranslator : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        const bool known = qstrcmp(context, "Download") == 0 && qstrcmp(text, "x") == 0;
        return known ? QStringLiteral("y") : QString();
    }
};

} // namespace

class StringUtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void splitsWords_data();
    void splitsWords();
    void splitsAtAnyExpression();
    void keepsEmptyPartsIfAsked();
    void intersectsWith_data();
    void intersectsWith();
    void intersectsOnBeginning_data();
    void intersectsOnBeginning();
    void appendsAll();
    void appendsTranslated();
    void appendsAsItStands();
};

void StringUtilsTest::splitsWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringSet>("expected");
    QTest::newRow("blanks") << "Mac32 Mac64" << set("Mac32|Mac64");
    QTest::newRow("commas") << "Mac32,Mac64" << set("Mac32|Mac64");
    QTest::newRow("semicolons") << "Mac32;Mac64" << set("Mac32|Mac64");
    QTest::newRow("lines and tabs") << "\n\tMac32\r\n\tMac64\n" << set("Mac32|Mac64");
    QTest::newRow("comma and blank") << "en, de ,fr" << set("en|de|fr");
    QTest::newRow("many in a row") << ",; en ;;, de; " << set("en|de");
    QTest::newRow("repeated") << "en en,en" << set("en");
    QTest::newRow("case matters") << "en EN" << set("en|EN");
    QTest::newRow("one word") << "Dome-24.1_beta/2" << set("Dome-24.1_beta/2");
    QTest::newRow("no-break space") << QString::fromUtf8("a\xc2\xa0\x62") << set("a|b");
    QTest::newRow("empty") << "" << QStringSet();
    QTest::newRow("null") << QString() << QStringSet();
    QTest::newRow("separators only") << " ,; \n" << QStringSet();
}

void StringUtilsTest::splitsWords()
{
    QFETCH(QString, text);
    QFETCH(QStringSet, expected);
    QCOMPARE(StringUtils::splitStringSet(text, StringUtils::splitWords, vx::skipEmptyParts),
             expected);
}

void StringUtilsTest::splitsAtAnyExpression()
{
    const QRegExp dash(QStringLiteral("-"));
    QCOMPARE(StringUtils::splitStringSet(QStringLiteral("a b-c,d"), dash, vx::skipEmptyParts),
             set("a b|c,d"));
}

void StringUtilsTest::keepsEmptyPartsIfAsked()
{
    const QRegExp comma(QStringLiteral(","));
    QCOMPARE(StringUtils::splitStringSet(QStringLiteral("a,,b"), comma, vx::keepEmptyParts),
             set("a||b"));
    QCOMPARE(StringUtils::splitStringSet(QString(), comma, vx::keepEmptyParts), set(""));
    QCOMPARE(StringUtils::splitStringSet(QStringLiteral("a,,b"), comma, vx::skipEmptyParts),
             set("a|b"));
}

void StringUtilsTest::intersectsWith_data()
{
    QTest::addColumn<QStringSet>("a");
    QTest::addColumn<QStringSet>("b");
    QTest::addColumn<bool>("expected");
    QTest::newRow("one in common") << set("en|de") << set("de|fr") << true;
    QTest::newRow("none") << set("en|de") << set("fr") << false;
    QTest::newRow("beginning only") << set("en") << set("en_GB") << false;
    QTest::newRow("case") << set("en") << set("EN") << false;
    QTest::newRow("empty string in both") << set("") << set("|a") << true;
    QTest::newRow("one empty") << QStringSet() << set("en") << false;
    QTest::newRow("both empty") << QStringSet() << QStringSet() << false;
}

void StringUtilsTest::intersectsWith()
{
    QFETCH(QStringSet, a);
    QFETCH(QStringSet, b);
    QFETCH(bool, expected);
    QCOMPARE(StringUtils::intersectsWith(a, b), expected);
    QCOMPARE(StringUtils::intersectsWith(b, a), expected);
}

void StringUtilsTest::intersectsOnBeginning_data()
{
    QTest::addColumn<QStringSet>("a");
    QTest::addColumn<QStringSet>("b");
    QTest::addColumn<bool>("expected");
    QTest::newRow("same") << set("Mac32") << set("Mac32") << true;
    QTest::newRow("beginning") << set("Mac") << set("Mac32") << true;
    QTest::newRow("camera and family") << set("Dome-24-Indoor") << set("Dome-24|Mini-12") << true;
    QTest::newRow("among others") << set("Win|Linux|Mac64") << set("Sun|Mac") << true;
    QTest::newRow("no beginning") << set("Mac32") << set("Mac64") << false;
    QTest::newRow("end only") << set("32") << set("Mac32") << false;
    QTest::newRow("case") << set("mac") << set("Mac32") << false;
    QTest::newRow("empty string begins all") << set("") << set("Mac32") << true;
    QTest::newRow("empty string and empty string") << set("") << set("|Mac32") << true;
    QTest::newRow("empty string and no string") << set("") << QStringSet() << false;
    QTest::newRow("one empty set") << set("Mac32") << QStringSet() << false;
    QTest::newRow("two empty sets") << QStringSet() << QStringSet() << false;
}

void StringUtilsTest::intersectsOnBeginning()
{
    QFETCH(QStringSet, a);
    QFETCH(QStringSet, b);
    QFETCH(bool, expected);
    QCOMPARE(StringUtils::intersectsOnBeginning(a, b), expected);
    QCOMPARE(StringUtils::intersectsOnBeginning(b, a), expected);
}

void StringUtilsTest::appendsAll()
{
    QStringSet target = set("a|b");
    StringUtils::appendAll(target, set("b|c|"), QStringLiteral("Download"));
    QCOMPARE(target, set("a|b|c|"));
    StringUtils::appendAll(target, QStringSet(), QStringLiteral("Download"));
    QCOMPARE(target.size(), 4);
}

void StringUtilsTest::appendsTranslated()
{
    OneWordTranslator translator;
    QCoreApplication::installTranslator(&translator);
    QStringSet target;
    StringUtils::appendAll(target, set("x|z"), QStringLiteral("Download"));
    QStringSet elsewhere;
    StringUtils::appendAll(elsewhere, set("x"), QStringLiteral("Other"));
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(target, set("y|z"));
    QCOMPARE(elsewhere, set("x"));
}

void StringUtilsTest::appendsAsItStands()
{
    const QStringSet words = set("Gr\xc3\xb6\xc3\x9f\x65|\xe2\x82\xac|a b");
    QStringSet target;
    StringUtils::appendAll(target, words, QString());
    QCOMPARE(target, words);
}

VX_TEST_MAIN(StringUtilsTest)
#include "tst_StringUtils.moc"
