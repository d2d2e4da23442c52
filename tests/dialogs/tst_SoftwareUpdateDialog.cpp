#include "dialogs/SoftwareUpdateDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QProgressBar>
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
const QList<bool> all = {true, true, true};

} // namespace

class SoftwareUpdateDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void startsRecordWithDefaults();
    void declaresInterface();
    void hidesSupportFieldsWithoutModifier();
    void showsSupportFieldsWithModifier_data();
    void showsSupportFieldsWithModifier();
    void keepsSupportFieldsAfterRelease();
    void ignoresModifierPressedLater();
    void fillsWidgets();
    void refillsHiddenFields();
    void emitsNothingWhileFilled();
    void tellsNullFromEmpty_data();
    void tellsNullFromEmpty();
    void keepsOldValueBehindNull();
    void takesInterval_data();
    void takesInterval();
    void leavesIntervalEnabled();
    void readsWhatTheUserChanged();
    void followsItsContents();
    void startsWithoutProgress();
    void showsAndHidesProgress();
    void showsNotification();
};

void SoftwareUpdateDialogTest::startsRecordWithDefaults()
{
    const SoftwareUpdateDialogSettings settings;
    QCOMPARE(fields(settings), QVariantList({false, false, 0, QString(), QString(), QString()}));
    QVERIFY(settings.serverURL.isNull());
    QVERIFY(settings.versionText.isNull());
    QVERIFY(settings.lastCheckText.isNull());
}

void SoftwareUpdateDialogTest::declaresInterface()
{
    const QMetaObject& type = SoftwareUpdateDialog::staticMetaObject;
    QCOMPARE(QString(type.className()), QString("vx::SoftwareUpdateDialog"));
    QCOMPARE(QString(type.superClass()->className()), QString("QDialog"));
    QCOMPARE(methodsOf(type, QMetaMethod::Signal, QMetaMethod::Public),
             QStringList({"checkForUpdate()", "applySettings(SoftwareUpdateDialogSettings)",
                          "forceUpdateAvailable()"}));
    QCOMPARE(methodsOf(type, QMetaMethod::Slot, QMetaMethod::Public),
             QStringList({"enableProgress()", "disbaleProgress()"}));
    QCOMPARE(methodsOf(type, QMetaMethod::Slot, QMetaMethod::Private),
             QStringList({"emitApplySettings()", "standardButtonClicked(QAbstractButton*)"}));
}

void SoftwareUpdateDialogTest::hidesSupportFieldsWithoutModifier()
{
    QCOMPARE(QApplication::keyboardModifiers(), Qt::NoModifier);
    SoftwareUpdateDialog dialog(nullptr, {});
    QCOMPARE(visibleFields(dialog), none);
    dialog.show();
    QCOMPARE(visibleFields(dialog), none);
}

void SoftwareUpdateDialogTest::showsSupportFieldsWithModifier_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::newRow("shift") << int(Qt::Key_Shift) << int(Qt::ShiftModifier);
    QTest::newRow("control") << int(Qt::Key_Control) << int(Qt::ControlModifier);
    QTest::newRow("alt") << int(Qt::Key_Alt) << int(Qt::AltModifier);
    QTest::newRow("meta") << int(Qt::Key_Meta) << int(Qt::MetaModifier);
    QTest::newRow("two at once") << int(Qt::Key_Shift)
                                 << int(Qt::ControlModifier | Qt::ShiftModifier);
}

void SoftwareUpdateDialogTest::showsSupportFieldsWithModifier()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    const HeldModifier held{Qt::Key(key), Qt::KeyboardModifiers(modifier)};
    QCOMPARE(int(QApplication::keyboardModifiers()), modifier);

    SoftwareUpdateDialog dialog(nullptr, {});
    QCOMPARE(visibleFields(dialog), all);
    dialog.show();
    QCOMPARE(visibleFields(dialog), all);
}

void SoftwareUpdateDialogTest::keepsSupportFieldsAfterRelease()
{
    QScopedPointer<SoftwareUpdateDialog> dialog;
    {
        const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
        dialog.reset(new SoftwareUpdateDialog(nullptr, {}));
    }
    QCOMPARE(QApplication::keyboardModifiers(), Qt::NoModifier);
    dialog->show();
    dialog->setDialogSettings(sampleSettings());
    QCOMPARE(visibleFields(*dialog), all);
}

