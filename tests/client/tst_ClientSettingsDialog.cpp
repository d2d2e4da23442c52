#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/GUIBaseUtils/DialogFlags.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

QPushButton* button(QDialogButtonBox::StandardButton which)
{
    return settingsDialog()->findChild<QDialogButtonBox*>("buttonBox")->button(which);
}

QString longText(const QDateTime& time)
{
    return QLocale::system().toString(time, QLocale::LongFormat);
}

bool hasFlags(const QWidget* widget, Qt::WindowFlags flags)
{
    return (widget->windowFlags() & flags) == flags;
}

int dialogCount()
{
    int count = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        count += qobject_cast<SoftwareUpdateDialog*>(widget) ? 1 : 0;
    }
    return count;
}

} // namespace

class ClientSettingsDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void opensWithWhatIsStored();
    void firstOpeningHasNoLastCheck();
    void modality_data();
    void modality();
    void windowFlags();
    void secondCallRefreshes();
    void secondCallComesToTheFront();
    void okStoresAndCloses();
    void okStoresAnEmptyAddress();
    void cancelStoresNothing();
    void escapeStoresNothing();
    void applyingDrivesTheTimer_data();
    void applyingDrivesTheTimer();
    void intervalOfNoEntry();
    void closedDialogIsForgottenOnceItIsGone();
    void dialogDestroyedByItsParent();
    void openedFromTheListOfPackages();
    void listOpenedWhileItIsOpenBelongsToIt();
    void forcedListShowsWhatIsThere();
    void recreatedDialogIsConnectedOnce();
};

void ClientSettingsDialogTest::opensWithWhatIsStored()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QDateTime lastCheck(QDate(2012, 3, 4), QTime(5, 6, 7));
    client.setVersionNumber(VersionNumber("4.3.2.1"));
    writeStored("doUpdateCheck", false);
    writeStored("checkForBeta", true);
    writeStored("updateInterval", 2);
    writeStored("lastCheck", lastCheck);
    client.queryForUpdate();

    SoftwareUpdateDialog* dialog = settingsDialog();
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->findChild<QCheckBox*>("updateCheckBox")->isChecked(), false);
    QCOMPARE(dialog->findChild<QCheckBox*>("checkForBetaCheckBox")->isChecked(), true);
    QCOMPARE(dialog->findChild<QComboBox*>("updateComboBox")->currentIndex(), 2);
    QCOMPARE(dialog->findChild<QLineEdit*>("updateServerLineEdit")->text(),
             fixture.server.url().toString());
    QCOMPARE(dialog->findChild<QLabel*>("currentVersionNumberLabel")->text(),
             QString::fromStdString(VersionNumber("4.3.2.1").toShortVersion()));
    QCOMPARE(dialog->findChild<QLabel*>("lastCheckDateLabel")->text(), longText(lastCheck));
    QCOMPARE(dialog->findChild<QLabel*>("updateNotificationLabel")->text(), QString());
    QTRY_VERIFY(dialog->isActiveWindow());
}

void ClientSettingsDialogTest::firstOpeningHasNoLastCheck()
{
    ClientFixture fixture;
    fixture.start();
    const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QCOMPARE(dialog->findChild<QLabel*>("lastCheckDateLabel")->text(), QString());
    QVERIFY(!dialog->findChild<QLabel*>("lastCheckLabel")->isVisible());
    QVERIFY(dialog->findChild<QLabel*>("currentVersionLabel")->isVisible());
}

void ClientSettingsDialogTest::modality_data()
{
    QTest::addColumn<bool>("modal");
    QTest::newRow("modal") << true;
    QTest::newRow("not modal") << false;
}

void ClientSettingsDialogTest::modality()
{
    QFETCH(bool, modal);
    ClientFixture fixture;
    fixture.start().queryForUpdate(Qt::WindowFlags(), modal);
    QCOMPARE(settingsDialog()->isModal(), modal);
    fixture.client().queryForUpdate(Qt::WindowFlags(), !modal);
    QCOMPARE(settingsDialog()->isModal(), modal);
}

