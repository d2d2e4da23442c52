// Every sentence of the catalogue guide and every rule of the page about lint, beside what the
// library does.
#include <QtTest>

#include "host/Core/Log.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/GuideSentences.h"
#include "tests/tools/update-catalogue/LintPageSentences.h"
#include "tests/tools/update-catalogue/LintRun.h"

using vx::test::guideExamples;
using vx::test::GuideSentence;
using vx::test::guideSentences;
using vx::test::LintSentence;
using vx::test::lintSentences;

namespace {

/**
 * The sentences of the page about catalogues: its paragraphs, items and rows of tables. What
 * becomes of packages and what servers make of a catalogue is tried with a real client.
 */
QStringList linesOfGuide()
{
    QStringList lines;
    bool inCode = false;
    bool isAtWork = false;
    for (const QString& line :
         vx::test::catalogueGuide().section("## What servers", 0, 0).split('\n')) {
        isAtWork = line.startsWith("## ") ? line == "## What a package must hold" : isAtWork;
        inCode = line.startsWith("```") ? !inCode : inCode;
        static const QRegularExpression other("^(```|#|\\| (---|Field|Trap)|$)");
        if (!inCode && !isAtWork && !other.match(line).hasMatch()) {
            lines.append(line);
        }
    }
    return lines;
}

QString pageAboutLint()
{
    QFile page(QFINDTESTDATA("../../../docs/catalogue-lint.md"));
    return page.open(QIODevice::ReadOnly) ? QString::fromUtf8(page.readAll()) : QString();
}

/** Each rule of the page with what it finds, but for those that ask servers or verify seals. */
QStringList rulesOfPage()
{
    static const QRegularExpression row(
        "^(\\| `[a-z-]+` \\| )(?:error|warning|note) \\| (.*?) \\| .*$");
    QStringList rules;
    for (const QString& line : pageAboutLint().section("## Signatures", 0, 0).split('\n')) {
        const QRegularExpressionMatch match = row.match(line);
        if (match.hasMatch() && !line.startsWith("| `own-")) {
            rules.append(match.captured(1) + match.captured(2));
        }
    }
    return rules;
}

} // namespace

class CatalogueGuideTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everySentenceHolds_data();
    void everySentenceHolds();
    void everySentenceHasItsTest();
    void examplesHaveNoFinding();
    void severitiesAreThoseOfTheTable();
    void everyRuleFindsWhatIsSaid_data();
    void everyRuleFindsWhatIsSaid();
    void everyRuleIsHeldAgainstTheLibrary();
};

void CatalogueGuideTest::initTestCase()
{
    for (const int level : {2, 3}) {
        vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(level), nullptr);
    }
}

void CatalogueGuideTest::everySentenceHolds_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < guideSentences().size(); ++i) {
        QTest::newRow(qPrintable(guideSentences().at(i).text.left(60))) << i;
    }
}

void CatalogueGuideTest::everySentenceHolds()
{
    QFETCH(int, index);
    QVERIFY2(guideSentences().at(index).holds(), qPrintable(guideSentences().at(index).text));
}

void CatalogueGuideTest::everySentenceHasItsTest()
{
    QStringList tested;
    for (const GuideSentence& sentence : guideSentences()) {
        tested.append(sentence.text);
    }
    QCOMPARE(linesOfGuide(), tested);
}

void CatalogueGuideTest::examplesHaveNoFinding()
{
    QCOMPARE(guideExamples().size(), 3);
    for (const QString& example : guideExamples()) {
        QCOMPARE(vx::test::rulesOf(vx::test::lint(example.toUtf8())), QStringList());
    }
    QFile demo(QFINDTESTDATA("../../../examples/camera_manager/catalogue.xml"));
    QVERIFY(demo.open(QIODevice::ReadOnly));
    QCOMPARE(vx::test::rulesOf(vx::test::lint(demo.readAll())), QStringList());
}

void CatalogueGuideTest::severitiesAreThoseOfTheTable()
{
    const QString text = pageAboutLint();
    QVERIFY(!text.isEmpty());
    for (const vx::Rule& rule : vx::allRules()) {
        const QString row =
            QString("\n| `%1` | %2 | ").arg(rule.name, vx::severityName(rule.severity));
        QVERIFY2(text.count(row) == 1, qPrintable(row));
    }
}

void CatalogueGuideTest::everyRuleFindsWhatIsSaid_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < lintSentences().size(); ++i) {
        QTest::newRow(qPrintable(lintSentences().at(i).rule)) << i;
    }
}

void CatalogueGuideTest::everyRuleFindsWhatIsSaid()
{
    QFETCH(int, index);
    QVERIFY2(lintSentences().at(index).holds(), qPrintable(lintSentences().at(index).found));
}

void CatalogueGuideTest::everyRuleIsHeldAgainstTheLibrary()
{
    QStringList tested;
    for (const LintSentence& sentence : lintSentences()) {
        tested.append(QString("| `%1` | %2").arg(sentence.rule, sentence.found));
    }
    QCOMPARE(rulesOfPage(), tested);
}

VX_TEST_MAIN(CatalogueGuideTest)
#include "tst_CatalogueGuide.moc"
