#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

/** What is offered: the name and release of each row, and whether it is offered as firmware. */
QStringList offered()
{
    QStringList rows;
    if (const auto* dialog = availableDialog()) {
        const auto* table = dialog->findChild<QTableWidget*>("tableWidget");
        for (int row = 0; row < table->rowCount(); ++row) {
            const bool firmware = table->item(row, 3)->text() != "Multilingual";
            rows << table->item(row, 0)->text() + (firmware ? " firmware" : "");
        }
    }
    return rows;
}

const QString noUpdateLine =
    QStringLiteral("SoftwareUpdateClient::parseServerResponse() -> no update available");
const QString upToDateLine =
    QStringLiteral("SoftwareUpdateClient::productUpToDate() -> product is up to date!");

} // namespace

class ClientServerResponseTest : public QObject
{
    Q_OBJECT

private slots:
    void noPackageAtAll_data();
    void noPackageAtAll();
    void application_data();
    void application();
    void applicationNameIsNotTheProduct();
    void beta_data();
    void beta();
    void camera_data();
    void camera();
    void camerasWithoutAName_data();
    void camerasWithoutAName();
    void camerasOfTheRecord_data();
    void camerasOfTheRecord();
    void onlyTheNewestOfEachSearch();
    void applicationsComeFirst();
    void oneRecordForApplicationAndCamera();
    void duplicatesAmongCameras();
    void failedCheckKeepsTheList();
    void eachReplyReplacesTheList();
    void emptyReplyForgetsTheList();
};

void ClientServerResponseTest::noPackageAtAll_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("hasReason");
    QTest::newRow("empty catalogue") << catalogueXml({}) << false;
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("no XML") << QByteArray("Service temporarily unavailable") << true;
    QTest::newRow("web page") << QByteArray("<html><body><p>Hello</body></html>") << true;
    // The parser tells of these.
    QTest::newRow("cut off") << catalogueXml({applicationPackage()}).chopped(10) << false;
    QTest::newRow("binary") << QByteArray(1000, '\0') << false;
}

void ClientServerResponseTest::noPackageAtAll()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, hasReason);
    ClientFixture fixture;
    fixture.start();
    ServedReply reply;
    reply.body = body;
    fixture.server.setReply("/", reply);
    QVERIFY(fixture.check());
    QCOMPARE(fixture.log.lines(3).size(), hasReason ? 2 : 1);
    QVERIFY(fixture.log.contains(3, noUpdateLine));
    QVERIFY(!fixture.log.contains(1, upToDateLine));

    const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QCOMPARE(dialog->findChild<QLabel*>("updateNotificationLabel")->text(),
             QStringLiteral("No update available!"));
    QVERIFY(!availableDialog());
}

void ClientServerResponseTest::application_data()
{
    QTest::addColumn<PackageFields>("package");
    QTest::addColumn<bool>("accepted");
    const PackageFields good = applicationPackage();
    QTest::newRow("newer") << good << true;
    QTest::newRow("same version") << changed(good, {{"release", "1.0"}}) << false;
    QTest::newRow("same version, longer") << changed(good, {{"release", "1.0.0"}}) << false;
    QTest::newRow("older") << changed(good, {{"release", "0.9"}}) << false;
    QTest::newRow("10 is newer than 1.0") << changed(good, {{"release", "10.0"}}) << true;
    QTest::newRow("another name") << changed(good, {{"name", "Other"}}) << false;
    QTest::newRow("other case") << changed(good, {{"name", "fixture application"}}) << false;
    QTest::newRow("another platform") << changed(good, {{"platform", "Win64"}}) << false;
    QTest::newRow("one platform of several")
        << changed(good, {{"platform", "Win64 Mac32"}}) << true;
    QTest::newRow("disk image") << changed(good, {{"url", "http://d.example.com/app.dmg"}}) << true;
    QTest::newRow("unsupported type")
        << changed(good, {{"url", "http://d.example.com/app.zip"}}) << false;
    QTest::newRow("beta") << changed(good, {{"status", "BETA"}}) << false;
    QTest::newRow("no status") << changed(good, {{"status", ""}}) << false;
    QTest::newRow("status in other case") << changed(good, {{"status", "Stable"}}) << false;
    QTest::newRow("any language") << changed(good, {{"language", "sv"}}) << true;
    QTest::newRow("any kind") << changed(good, {{"type", "Manual"}}) << true;
}