void ClientSettingsDialogTest::windowFlags()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.queryForUpdate();
    QVERIFY(hasFlags(settingsDialog(), dialogFlags(true)));
    QVERIFY(!hasFlags(settingsDialog(), Qt::WindowStaysOnTopHint));
    client.setWindowFlags(Qt::Dialog | Qt::WindowStaysOnTopHint);
    QVERIFY(!hasFlags(settingsDialog(), Qt::WindowStaysOnTopHint));
    client.call("deleteUpdateDialog");
    deleteDeferred();

    client.queryForUpdate();
    QVERIFY(hasFlags(settingsDialog(), Qt::WindowStaysOnTopHint));
    client.call("deleteUpdateDialog");
    deleteDeferred();

    client.queryForUpdate(Qt::Dialog | Qt::WindowStaysOnBottomHint);
    QVERIFY(hasFlags(settingsDialog(), Qt::WindowStaysOnBottomHint));
    QVERIFY(!hasFlags(settingsDialog(), Qt::WindowStaysOnTopHint));
}

void ClientSettingsDialogTest::secondCallRefreshes()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    dialog->setNotificationText("left over");
    dialog->findChild<QCheckBox*>("updateCheckBox")->setChecked(false);
    dialog->findChild<QLineEdit*>("updateServerLineEdit")->setText("http://unsaved.example.com/");
    writeStored("updateInterval", 3);

    client.queryForUpdate(Qt::Dialog | Qt::WindowStaysOnTopHint, false);
    QCOMPARE(settingsDialog(), dialog);
    QCOMPARE(dialogCount(), 1);
    QVERIFY(!hasFlags(dialog, Qt::WindowStaysOnTopHint));
    QVERIFY(dialog->isModal());
    const SoftwareUpdateDialogSettings shown = dialog->getDialogSettings();
    QCOMPARE(shown.doUpdateCheck, true);
    QCOMPARE(shown.serverURL, fixture.server.url().toString());
    QCOMPARE(shown.updateInterval, 3);
    QCOMPARE(dialog->findChild<QLabel*>("updateNotificationLabel")->text(), QString());
}

void ClientSettingsDialogTest::secondCallComesToTheFront()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.queryForUpdate(Qt::WindowFlags(), false);
    const SoftwareUpdateDialog* dialog = settingsDialog();
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());
    client.queryForUpdate();
    QTRY_VERIFY(dialog->isActiveWindow());
}

// A user who empties the field means it: the former address must not come back.
void ClientSettingsDialogTest::okStoresAnEmptyAddress()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QVERIFY(!stored("serverURL").toString().isEmpty());
    fixture.openSettingsDialog()->findChild<QLineEdit*>("updateServerLineEdit")->clear();
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(stored("serverURL").isValid());
    QCOMPARE(stored("serverURL").toString(), QString(""));
    QVERIFY(!client.record().serverURL.isNull());
    // Nor does the default replace it.
    fixture.deleteClient();
    QCOMPARE(fixture.start().record().serverURL, QString(""));
}

void ClientSettingsDialogTest::okStoresAndCloses()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    dialog->findChild<QComboBox*>("updateComboBox")->setCurrentIndex(1);
    dialog->findChild<QCheckBox*>("checkForBetaCheckBox")->setChecked(true);
    dialog->findChild<QLineEdit*>("updateServerLineEdit")->setText("http://typed.example.com/");
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);

    const SoftwareUpdateSettings record = client.record();
    QCOMPARE(record.updateInterval, 1);
    QCOMPARE(record.checkForBeta, true);
    QCOMPARE(record.serverURL, QStringLiteral("http://typed.example.com/"));
    QCOMPARE(record.product, QStringLiteral("Fixture Product"));
    QCOMPARE(QString::fromStdString(record.versionNumber.toString()), QStringLiteral("1.0"));
    QVERIFY(record.lastCheck.isNull());
    QVERIFY(!settingsDialog()->isVisible());
    QTRY_VERIFY(!settingsDialog());
}

void ClientSettingsDialogTest::cancelStoresNothing()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.openSettingsDialog()->findChild<QCheckBox*>("updateCheckBox")->setChecked(false);
    QTest::mouseClick(button(QDialogButtonBox::Cancel), Qt::LeftButton);
    QCOMPARE(client.record().doUpdateCheck, true);
    QVERIFY(client.hourlyTimer()->isActive());
    QTRY_VERIFY(!settingsDialog());
}

void ClientSettingsDialogTest::escapeStoresNothing()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.openSettingsDialog()->findChild<QCheckBox*>("updateCheckBox")->setChecked(false);
    QTest::keyClick(settingsDialog(), Qt::Key_Escape);
    QCOMPARE(client.record().doUpdateCheck, true);
    QTRY_VERIFY(!settingsDialog());
}

