#include "dialogs/SoftwareUpdateDialog.h"

#include <QSignalSpy>
#include <QtTest>

#include "tests/dialogs/HeldModifier.h"
#include "tests/dialogs/SettingsDialogAccess.h"
#include "tests/support/TestMain.h"

using namespace vx::test;
using vx::SoftwareUpdateDialog;
using vx::SoftwareUpdateDialogSettings;

namespace {

const QList<bool> none = {false, false, false};

} // namespace

class SettingsDialogActionsTest : public QObject
{
    Q_OBJECT

public slots:
    void receive(const SoftwareUpdateDialogSettings& settings) { m_received = fields(settings); }

private slots:
    void reportsCheckNow();
    void appliesBeforeItCloses();
    void appliesHiddenFieldsUnchanged();
    void discardsOnCancel_data();
    void discardsOnCancel();
    void confirmsByEnter();
    void appliesByRole_data();
    void appliesByRole();
    void appliesOnDirectCall();
    void passesSettingsThroughQueue();
    void neverForcesUpdateAvailable();

private:
    QVariantList m_received;
};

void SettingsDialogActionsTest::reportsCheckNow()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.show();
    const QSignalSpy checks(&dialog, SIGNAL(checkForUpdate()));
    const QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    click(dialog, "updatePushButton");
    QCOMPARE(checks.count(), 1);
    QTest::keyClick(&child<QWidget>(dialog, "updatePushButton"), Qt::Key_Space);
    QCOMPARE(checks.count(), 2);
    QCOMPARE(applied.count(), 0);
    QVERIFY(dialog.isVisible());
}

void SettingsDialogActionsTest::appliesBeforeItCloses()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    QStringList order;
    QVariantList applied;
    connect(&dialog, &SoftwareUpdateDialog::applySettings, this,
            [&](const SoftwareUpdateDialogSettings& settings) {
                order.append(dialog.isVisible() ? "applied while open" : "applied too late");
                applied = fields(settings);
            });
    connect(&dialog, &QDialog::accepted, this, [&] { order.append("accepted"); });
    connect(&dialog, &QDialog::rejected, this, [&] { order.append("rejected"); });
    QTest::mouseClick(&standardButton(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(order, QStringList({"applied while open", "accepted"}));
    QCOMPARE(applied, fields(sampleSettings()));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void SettingsDialogActionsTest::appliesHiddenFieldsUnchanged()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    QCOMPARE(visibleFields(dialog), none);
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    QTest::mouseClick(&standardButton(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(applied.count(), 1);
    const auto settings = applied.at(0).at(0).value<SoftwareUpdateDialogSettings>();
    QCOMPARE(settings.checkForBeta, true);
    QCOMPARE(settings.serverURL, sampleSettings().serverURL);
}

void SettingsDialogActionsTest::discardsOnCancel_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("escape") << true;
}

void SettingsDialogActionsTest::discardsOnCancel()
{
    QFETCH(bool, byKey);
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    const QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    const QSignalSpy rejected(&dialog, SIGNAL(rejected()));
    if (byKey) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    } else {
        QTest::mouseClick(&standardButton(dialog, QDialogButtonBox::Cancel), Qt::LeftButton);
    }
    QCOMPARE(applied.count(), 0);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dialog.isVisible());
}

void SettingsDialogActionsTest::confirmsByEnter()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    QTest::keyClick(&child<QWidget>(dialog, "updateCheckBox"), Qt::Key_Return);
    QCOMPARE(applied.count(), 1);
    QVERIFY(!dialog.isVisible());
}

void SettingsDialogActionsTest::appliesByRole_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("applied");
    QTest::newRow("accept role") << int(QDialogButtonBox::Ok) << 1;
    QTest::newRow("accept role of another button") << int(QDialogButtonBox::Save) << 1;
    QTest::newRow("apply role") << int(QDialogButtonBox::Apply) << 1;
    QTest::newRow("reject role") << int(QDialogButtonBox::Cancel) << 0;
    QTest::newRow("reset role") << int(QDialogButtonBox::Reset) << 0;
    QTest::newRow("help role") << int(QDialogButtonBox::Help) << 0;
    QTest::newRow("yes role") << int(QDialogButtonBox::Yes) << 0;
    QTest::newRow("destructive role") << int(QDialogButtonBox::Discard) << 0;
}

void SettingsDialogActionsTest::appliesByRole()
{
    QFETCH(int, button);
    const auto standard = QDialogButtonBox::StandardButton(button);
    SoftwareUpdateDialog dialog(nullptr, {});
    auto& box = child<QDialogButtonBox>(dialog, "buttonBox");
    if (box.button(standard) == nullptr) {
        box.addButton(standard);
    }
    dialog.show();
    const QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    QTest::mouseClick(box.button(standard), Qt::LeftButton);
    QTEST(int(applied.count()), "applied");
}

void SettingsDialogActionsTest::appliesOnDirectCall()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    QVERIFY(QMetaObject::invokeMethod(&dialog, "emitApplySettings"));
    QCOMPARE(applied.count(), 1);
    QCOMPARE(fields(applied.at(0).at(0).value<SoftwareUpdateDialogSettings>()),
             fields(sampleSettings()));
}

void SettingsDialogActionsTest::passesSettingsThroughQueue()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    m_received.clear();
    connect(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)), this,
            SLOT(receive(SoftwareUpdateDialogSettings)), Qt::QueuedConnection);
    QTest::mouseClick(&standardButton(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(m_received.isEmpty());
    QTRY_COMPARE(m_received, fields(sampleSettings()));
}

void SettingsDialogActionsTest::neverForcesUpdateAvailable()
{
    const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
    SoftwareUpdateDialog dialog(nullptr, {});
    const QSignalSpy forced(&dialog, SIGNAL(forceUpdateAvailable()));
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    for (const char* name : {"updatePushButton", "updateCheckBox", "checkForBetaCheckBox"}) {
        click(dialog, name);
    }
    dialog.enableProgress();
    dialog.disbaleProgress();
    QTest::mouseClick(&standardButton(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(forced.count(), 0);
}

VX_TEST_MAIN(SettingsDialogActionsTest)
#include "tst_SettingsDialogActions.moc"