void ClientServerResponseTest::application()
{
    QFETCH(PackageFields, package);
    QFETCH(bool, accepted);
    ClientFixture fixture;
    fixture.start();
    fixture.offer({package});
    QVERIFY(fixture.check());
    QCOMPARE(offered().size(), accepted ? 1 : 0);
    QCOMPARE(fixture.log.contains(1, upToDateLine), !accepted);
    QVERIFY(!fixture.log.contains(3, noUpdateLine));
}

void ClientServerResponseTest::applicationNameIsNotTheProduct()
{
    ClientFixture fixture;
    fixture.start();
    fixture.offer({changed(applicationPackage(), {{"name", "Fixture Product"}})});
    QVERIFY(fixture.check());
    QVERIFY(offered().isEmpty());
}

void ClientServerResponseTest::beta_data()
{
    QTest::addColumn<bool>("stored");
    QTest::addColumn<int>("box"); // -1: settings dialog closed
    QTest::addColumn<QStringList>("rows");
    const QStringList stable{"Fixture Application 2.0"};
    const QStringList newest{"Fixture Application 3.0 BETA"};
    QTest::newRow("off") << false << -1 << stable;
    QTest::newRow("on") << true << -1 << newest;
    QTest::newRow("off, box ticked but not applied") << false << 1 << newest;
    QTest::newRow("on, box cleared but not applied") << true << 0 << stable;
}

void ClientServerResponseTest::beta()
{
    QFETCH(bool, stored);
    QFETCH(int, box);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("checkForBeta", stored);
    fixture.offer({applicationPackage(),
                   changed(applicationPackage(), {{"release", "3.0"}, {"status", "BETA"}})});
    if (box >= 0) {
        const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
        dialog->findChild<QCheckBox*>("checkForBetaCheckBox")->setChecked(box == 1);
    }
    QVERIFY(fixture.check());
    QTEST(offered(), "rows");
    QCOMPARE(client.record().checkForBeta, stored);
}

void ClientServerResponseTest::camera_data()
{
    QTest::addColumn<PackageFields>("package");
    QTest::addColumn<bool>("accepted");
    const PackageFields good = changed(cameraPackage(), {{"language", "en"}});
    QTest::newRow("newer") << good << true;
    QTest::newRow("same version") << changed(good, {{"release", "1.5"}}) << false;
    QTest::newRow("another camera") << changed(good, {{"platform", "Dome-24"}}) << false;
    QTest::newRow("a family that begins the name") << changed(good, {{"platform", "Mini"}}) << true;
    QTest::newRow("any name") << changed(good, {{"name", "Whatever"}}) << true;
    QTest::newRow("any file type")
        << changed(good, {{"url", "http://d.example.com/mini-12.bin"}}) << true;
    QTest::newRow("no file type") << changed(good, {{"url", "http://d.example.com/mini-12"}})
                                  << true;
    QTest::newRow("beta") << changed(good, {{"status", "BETA"}}) << false;
}

void ClientServerResponseTest::camera()
{
    QFETCH(PackageFields, package);
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.5"))});
    fixture.offer({package});
    QVERIFY(fixture.check());
    QTEST(offered().size() == 1, "accepted");
}

void ClientServerResponseTest::camerasWithoutAName_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("another camera") << "Mini-12";
    QTest::newRow("the application") << "Mac64";
    QTest::newRow("none") << "";
}

// The firmware of another camera must not be installed on them.
void ClientServerResponseTest::camerasWithoutAName()
{
    QFETCH(QString, platform);
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString(), VersionNumber("1.0"))});
    PackageFields fields = cameraPackage();
    fields["platform"] = platform;
    fixture.offer({fields});
    QVERIFY(fixture.check());
    QCOMPARE(offered(), QStringList());
    QVERIFY(fixture.log.contains(1, upToDateLine));
}