void ClientSettingsDialogTest::applyingDrivesTheTimer_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::newRow("on to off") << true << false;
    QTest::newRow("off to on") << false << true;
    QTest::newRow("on again restarts the hour") << true << true;
    QTest::newRow("off again") << false << false;
}

void ClientSettingsDialogTest::applyingDrivesTheTimer()
{
    QFETCH(bool, before);
    QFETCH(bool, after);
    ClientFixture fixture;
    writeStored("doUpdateCheck", before);
    TestClient& client = fixture.start();
    QCOMPARE(client.hourlyTimer()->isActive(), before);
    client.hourlyTimer()->setInterval(900000);
    fixture.openSettingsDialog()->findChild<QCheckBox*>("updateCheckBox")->setChecked(after);
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(client.record().doUpdateCheck, after);
    QCOMPARE(client.hourlyTimer()->isActive(), after);
    if (after) {
        QCOMPARE(client.hourlyTimer()->interval(), 3600000);
        QVERIFY(client.hourlyTimer()->remainingTime() > 3500000);
    }
}

void ClientSettingsDialogTest::intervalOfNoEntry()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("updateInterval", 7);
    fixture.openSettingsDialog();
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(client.record().updateInterval, -1);
}

void ClientSettingsDialogTest::closedDialogIsForgottenOnceItIsGone()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QPointer<SoftwareUpdateDialog> dialog = fixture.openSettingsDialog();
    dialog->reject();
    QVERIFY(!dialog->isVisible());
    // Until it is really gone it counts as open, and a call in that gap fills it once more.
    client.queryForUpdate();
    QCOMPARE(dialogCount(), 1);
    deleteDeferred();
    QVERIFY(!dialog);
    QVERIFY(fixture.openSettingsDialog());
}

void ClientSettingsDialogTest::dialogDestroyedByItsParent()
{
    ClientFixture fixture;
    auto* window = new QWidget;
    TestClient& client = fixture.start(window);
    fixture.openSettingsDialog();
    delete window;
    writeStored("updateInterval", 1);
    client.call("queryLastUpdate");
    QVERIFY(client.requestTimer()->isActive());
}

void ClientSettingsDialogTest::openedFromTheListOfPackages()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.setWindowFlags(Qt::Dialog | Qt::WindowStaysOnTopHint);
    SoftwareUpdateAvailableDialog* list = fixture.openAvailableDialog({applicationPackage()});
    QVERIFY(list);
    QTest::mouseClick(list->findChild<QPushButton*>("updateSettingsPushButton"), Qt::LeftButton);
    QVERIFY(settingsDialog());
    QVERIFY(settingsDialog()->isModal());
    QVERIFY(hasFlags(settingsDialog(), dialogFlags(false)));
    QVERIFY(!hasFlags(settingsDialog(), Qt::WindowMaximizeButtonHint));
    QVERIFY(!hasFlags(settingsDialog(), Qt::WindowStaysOnTopHint));
}

void ClientSettingsDialogTest::listOpenedWhileItIsOpenBelongsToIt()
{
    ClientFixture fixture;
    fixture.start();
    fixture.offer({applicationPackage()});
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QTest::mouseClick(dialog->findChild<QPushButton*>("updatePushButton"), Qt::LeftButton);
    QTRY_VERIFY(availableDialog());
    QCOMPARE(availableDialog()->parentWidget(), dialog);
    dialog->reject();
    QTRY_VERIFY(!settingsDialog());
    QVERIFY(!availableDialog());
    QVERIFY(fixture.openAvailableDialog({applicationPackage()}));
}

void ClientSettingsDialogTest::forcedListShowsWhatIsThere()
{
    ClientFixture fixture;
    fixture.start();
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QVERIFY(QMetaObject::invokeMethod(dialog, "forceUpdateAvailable"));
    QVERIFY(availableDialog());
    QVERIFY(availableDialog()->isVisible());
}

void ClientSettingsDialogTest::recreatedDialogIsConnectedOnce()
{
    ClientFixture fixture;
    fixture.start();
    fixture.openSettingsDialog();
    fixture.client().queryForUpdate();
    fixture.client().queryForUpdate();
    QTest::mouseClick(settingsDialog()->findChild<QPushButton*>("updatePushButton"),
                      Qt::LeftButton);
    QTRY_VERIFY(!fixture.client().requestTimer()->isActive());
    QCOMPARE(fixture.server.requests().size(), 1);
}

VX_TEST_MAIN(ClientSettingsDialogTest)
#include "tst_ClientSettingsDialog.moc"
