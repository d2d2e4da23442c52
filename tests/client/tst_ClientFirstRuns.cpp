#include <QTimer>
#include <QtTest>

#include "client/SoftwareUpdateConstants.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

/** What a client makes of a store. The lists grow with every client of the process. */
class ClientFirstRunsTest : public QObject
{
    Q_OBJECT

private slots:
    void clientOnAnEmptyStore();
    void eachClientAddsToTheLists();
    void storedListsAreReplaced();
    void constantsHoldTheirTexts_data();
    void constantsHoldTheirTexts();
};

namespace {

int clientsSoFar = 0;

TestClient& startOne(ClientFixture& fixture)
{
    ++clientsSoFar;
    return fixture.start();
}

/** @p words once for each client of the process. */
QStringList perClient(const QStringList& words)
{
    QStringList list;
    for (int i = 0; i < clientsSoFar; ++i) {
        list += words;
    }
    return list;
}

const QStringList platforms = {"Mac32", "Mac64", "MacPP"};
const QStringList packageTypes = {"mpkg", "dmg"};
const QStringList installableTypes = {"mpkg"};

void verifyStoredLists()
{
    QCOMPARE(stored("supportedPlatforms").toString(), perClient(platforms).join(','));
    QCOMPARE(stored("supportedPackageTypes").toString(), perClient(packageTypes).join(','));
    QCOMPARE(stored("installablePackageTypes").toString(), perClient(installableTypes).join(','));
}

} // namespace

void ClientFirstRunsTest::clientOnAnEmptyStore()
{
    ClientFixture fixture;
    QVERIFY(storedKeys().isEmpty());
    TestClient& client = startOne(fixture);

    const SoftwareUpdateSettings record = client.record();
    QCOMPARE(record.product, QStringLiteral("Fixture Product"));
    QCOMPARE(record.versionNumber.toString(), std::string("1.0"));
    QCOMPARE(record.doUpdateCheck, true);
    QCOMPARE(record.checkForBeta, false);
    QCOMPARE(record.updateInterval, 0);
    QCOMPARE(record.serverURL, fixture.server.url().toString());
    QVERIFY(record.lastCheck.isNull());
    QVERIFY(record.currentCameraVersions.isEmpty());

    QStringList keys = storedKeys();
    keys.sort();
    QCOMPARE(keys, QStringList({"checkForBeta", "doUpdateCheck", "installablePackageTypes",
                                "product", "serverURL", "supportedPackageTypes",
                                "supportedPlatforms", "updateInterval", "versionNumber"}));
    QCOMPARE(stored("doUpdateCheck").toString(), QStringLiteral("true"));
    verifyStoredLists();

    QVERIFY(client.hourlyTimer()->isActive());
    QCOMPARE(client.hourlyTimer()->interval(), 3600000);
    QVERIFY(!client.hourlyTimer()->isSingleShot());
    QVERIFY(!client.parent());
}

void ClientFirstRunsTest::eachClientAddsToTheLists()
{
    for (int i = 0; i < 2; ++i) {
        ClientFixture fixture;
        startOne(fixture);
        verifyStoredLists();
    }
}

void ClientFirstRunsTest::storedListsAreReplaced()
{
    ClientFixture fixture;
    writeStored("supportedPlatforms", "Elsewhere");
    TestClient& client = startOne(fixture);
    QCOMPARE(client.record().supportedPlatforms, perClient(platforms));
    QCOMPARE(client.record().installablePackageTypes, perClient(installableTypes));
}

void ClientFirstRunsTest::constantsHoldTheirTexts_data()
{
    QTest::addColumn<QString>("constant");
    QTest::addColumn<QString>("text");
    const auto row = [](const QString& constant, const char* text) {
        QTest::newRow(text) << constant << QString::fromLatin1(text);
    };
    row(sSoftUpApplicationUpdateTag, "Application");
    row(sSoftUpCameraUpdateTag, "Camera Firmware");
    row(sSoftUpSettingsProductKey, "product");
    row(sSoftUpSettingsVersionNumberKey, "versionNumber");
    row(sSoftUpSettingsSubVersionKey, "subVersion");
    row(sSoftUpSettingsQuietModeKey, "quietMode");
    row(sSoftUpSettingsUpdateServerURLKey, "serverURL");
    row(sSoftUpSettingsDoUpdateCheckKey, "doUpdateCheck");
    row(sSoftUpSettingsCheckForBetaKey, "checkForBeta");
    row(sSoftUpSettingsIntervalKey, "updateInterval");
    row(sSoftUpLastCheckKey, "lastCheck");
    row(sSoftUpSupportedPlatformsKey, "supportedPlatforms");
    row(sSoftUpSupportedPackageTypeKey, "supportedPackageTypes");
    row(sSoftUpInstallablePackageTypeKey, "installablePackageTypes");
    row(sSoftUpCurrentCameraVersionsKey, "currentCameraVersions");
    row(sSoftUpDateKeyFormat, "dd.MM.yyyy hh:mm:ss");
    row(sSoftUpUpdateApplicationExecutable, "UpdateInstaller");
}

void ClientFirstRunsTest::constantsHoldTheirTexts()
{
    QFETCH(QString, constant);
    QTEST(constant, "text");
}

VX_TEST_MAIN(ClientFirstRunsTest)
#include "tst_ClientFirstRuns.moc"
