#include <QTimer>
#include <QtTest>

#include "client/SoftwareUpdateConstants.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

// The lists grow with every client of the process, so that the order of these functions matters.
class ClientFirstRunsTest : public QObject
{
    Q_OBJECT

private slots:
    void firstClientOnAnEmptyStore();
    void secondClientDoublesTheLists();
    void thirdClientTriplesTheLists();
    void constantsHoldTheirTexts_data();
    void constantsHoldTheirTexts();
};

void ClientFirstRunsTest::firstClientOnAnEmptyStore()
{
    ClientFixture fixture;
    QVERIFY(storedKeys().isEmpty());
    TestClient& client = fixture.start();

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
    QCOMPARE(stored("supportedPlatforms").toString(), QStringLiteral("Mac32,Mac64,MacPP"));
    QCOMPARE(stored("supportedPackageTypes").toString(), QStringLiteral("mpkg,dmg"));
    QCOMPARE(stored("installablePackageTypes").toString(), QStringLiteral("mpkg"));

    QVERIFY(client.hourlyTimer()->isActive());
    QCOMPARE(client.hourlyTimer()->interval(), 3600000);
    QVERIFY(!client.hourlyTimer()->isSingleShot());
    QVERIFY(!client.parent());
}

void ClientFirstRunsTest::secondClientDoublesTheLists()
{
    ClientFixture fixture;
    fixture.start();
    QCOMPARE(stored("supportedPlatforms").toString(),
             QStringLiteral("Mac32,Mac64,MacPP,Mac32,Mac64,MacPP"));
    QCOMPARE(stored("supportedPackageTypes").toString(), QStringLiteral("mpkg,dmg,mpkg,dmg"));
    QCOMPARE(stored("installablePackageTypes").toString(), QStringLiteral("mpkg,mpkg"));
}

void ClientFirstRunsTest::thirdClientTriplesTheLists()
{
    ClientFixture fixture;
    writeStored("supportedPlatforms", "Elsewhere");
    TestClient& client = fixture.start();
    QCOMPARE(client.record().supportedPlatforms,
             QStringList({"Mac32", "Mac64", "MacPP", "Mac32", "Mac64", "MacPP", "Mac32", "Mac64",
                          "MacPP"}));
    QCOMPARE(client.record().installablePackageTypes, QStringList({"mpkg", "mpkg", "mpkg"}));
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
