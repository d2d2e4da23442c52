#include <QMetaMethod>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

SoftUpCurrentCameraVersions
cameras(std::initializer_list<std::pair<const char*, const char*>> items)
{
    SoftUpCurrentCameraVersions list;
    for (const auto& item : items) {
        list.append(qMakePair(QString::fromUtf8(item.first), VersionNumber(item.second)));
    }
    return list;
}

QStringList asTexts(const SoftUpCurrentCameraVersions& list)
{
    QStringList texts;
    for (const auto& camera : list) {
        texts << camera.first + '=' + QString::fromStdString(camera.second.toString());
    }
    return texts;
}

QString versionText(const VersionNumber& version)
{
    return QString::fromStdString(version.toString());
}

} // namespace

class ClientSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void recordDefaults();
    void clearedRecord();
    void argumentsReplaceWhatIsStored();
    void storedServerWins_data();
    void storedServerWins();
    void timerFollowsTheStore();
    void flagsAreReadFromTheirText_data();
    void flagsAreReadFromTheirText();
    void absentKeys();
    void typesThatDoNotFit();
    void writingNeverRemoves();
    void roundTrip();
    void listsDropEmptyParts();
    void camerasAsText_data();
    void camerasAsText();
    void camerasWithoutEscaping_data();
    void camerasWithoutEscaping();
    void emptyCameraListChangesNothing();
    void versionNumberIsStored();
    void enablingAndDisablingAreNotStored();
    void parentOfLaterDialogs();
    void parentThatIsGone();
    void slotTables();
};

void ClientSettingsTest::recordDefaults()
{
    const SoftwareUpdateSettings record;
    QVERIFY(record.product.isNull());
    QVERIFY(record.versionNumber == VersionNumber());
    QCOMPARE(record.quietMode, false);
    QVERIFY(record.serverURL.isNull());
    QCOMPARE(record.doUpdateCheck, true);
    QCOMPARE(record.checkForBeta, false);
    QCOMPARE(record.updateInterval, 0);
    QVERIFY(record.lastCheck.isNull());
    QVERIFY(record.supportedPlatforms.isEmpty());
    QVERIFY(record.supportedPackageTypes.isEmpty());
    QVERIFY(record.installablePackageTypes.isEmpty());
    QVERIFY(record.currentCameraVersions.isEmpty());
}

void ClientSettingsTest::clearedRecord()
{
    SoftwareUpdateSettings record;
    record.product = "P";
    record.versionNumber = VersionNumber("3.1");
    record.quietMode = true;
    record.serverURL = "http://elsewhere.example.com/";
    record.checkForBeta = true;
    record.updateInterval = 3;
    record.lastCheck = QDateTime::currentDateTime();
    record.supportedPlatforms << "Mac64";
    record.supportedPackageTypes << "dmg";
    record.installablePackageTypes << "mpkg";
    record.currentCameraVersions = cameras({{"Mini-12", "1.0"}});
    record.clear();

    QVERIFY(record.product.isNull());
    QVERIFY(record.versionNumber == VersionNumber());
    QCOMPARE(record.quietMode, false);
    QVERIFY(record.serverURL.isNull());
    QCOMPARE(record.doUpdateCheck, false);
    QCOMPARE(record.checkForBeta, false);
    QCOMPARE(record.updateInterval, 0);
    QVERIFY(record.lastCheck.isNull());
    QVERIFY(record.supportedPlatforms.isEmpty());
    QVERIFY(record.supportedPackageTypes.isEmpty());
    QVERIFY(record.installablePackageTypes.isEmpty());
    QVERIFY(record.currentCameraVersions.isEmpty());
}

void ClientSettingsTest::argumentsReplaceWhatIsStored()
{
    ClientFixture fixture;
    writeStored("product", "Former Product");
    writeStored("versionNumber", "9.9");
    TestClient& client = fixture.start();
    QCOMPARE(client.record().product, QStringLiteral("Fixture Product"));
    QCOMPARE(versionText(client.record().versionNumber), QStringLiteral("1.0"));
}

void ClientSettingsTest::storedServerWins_data()
{
    QTest::addColumn<QString>("before");
    QTest::newRow("another address") << QStringLiteral("http://user.example.com/");
    QTest::newRow("an empty text counts as a value") << QStringLiteral("");
}

void ClientSettingsTest::storedServerWins()
{
    QFETCH(QString, before);
    ClientFixture fixture;
    writeStored("serverURL", before);
    TestClient& client = fixture.start();
    QVERIFY(!client.record().serverURL.isNull());
    QCOMPARE(client.record().serverURL, before);
    QCOMPARE(stored("serverURL").toString(), before);
}