void SoftwareUpdateDialogTest::ignoresModifierPressedLater()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    QCOMPARE(visibleFields(dialog), none);
}

void SoftwareUpdateDialogTest::fillsWidgets()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    QVERIFY(child<QCheckBox>(dialog, "updateCheckBox").isChecked());
    QVERIFY(child<QCheckBox>(dialog, "checkForBetaCheckBox").isChecked());
    QCOMPARE(child<QComboBox>(dialog, "updateComboBox").currentText(), QString("Weekly"));
    const auto& address = child<QLineEdit>(dialog, "updateServerLineEdit");
    QCOMPARE(address.text(), sampleSettings().serverURL);
    QVERIFY2(address.cursorPosition() == 0, "the host of a long address is out of sight");
    QCOMPARE(textOf(dialog, "currentVersionNumberLabel"), sampleSettings().versionText);
    QCOMPARE(textOf(dialog, "lastCheckDateLabel"), sampleSettings().lastCheckText);
    QCOMPARE(fields(dialog.getDialogSettings()), fields(sampleSettings()));
}

void SoftwareUpdateDialogTest::refillsHiddenFields()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    SoftwareUpdateDialogSettings other = sampleSettings();
    other.doUpdateCheck = false;
    other.checkForBeta = false;
    other.updateInterval = 0;
    other.serverURL = "http://other.example.com";
    other.versionText = "5.0";
    other.lastCheckText = "never";
    dialog.setDialogSettings(other);
    QCOMPARE(fields(dialog.getDialogSettings()), fields(other));
    QCOMPARE(visibleFields(dialog), none);
}

void SoftwareUpdateDialogTest::emitsNothingWhileFilled()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    const QSignalSpy checks(&dialog, SIGNAL(checkForUpdate()));
    const QSignalSpy applied(&dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)));
    const QSignalSpy finished(&dialog, SIGNAL(finished(int)));
    dialog.setDialogSettings(sampleSettings());
    dialog.getDialogSettings();
    dialog.setNotificationText("text");
    dialog.enableProgress();
    dialog.disbaleProgress();
    QCOMPARE(checks.count() + applied.count() + finished.count(), 0);
}

void SoftwareUpdateDialogTest::tellsNullFromEmpty_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("captionVisible");
    QTest::newRow("text") << QString("4.2.1") << true;
    QTest::newRow("empty") << QString("") << true;
    QTest::newRow("null") << QString() << false;
}

void SoftwareUpdateDialogTest::tellsNullFromEmpty()
{
    QFETCH(QString, text);
    QFETCH(bool, captionVisible);
    SoftwareUpdateDialog dialog(nullptr, {});
    SoftwareUpdateDialogSettings settings;
    settings.versionText = text;
    settings.lastCheckText = "now";
    dialog.setDialogSettings(settings);
    dialog.show();
    QCOMPARE(child<QLabel>(dialog, "currentVersionLabel").isVisible(), captionVisible);
    QVERIFY(child<QLabel>(dialog, "lastCheckLabel").isVisible());

    settings.versionText = "1.0";
    settings.lastCheckText = text;
    dialog.setDialogSettings(settings);
    QVERIFY(child<QLabel>(dialog, "currentVersionLabel").isVisible());
    QCOMPARE(child<QLabel>(dialog, "lastCheckLabel").isVisible(), captionVisible);
}

void SoftwareUpdateDialogTest::keepsOldValueBehindNull()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    dialog.setDialogSettings({});
    for (const char* value : {"currentVersionNumberLabel", "lastCheckDateLabel"}) {
        QVERIFY2(child<QLabel>(dialog, value).isVisible(), value);
    }
    QCOMPARE(textOf(dialog, "currentVersionNumberLabel"), sampleSettings().versionText);
    QCOMPARE(textOf(dialog, "lastCheckDateLabel"), sampleSettings().lastCheckText);
    QCOMPARE(dialog.getDialogSettings().lastCheckText, sampleSettings().lastCheckText);
}