void ClientServerResponseTest::camerasOfTheRecord_data()
{
    QTest::addColumn<QString>("cameras");
    QTest::addColumn<QStringList>("rows");
    const QString mini12 = "Firmware 2.0 firmware";
    const QString dome24 = "Firmware 3.0 firmware";
    QTest::newRow("none") << "" << QStringList();
    QTest::newRow("one") << "Mini-12:1.0" << QStringList({mini12});
    QTest::newRow("stored order") << "Dome-24:1.0,Mini-12:1.0" << QStringList({dome24, mini12});
    QTest::newRow("other order") << "Mini-12:1.0,Dome-24:1.0" << QStringList({mini12, dome24});
    QTest::newRow("same name, each by its own version")
        << "Mini-12:2.0,Mini-12:1.0" << QStringList({mini12});
    QTest::newRow("accepted twice, offered once")
        << "Mini-12:1.0,Mini-12:1.5" << QStringList({mini12});
    QTest::newRow("version unknown") << "Mini-12" << QStringList({mini12});
}

void ClientServerResponseTest::camerasOfTheRecord()
{
    QFETCH(QString, cameras);
    ClientFixture fixture;
    fixture.start();
    writeStored("currentCameraVersions", cameras);
    fixture.offer({cameraPackage(),
                   changed(cameraPackage(),
                           {{"platform", "Dome-24"}, {"release", "3.0"}, {"file-size", "30"}})});
    QVERIFY(fixture.check());
    QTEST(offered(), "rows");
}

void ClientServerResponseTest::onlyTheNewestOfEachSearch()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    fixture.offer({changed(applicationPackage(), {{"release", "2.9"}}),
                   changed(applicationPackage(), {{"release", "2.10"}, {"platform", "Mac32"}}),
                   changed(applicationPackage(), {{"release", "2.10"}}),
                   changed(cameraPackage(), {{"release", "1.9"}}),
                   changed(cameraPackage(), {{"release", "1.8"}, {"file-size", "1"}})});
    QVERIFY(fixture.check());
    QCOMPARE(offered(), QStringList({"Fixture Application 2.10", "Fixture Application 2.10",
                                     "Firmware 1.9 firmware"}));
}

void ClientServerResponseTest::applicationsComeFirst()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    fixture.offer({cameraPackage(), applicationPackage()});
    QVERIFY(fixture.check());
    QCOMPARE(offered(), QStringList({"Fixture Application 2.0", "Firmware 2.0 firmware"}));
}

void ClientServerResponseTest::oneRecordForApplicationAndCamera()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    fixture.offer({changed(applicationPackage(), {{"platform", "Mac64 Mini-12"}})});
    QVERIFY(fixture.check());
    QCOMPARE(offered(),
             QStringList({"Fixture Application 2.0", "Fixture Application 2.0 firmware"}));
}

void ClientServerResponseTest::duplicatesAmongCameras()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    // The same date and size is one package, whatever else differs.
    fixture.offer({cameraPackage(), changed(cameraPackage(), {{"name", "Twin"}})});
    QVERIFY(fixture.check());
    QCOMPARE(offered(), QStringList({"Firmware 2.0 firmware"}));
}

void ClientServerResponseTest::failedCheckKeepsTheList()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.openAvailableDialog({applicationPackage()}));
    ServedReply failure;
    failure.status = 500;
    fixture.server.setReply("/", failure);
    QVERIFY(fixture.check());
    availableDialog()->reject();
    deleteDeferred();
    fixture.client().call("updateAvailable");
    QCOMPARE(offered(), QStringList({"Fixture Application 2.0"}));
}

void ClientServerResponseTest::eachReplyReplacesTheList()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.openAvailableDialog({applicationPackage()}));
    fixture.offer({changed(applicationPackage(), {{"release", "3.0"}})});
    QVERIFY(fixture.check());
    QCOMPARE(offered(), QStringList({"Fixture Application 3.0"}));
}

void ClientServerResponseTest::emptyReplyForgetsTheList()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.openAvailableDialog({applicationPackage()}));
    availableDialog()->reject();
    deleteDeferred();
    fixture.offer({});
    QVERIFY(fixture.check());
    fixture.client().call("updateAvailable");
    QCOMPARE(offered(), QStringList());
}

VX_TEST_MAIN(ClientServerResponseTest)
#include "tst_ClientServerResponse.moc"