void ClientSettingsTest::timerFollowsTheStore()
{
    ClientFixture fixture;
    writeStored("doUpdateCheck", false);
    TestClient& client = fixture.start();
    QVERIFY(!client.hourlyTimer()->isActive());
    QCOMPARE(client.record().doUpdateCheck, false);
}

void ClientSettingsTest::flagsAreReadFromTheirText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("doUpdateCheck");
    QTest::addColumn<bool>("checkForBeta");
    QTest::newRow("empty text reads as if absent") << QVariant(QString("")) << true << false;
    QTest::newRow("true") << QVariant(true) << true << true;
    QTest::newRow("false") << QVariant(false) << false << false;
    QTest::newRow("0") << QVariant("0") << false << false;
    QTest::newRow("1") << QVariant("1") << true << true;
    QTest::newRow("any other text is true") << QVariant("yes") << true << true;
}

void ClientSettingsTest::flagsAreReadFromTheirText()
{
    QFETCH(QVariant, value);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("doUpdateCheck", value);
    writeStored("checkForBeta", value);
    QTEST(client.record().doUpdateCheck, "doUpdateCheck");
    QTEST(client.record().checkForBeta, "checkForBeta");
}

void ClientSettingsTest::absentKeys()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QSettings(QSettings::NativeFormat, QSettings::UserScope, "Fixture Works", "Fixture Application")
        .clear();

    SoftwareUpdateSettings record;
    record.quietMode = true;
    record.serverURL = "left over";
    record.supportedPlatforms << "left over";
    client.getCurrentSettings(&record);
    QCOMPARE(record.doUpdateCheck, true);
    QCOMPARE(record.checkForBeta, false);
    QCOMPARE(record.updateInterval, 0);
    QVERIFY(record.serverURL.isNull());
    QVERIFY(record.versionNumber == VersionNumber("0"));
    QVERIFY(record.versionNumber != VersionNumber());
    QVERIFY(record.product.isNull());
    QVERIFY(record.lastCheck.isNull());
    QVERIFY(record.supportedPlatforms.isEmpty());
    QVERIFY(record.currentCameraVersions.isEmpty());
    QCOMPARE(record.quietMode, false);
}

void ClientSettingsTest::typesThatDoNotFit()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("updateInterval", "weekly");
    writeStored("lastCheck", "yesterday");
    writeStored("versionNumber", QString(""));
    QCOMPARE(client.record().updateInterval, 0);
    QVERIFY(client.record().lastCheck.isNull());
    QVERIFY(client.record().versionNumber == VersionNumber(""));
}

void ClientSettingsTest::writingNeverRemoves()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    SoftwareUpdateSettings full = client.record();
    full.lastCheck = QDateTime(QDate(2012, 3, 4), QTime(5, 6, 7));
    full.currentCameraVersions = cameras({{"Mini-12", "1.5"}});
    client.store(full);
    const QStringList keys = storedKeys();

    SoftwareUpdateSettings empty;
    empty.clear();
    client.store(empty);
    QCOMPARE(storedKeys(), keys);
    const SoftwareUpdateSettings after = client.record();
    QCOMPARE(after.doUpdateCheck, false);
    QCOMPARE(after.product, full.product);
    QCOMPARE(versionText(after.versionNumber), versionText(full.versionNumber));
    QCOMPARE(after.serverURL, full.serverURL);
    QCOMPARE(after.lastCheck, full.lastCheck);
    QCOMPARE(after.supportedPlatforms, full.supportedPlatforms);
    QCOMPARE(after.supportedPackageTypes, full.supportedPackageTypes);
    QCOMPARE(after.installablePackageTypes, full.installablePackageTypes);
    QCOMPARE(asTexts(after.currentCameraVersions), asTexts(full.currentCameraVersions));
}

