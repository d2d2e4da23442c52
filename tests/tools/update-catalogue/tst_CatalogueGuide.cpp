// Every sentence of the catalogue guide, beside what the library does.
#include <QtTest>

#include "host/Core/Log.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/GuideSentences.h"
#include "tests/tools/update-catalogue/LintRun.h"

using vx::test::guideExamples;
using vx::test::GuideSentence;
using vx::test::guideSentences;

namespace {

/**
 * The sentences of the page about catalogues: its paragraphs, items and rows of tables. What
 * servers and proxies make of a catalogue has tests of its own, with real ones.
 */
QStringList linesOfGuide()
{
    QStringList lines;
    bool inCode = false;
    for (const QString& line :
         vx::test::catalogueGuide().section("## What servers", 0, 0).split('\n')) {
        inCode = line.startsWith("```") ? !inCode : inCode;
        static const QRegularExpression other("^(```|#|\\| (---|Field|Trap)|$)");
        if (!inCode && !other.match(line).hasMatch()) {
            lines.append(line);
        }
    }
    return lines;
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
    QFile page(QFINDTESTDATA("../../../docs/catalogue-lint.md"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    for (const vx::Rule& rule : vx::allRules()) {
        const QString row =
            QString("\n| `%1` | %2 | ").arg(rule.name, vx::severityName(rule.severity));
        QVERIFY2(text.count(row) == 1, qPrintable(row));
    }
}

VX_TEST_MAIN(CatalogueGuideTest)
#include "tst_CatalogueGuide.moc"
