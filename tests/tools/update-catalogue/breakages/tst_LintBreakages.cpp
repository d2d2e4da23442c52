#include <QTemporaryDir>
#include <QtTest>

#include "download/DownloadManager.h"
#include "host/Core/Log.h"
#include "tests/support/Repeats.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/LintRun.h"
#include "tests/tools/update-catalogue/breakages/Breakages.h"

using vx::test::Breakage;
using vx::test::GoodCatalogue;
using vx::test::Needs;

namespace {

constexpr quint32 defaultSeed = 20261122;
constexpr int goodCatalogues = vx::test::repeats(500);
constexpr int catalogues = 20;

quint32 firstSeed()
{
    const int seed = qEnvironmentVariableIntValue("VX_TEST_SEED");
    return seed != 0 ? static_cast<quint32>(seed) : defaultSeed;
}

/** A folder with files of the sizes that @p catalogue announces, or all of one size. */
void makeFiles(GoodCatalogue& catalogue, const QString& folder)
{
    for (vx::test::WrittenPackage* package : catalogue.all()) {
        const QString name = package->fields.value("url").section('/', -1);
        package->fields["file-size"] = QString::number(100000000);
        QFile file(QDir(folder).filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(100000000));
    }
}

QByteArray describe(const vx::FindingList& findings)
{
    QString text;
    for (const vx::Finding& finding : findings) {
        text +=
            QString("%1: %2 %3\n").arg(finding.position.line).arg(finding.rule, finding.sentence);
    }
    return text.toUtf8();
}

QByteArray write(vx::test::Planting& planting)
{
    QString text = planting.catalogue.text();
    if (planting.editText) {
        planting.editText(text);
    }
    QByteArray bytes = planting.catalogue.encoded(text);
    if (planting.editBytes) {
        planting.editBytes(bytes);
    }
    return bytes;
}

} // namespace

/** Plants each breakage in random good catalogues, and looks whether the rule that names it does.
 */
class LintBreakagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void goodCataloguesHaveNoFinding();
    void breakagesAreFound_data();
    void breakagesAreFound();
    void tableIsThatOfTheDocumentation();
};

void LintBreakagesTest::initTestCase()
{
    for (const int level : {2, 3}) {
        vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(level), nullptr);
    }
}

void LintBreakagesTest::goodCataloguesHaveNoFinding()
{
    QRandomGenerator random(firstSeed());
    for (int i = 0; i < goodCatalogues; ++i) {
        GoodCatalogue catalogue(random);
        vx::LintOptions options = vx::test::clientOptions();
        options.installations = catalogue.installations();
        const QByteArray bytes = catalogue.encoded(catalogue.text());
        const vx::FindingList findings = vx::test::lint(bytes, options);
        QVERIFY2(findings.isEmpty(), (describe(findings) + bytes).constData());
    }
}

void LintBreakagesTest::breakagesAreFound_data()
{
    QTest::addColumn<int>("index");

    for (int i = 0; i < vx::test::allBreakages().size(); ++i) {
        QTest::newRow(qPrintable(vx::test::allBreakages().at(i).what)) << i;
    }
}

void LintBreakagesTest::breakagesAreFound()
{
    QFETCH(int, index);
    const Breakage breakage = vx::test::allBreakages().at(index);

    for (int i = 0; i < vx::test::repeats(catalogues); ++i) {
        QRandomGenerator random(firstSeed() + static_cast<quint32>(1000 * index + i));
        GoodCatalogue catalogue(random);
        vx::LintOptions options = vx::test::clientOptions();
        QTemporaryDir folder;
        if (breakage.needs == Needs::Installations) {
            options.installations = catalogue.installations();
        } else if (breakage.needs == Needs::Files) {
            makeFiles(catalogue, folder.path());
            options.files = folder.path();
        }
        vx::test::Planting planting{catalogue, {}, {}};
        breakage.plant(planting);
        const QByteArray bytes = write(planting);

        const vx::FindingList findings = vx::test::lint(bytes, options);
        const QStringList rules = vx::test::rulesOf(findings);
        const bool asDocumented =
            breakage.rule.isEmpty() ? rules.isEmpty() : rules.contains(breakage.rule);
        QVERIFY2(asDocumented, (describe(findings) + bytes).constData());
    }
}

void LintBreakagesTest::tableIsThatOfTheDocumentation()
{
    QString table;
    int found = 0;
    for (const Breakage& breakage : vx::test::allBreakages()) {
        QString how =
            breakage.rule.isEmpty() ? "none: " + breakage.whyNot : '`' + breakage.rule + '`';
        how += breakage.needs == Needs::Installations ? " with `--installations`" : "";
        how += breakage.needs == Needs::Files ? " with `--files`" : "";
        table += QString("| %1 | %2 |\n").arg(breakage.what, how);
        found += breakage.rule.isEmpty() ? 0 : 1;
        QVERIFY(breakage.rule.isEmpty() != breakage.whyNot.isEmpty());
    }
    const int all = static_cast<int>(vx::test::allBreakages().size());
    QVERIFY(all >= 100);
    const QString count =
        QString("%1 breakages, each planted in %2 random catalogues, %3 cases in all. Lint finds "
                "%4 of them in every case; %5 cannot be seen in a catalogue.")
            .arg(all)
            .arg(catalogues)
            .arg(all * catalogues)
            .arg(found)
            .arg(all - found);
    QFile page(QFINDTESTDATA("../../../../docs/catalogue-lint.md"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    // The table is too long for a message.
    QFile expected("lint-breakages.md");
    QVERIFY(expected.open(QIODevice::WriteOnly));
    expected.write((count + '\n' + table).toUtf8());
    QVERIFY2(text.contains(table),
             qPrintable("The table should be that of " + QFileInfo(expected).absoluteFilePath()));
    QVERIFY2(text.contains(count), qPrintable("The count should be\n" + count));
    expected.remove();
}

VX_TEST_MAIN(LintBreakagesTest)
#include "tst_LintBreakages.moc"