void ClientSettingsTest::roundTrip()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    SoftwareUpdateSettings record;
    record.product = QString::fromUtf8("Größe, \"quoted\"; = [x]");
    record.versionNumber = VersionNumber("4.10.2b3");
    record.serverURL = "http://server.example.com/list?a=b,c#d";
    record.doUpdateCheck = false;
    record.checkForBeta = true;
    record.updateInterval = 2;
    record.lastCheck = QDateTime(QDate(2012, 3, 4), QTime(5, 6, 7, 89));
    record.supportedPlatforms = QStringList{"A b", QString::fromUtf8("Ä")};
    record.supportedPackageTypes = QStringList{"zip", "tar.gz"};
    record.installablePackageTypes = QStringList{"zip"};
    record.currentCameraVersions = cameras({{"Mini-12 Außen", "1.5"}, {"Dome-24", "2.0"}});
    client.store(record);

    const SoftwareUpdateSettings read = client.record();
    QCOMPARE(read.product, record.product);
    QCOMPARE(versionText(read.versionNumber), versionText(record.versionNumber));
    QCOMPARE(read.serverURL, record.serverURL);
    QCOMPARE(read.doUpdateCheck, false);
    QCOMPARE(read.checkForBeta, true);
    QCOMPARE(read.updateInterval, 2);
    QCOMPARE(read.lastCheck, record.lastCheck);
    QCOMPARE(read.supportedPlatforms, record.supportedPlatforms);
    QCOMPARE(read.supportedPackageTypes, record.supportedPackageTypes);
    QCOMPARE(read.installablePackageTypes, record.installablePackageTypes);
    QCOMPARE(asTexts(read.currentCameraVersions), asTexts(record.currentCameraVersions));
    QCOMPARE(stored("lastCheck").userType(), int(QMetaType::QDateTime));
}

void ClientSettingsTest::listsDropEmptyParts()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("supportedPlatforms", ",Mac64,,mac64,");
    QCOMPARE(client.record().supportedPlatforms, QStringList({"Mac64", "mac64"}));
}

void ClientSettingsTest::camerasAsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("read");
    QTest::newRow("two cameras") << "Mini-12:1.5,Dome-24:2.0"
                                 << QStringList({"Mini-12=1.5", "Dome-24=2.0"});
    QTest::newRow("two commas in a row")
        << "Mini-12:1.5,,Dome-24:2.0" << QStringList({"Mini-12=1.5", "Dome-24=2.0"});
    QTest::newRow("no colon") << "Mini-12" << QStringList({"Mini-12="});
    QTest::newRow("second colon") << "Mini-12:1.5:lost" << QStringList({"Mini-12=1.5"});
    QTest::newRow("no name") << ":1.5" << QStringList({"=1.5"});
    QTest::newRow("same name twice")
        << "Mini-12:1.0,Mini-12:2.0" << QStringList({"Mini-12=1.0", "Mini-12=2.0"});
    QTest::newRow("empty") << "" << QStringList();
}

void ClientSettingsTest::camerasAsText()
{
    QFETCH(QString, text);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("currentCameraVersions", text);
    QTEST(asTexts(client.record().currentCameraVersions), "read");
}

void ClientSettingsTest::camerasWithoutEscaping_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("read");
    QTest::newRow("plain") << "Mini-12"
                           << "Mini-12:1.5" << QStringList({"Mini-12=1.5"});
    QTest::newRow("colon") << "M:15"
                           << "M:15:1.5" << QStringList({"M=15"});
    QTest::newRow("comma") << "M,15"
                           << "M,15:1.5" << QStringList({"M=", "15=1.5"});
}

void ClientSettingsTest::camerasWithoutEscaping()
{
    QFETCH(QString, name);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.setCurrentCameraVersions({qMakePair(name, VersionNumber("1.5"))});
    QTEST(stored("currentCameraVersions").toString(), "text");
    QTEST(asTexts(client.record().currentCameraVersions), "read");
}

void ClientSettingsTest::emptyCameraListChangesNothing()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.setCurrentCameraVersions(cameras({{"Mini-12", "1.5"}, {"Dome-24", "2.0"}}));
    QCOMPARE(stored("currentCameraVersions").toString(), QStringLiteral("Mini-12:1.5,Dome-24:2.0"));
    client.setCurrentCameraVersions({});
    QCOMPARE(stored("currentCameraVersions").toString(), QStringLiteral("Mini-12:1.5,Dome-24:2.0"));
    client.setCurrentCameraVersions(cameras({{"Mini-12", "3.0"}}));
    QCOMPARE(stored("currentCameraVersions").toString(), QStringLiteral("Mini-12:3.0"));
}

void ClientSettingsTest::versionNumberIsStored()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.setVersionNumber(VersionNumber("2.5"));
    QCOMPARE(stored("versionNumber").toString(), QStringLiteral("2.5"));
    client.setVersionNumber(VersionNumber());
    QCOMPARE(stored("versionNumber").toString(), QStringLiteral("2.5"));
    client.setVersionNumber(VersionNumber("0"));
    QCOMPARE(stored("versionNumber").toString(), QStringLiteral("0"));
}

