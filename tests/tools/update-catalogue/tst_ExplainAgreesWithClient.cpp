// What the workbench says is offered must be what a real check leaves in the dialog's table: a real
// client asks a real server for thousands of random catalogues.
#include <QApplication>
#include <QTableWidget>
#include <QtTest>

#include "client/SoftwareUpdateClient.h"
#include "client/SoftwareUpdateConstants.h"
#include "client/internal/PackageTable.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Repeats.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/RandomCatalogue.h"
#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/explain/Explanation.h"

namespace {

// Qt Test gives each row five minutes, and a busy machine may need a tenth of a second for a case.
constexpr int rowCount = vx::test::repeats(25);
constexpr int casesEachRow = 100;

/** The seed of all rows, which the environment may set. */
quint32 firstSeed()
{
    bool isNumber = false;
    const quint32 seed = qEnvironmentVariable("VX_TEST_SEED").toUInt(&isNumber);
    return isNumber ? seed : 1;
}

/** Wakes with each event: QTest's own waiting sleeps 10 ms at a time, for thousands of checks. */
template <typename Condition>
bool waitUntil(const Condition& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 20000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

QTableWidget* openTable()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* table = widget->findChild<QTableWidget*>("tableWidget");
        if (table != nullptr && widget->isVisible()) {
            return table;
        }
    }
    return nullptr;
}

QList<QStringList> cellsOf(const QTableWidget& table)
{
    QList<QStringList> rows;
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < table.columnCount(); ++column) {
            cells.append(table.item(row, column)->text());
        }
        rows.append(cells);
    }
    return rows;
}

/** The rows that follow from the verdicts alone. */
QList<QStringList> explainedRows(const vx::PackageInfoList& catalogue,
                                 const vx::Explanation& explanation)
{
    QList<QStringList> rows;
    for (const vx::TargetExplanation& target : explanation.targets) {
        for (const vx::Verdict& verdict : target.verdicts) {
            if (verdict.outcome != vx::Verdict::Offered) {
                continue;
            }
            vx::PackageInfo package = catalogue.at(verdict.package);
            package.type = target.kind == "camera" ? vx::sSoftUpCameraUpdateTag
                                                   : vx::sSoftUpApplicationUpdateTag;
            rows.append(vx::packageTableRow(package));
        }
    }
    return rows;
}

vx::PackageInfoList packagesOf(const QByteArray& catalogue)
{
    return vx::parseCatalogue({"catalogue", catalogue}).packages;
}

} // namespace

class ExplainAgreesWithClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void agrees_data();
    void agrees();
    void cleanupTestCase();

private:
    QList<QStringList> check(const QByteArray& catalogue, const vx::OfferCriteria& criteria);

    vx::UpdateServer m_server;
    int m_cases = 0;
    int m_offers = 0;
};

void ExplainAgreesWithClientTest::initTestCase()
{
    QApplication::setOrganizationName("Agreement");
    QVERIFY(m_server.start());
}

QList<QStringList> ExplainAgreesWithClientTest::check(const QByteArray& catalogue,
                                                      const vx::OfferCriteria& criteria)
{
    vx::ServedReply reply;
    reply.body = catalogue;
    m_server.setReply("/catalogue.xml", reply);
    m_server.clearRequests();
    QSettings(QApplication::organizationName(), criteria.applicationName).clear();
    QApplication::setApplicationName(criteria.applicationName);

    vx::test::LogCapture log;
    vx::SoftwareUpdateClient client("Product", criteria.versionNumber,
                                    m_server.url("/catalogue.xml").toString(), nullptr);
    vx::SoftwareUpdateSettings settings;
    client.getCurrentSettings(&settings);
    settings.checkForBeta = criteria.checkForBeta;
    settings.supportedPlatforms = criteria.supportedPlatforms;
    settings.supportedPackageTypes = criteria.supportedPackageTypes;
    settings.currentCameraVersions = criteria.currentCameraVersions;
    client.setCurrentSettings(&settings);
    client.checkForUpdate();

    const auto isDone = [&log] {
        return log.contains(1,
                            "SoftwareUpdateClient::evaluateServerResponse() -> update available") ||
               log.contains(1,
                            "SoftwareUpdateClient::productUpToDate() -> product is up to date!") ||
               log.contains(3,
                            "SoftwareUpdateClient::parseServerResponse() -> no update available");
    };
    if (!waitUntil(isDone)) {
        return {{"no verdict"}};
    }
    QTableWidget* table = openTable();
    const QList<QStringList> rows = table == nullptr ? QList<QStringList>() : cellsOf(*table);
    if (table != nullptr) {
        table->window()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return rows;
}

void ExplainAgreesWithClientTest::agrees_data()
{
    QTest::addColumn<quint32>("seed");
    QRandomGenerator random(firstSeed());
    for (int row = 0; row < rowCount; ++row) {
        const quint32 seed = random.generate();
        QTest::addRow("seed %u", seed) << seed;
    }
}

void ExplainAgreesWithClientTest::agrees()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < casesEachRow; ++i) {
        const QByteArray catalogue = vx::test::randomCatalogue(random);
        const vx::OfferCriteria criteria = vx::test::randomInstallation(random);
        const vx::PackageInfoList packages = packagesOf(catalogue);
        const QList<QStringList> explained =
            explainedRows(packages, vx::explain(packages, criteria));
        const QList<QStringList> shown = check(catalogue, criteria);
        if (explained != shown) {
            qWarning() << "case" << i << catalogue << explained << shown;
        }
        QCOMPARE(explained, shown);
        ++m_cases;
        m_offers += shown.isEmpty() ? 0 : 1;
    }
}

void ExplainAgreesWithClientTest::cleanupTestCase()
{
    // Were nothing ever offered, agreement would say nothing.
    QVERIFY(m_cases == 0 || m_offers > m_cases / 10);
    QVERIFY(m_cases == 0 || m_offers < m_cases * 9 / 10);
}

VX_TEST_MAIN(ExplainAgreesWithClientTest)
#include "tst_ExplainAgreesWithClient.moc"