void SoftwareUpdateDialogTest::takesInterval_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("shown");
    QTest::addColumn<QString>("entry");
    QTest::newRow("at start") << 0 << 0 << QString("At application start");
    QTest::newRow("daily") << 1 << 1 << QString("Daily");
    QTest::newRow("weekly") << 2 << 2 << QString("Weekly");
    QTest::newRow("monthly") << 3 << 3 << QString("Monthly");
    QTest::newRow("one too many") << 4 << -1 << QString();
    QTest::newRow("negative") << -1 << -1 << QString();
    QTest::newRow("largest") << INT_MAX << -1 << QString();
    QTest::newRow("smallest") << INT_MIN << -1 << QString();
}

void SoftwareUpdateDialogTest::takesInterval()
{
    QFETCH(int, given);
    SoftwareUpdateDialog dialog(nullptr, {});
    SoftwareUpdateDialogSettings settings = sampleSettings();
    settings.updateInterval = given;
    dialog.setDialogSettings(settings);
    QTEST(dialog.getDialogSettings().updateInterval, "shown");
    QTEST(child<QComboBox>(dialog, "updateComboBox").currentText(), "entry");
}

void SoftwareUpdateDialogTest::leavesIntervalEnabled()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    auto& box = child<QCheckBox>(dialog, "updateCheckBox");
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(5, box.height() / 2));
    QVERIFY(!box.isChecked());
    QVERIFY(child<QComboBox>(dialog, "updateComboBox").isEnabled());
    QTest::keyClick(&box, Qt::Key_Space);
    QVERIFY(box.isChecked());
    QVERIFY(child<QComboBox>(dialog, "updateComboBox").isEnabled());
}

void SoftwareUpdateDialogTest::readsWhatTheUserChanged()
{
    const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    QTest::keyClick(&child<QWidget>(dialog, "updateCheckBox"), Qt::Key_Space);
    QTest::keyClick(&child<QWidget>(dialog, "checkForBetaCheckBox"), Qt::Key_Space);
    QTest::keyClick(&child<QWidget>(dialog, "updateComboBox"), Qt::Key_Down);
    auto& address = child<QLineEdit>(dialog, "updateServerLineEdit");
    address.selectAll();
    QTest::keyClicks(&address, "https://typed.example.com");

    SoftwareUpdateDialogSettings expected = sampleSettings();
    expected.doUpdateCheck = false;
    expected.checkForBeta = false;
    expected.updateInterval = 3;
    expected.serverURL = "https://typed.example.com";
    QCOMPARE(fields(dialog.getDialogSettings()), fields(expected));
}

void SoftwareUpdateDialogTest::followsItsContents()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    QCOMPARE(dialog.layout()->sizeConstraint(), QLayout::SetFixedSize);
    dialog.setDialogSettings(sampleSettings());
    dialog.show();
    const int before = dialog.height();
    dialog.setDialogSettings({});
    QTRY_VERIFY(dialog.height() < before);
    dialog.setDialogSettings(sampleSettings());
    QTRY_COMPARE(dialog.height(), before);
    // The row of the busy indicator keeps its height, so that nothing jumps when a check begins.
    dialog.enableProgress();
    QTest::qWait(0);
    QCOMPARE(dialog.height(), before);
    dialog.resize(before * 3, before * 3);
    QCOMPARE(dialog.height(), before);
}

void SoftwareUpdateDialogTest::startsWithoutProgress()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.show();
    const auto& bar = child<QProgressBar>(dialog, "progressBar");
    QVERIFY(bar.isHidden());
    QVERIFY(!bar.isEnabled());
}

void SoftwareUpdateDialogTest::showsAndHidesProgress()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.show();
    const auto& bar = child<QProgressBar>(dialog, "progressBar");
    dialog.enableProgress();
    QVERIFY(bar.isVisible());
    QVERIFY(bar.isEnabled());
    QCOMPARE(bar.minimum(), bar.maximum());
    QVERIFY(!bar.isTextVisible());
    QVERIFY(bar.text().isEmpty());
    dialog.disbaleProgress();
    QVERIFY(bar.isHidden());
    QVERIFY(!bar.isEnabled());
}

void SoftwareUpdateDialogTest::showsNotification()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.setNotificationText("No update available!");
    QCOMPARE(textOf(dialog, "updateNotificationLabel"), QString("No update available!"));
    dialog.setNotificationText("");
    QCOMPARE(textOf(dialog, "updateNotificationLabel"), QString());
}

VX_TEST_MAIN(SoftwareUpdateDialogTest)
#include "tst_SoftwareUpdateDialog.moc"