void ClientSettingsTest::enablingAndDisablingAreNotStored()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.disableSoftwareUpdate();
    QVERIFY(!client.hourlyTimer()->isActive());
    QCOMPARE(client.record().doUpdateCheck, true);
    client.hourlyTimer()->setInterval(17);
    client.enableSoftwareUpdate();
    QVERIFY(client.hourlyTimer()->isActive());
    QCOMPARE(client.hourlyTimer()->interval(), 3600000);

    client.disableSoftwareUpdate();
    TestClient& next = fixture.start();
    QVERIFY(next.hourlyTimer()->isActive());

    writeStored("doUpdateCheck", false);
    next.enableSoftwareUpdate();
    QVERIFY(next.hourlyTimer()->isActive());
    QCOMPARE(next.record().doUpdateCheck, false);
}

void ClientSettingsTest::parentOfLaterDialogs()
{
    ClientFixture fixture;
    QWidget first;
    QWidget second;
    TestClient& client = fixture.start(&first);
    QVERIFY(!client.parent());
    const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QCOMPARE(dialog->parentWidget(), &first);
    client.setParent(&second);
    QCOMPARE(dialog->parentWidget(), &first);
    QVERIFY(!static_cast<QObject&>(client).parent());

    client.call("deleteUpdateDialog");
    deleteDeferred();
    QCOMPARE(fixture.openSettingsDialog()->parentWidget(), &second);
}

void ClientSettingsTest::parentThatIsGone()
{
    ClientFixture fixture;
    auto* window = new QWidget;
    QWidget other;
    TestClient& client = fixture.start(window);
    QVERIFY(fixture.openSettingsDialog());
    delete window;
    QVERIFY(!settingsDialog());
    QCOMPARE(fixture.openSettingsDialog()->parentWidget(), nullptr);
    client.call("deleteUpdateDialog");
    deleteDeferred();

    auto* former = new QWidget;
    client.setParent(former);
    client.setParent(&other);
    delete former;
    QCOMPARE(fixture.openSettingsDialog()->parentWidget(), &other);
}

void ClientSettingsTest::slotTables()
{
    const QMetaObject& meta = SoftwareUpdateClient::staticMetaObject;
    QStringList publicSlots;
    QStringList privateSlots;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        (method.access() == QMetaMethod::Public ? publicSlots : privateSlots)
            << QString::fromLatin1(method.methodSignature());
    }
    QCOMPARE(publicSlots,
             QStringList({"checkForUpdate()", "checkForUpdate(int)", "doInitialCheck(int)",
                          "doInitialCheck()", "queryForUpdate(Qt::WindowFlags,bool)",
                          "queryForUpdate(Qt::WindowFlags)", "queryForUpdate()",
                          "enableSoftwareUpdate()", "disableSoftwareUpdate()",
                          "setVersionNumber(VersionNumber)",
                          "setCurrentCameraVersions(SoftUpCurrentCameraVersions)",
                          "setParent(QWidget*)", "setWindowFlags(Qt::WindowFlags)"}));
    QCOMPARE(privateSlots, QStringList({"updateAvailable()",
                                        "doBackgroundCheck()",
                                        "applyDialogSettings(SoftwareUpdateDialogSettings)",
                                        "downloadUrls(SoftUpIndexList)",
                                        "downloadReleaseNotes(SoftUpIndexList)",
                                        "downloadProgress(int,int)",
                                        "downloadError(int)",
                                        "installPackage(int)",
                                        "determineForeignLanguageRows(PackageInfoList)",
                                        "downloadFinished()",
                                        "abortDownload()",
                                        "evaluateServerResponse(QNetworkReply*)",
                                        "requestTimeout()",
                                        "requestError(QString)",
                                        "queryLastUpdate(int)",
                                        "queryLastUpdate()",
                                        "deleteUpdateDialog()",
                                        "deleteUpdateAvailableDialog()",
                                        "deleteNetworkmanager()",
                                        "deleteProgressDialog()",
                                        "startZipInstall()",
                                        "unzippedMPKGPackage(QString)",
                                        "manageUpdateAvailableDialog(SoftUpIndexList)",
                                        "showHideForeignLanguageItems(bool)",
                                        "setUpdateAvailableNull(QObject*)",
                                        "setUpdateAvailableNull()",
                                        "setUpdateDialogNull(QObject*)",
                                        "setUpdateDialogNull()",
                                        "openSettingsDialogFromUpdateAvailableDialog()"}));
}

VX_TEST_MAIN(ClientSettingsTest)
#include "tst_ClientSettings.moc"
