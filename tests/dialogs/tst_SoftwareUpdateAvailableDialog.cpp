#include "dialogs/SoftwareUpdateAvailableDialog.h"

#include <QCheckBox>
#include <QtTest>

#include "tests/dialogs/AvailableDialogAccess.h"
#include "tests/support/TestMain.h"

using namespace vx::test;
using vx::SoftUpIndexList;
using vx::SoftwareUpdateAvailableDialog;

class SoftwareUpdateAvailableDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void receive(const SoftUpIndexList& rows) { m_received = rows; }

private slots:
    void declaresInterface();
    void startsEnabledAndWithoutComment();
    void selectsWholeRows();
    void selectsByKeyboard();
    void reportsRowsInOrderOfAppearance();
    void reportsEachSelectionChange();
    void installsCurrentRowAndNotSelection();
    void installsNoRowWithoutCurrent();
    void installsByEnter();
    void reportsButtons_data();
    void reportsButtons();
    void keepsDisabledButtonsQuiet();
    void opensUpdateSettings();
    void reportsShowAllByClickOnly();
    void passesRowsThroughQueue();
    void staysOpenWhateverIsPressed();
    void closesByEscape();

private:
    SoftUpIndexList m_received;
};

void SoftwareUpdateAvailableDialogTest::declaresInterface()
{
    const QMetaObject& type = SoftwareUpdateAvailableDialog::staticMetaObject;
    QCOMPARE(QString(type.className()), QString("vx::SoftwareUpdateAvailableDialog"));
    QCOMPARE(QString(type.superClass()->className()), QString("QDialog"));
    QCOMPARE(methodsOf(type, QMetaMethod::Signal, QMetaMethod::Public),
             QStringList({"downloadUrls(SoftUpIndexList)", "installPackage(int)",
                          "currentItemsChangedSig(SoftUpIndexList)",
                          "downloadReleaseNotes(SoftUpIndexList)", "showAllLanguages(bool)",
                          "openUpdateSettings()"}));
    QCOMPARE(methodsOf(type, QMetaMethod::Slot, QMetaMethod::Private),
             QStringList({"downloadPackagePressed()", "installPackagePressed()",
                          "currentItemsChanged()", "releaseNotesPressed()",
                          "getCurrentSelectedItems()", "showAllLanguagesPressed()"}));
    QCOMPARE(methodsOf(type, QMetaMethod::Slot, QMetaMethod::Public), QStringList());
    const QMetaMethod selected = type.method(type.indexOfMethod("getCurrentSelectedItems()"));
    QCOMPARE(QString(selected.typeName()), QString("SoftUpIndexList"));
}

void SoftwareUpdateAvailableDialogTest::startsEnabledAndWithoutComment()
{
    const SoftwareUpdateAvailableDialog dialog(nullptr, {});
    QCOMPARE(buttonStates(dialog), QList<bool>({true, true, true}));
    QVERIFY(commentOf(dialog).isHidden());
    QVERIFY(!child<QCheckBox>(dialog, "showAllLanguagesCheckBox").isChecked());
    const auto& install = child<QPushButton>(dialog, "installPushButton");
    QVERIFY(install.isDefault());
    QVERIFY(install.autoDefault());
    QVERIFY(dialog.isHidden());
}

void SoftwareUpdateAvailableDialogTest::selectsWholeRows()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    const QSignalSpy changed(&dialog, itemsChanged);
    clickRow(dialog, 1);
    QCOMPARE(tableOf(dialog).selectedItems().size(), 5);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(indexes(changed, 0), SoftUpIndexList({1}));
}

void SoftwareUpdateAvailableDialogTest::selectsByKeyboard()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    clickRow(dialog, 0);
    const QSignalSpy changed(&dialog, itemsChanged);
    QTest::keyClick(&tableOf(dialog), Qt::Key_Down);
    QCOMPARE(indexes(changed, 0), SoftUpIndexList({1}));
    QTest::keyClick(&tableOf(dialog), Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(indexes(changed, 1), SoftUpIndexList({1, 2}));
    QTest::keyClick(&tableOf(dialog), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(indexes(changed, 2), SoftUpIndexList({0, 1, 2}));
}

void SoftwareUpdateAvailableDialogTest::reportsRowsInOrderOfAppearance()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(5));
    dialog.show();
    clickRow(dialog, 3);
    clickRow(dialog, 0, Qt::ControlModifier);
    clickRow(dialog, 4, Qt::ControlModifier);

    SoftUpIndexList appearance;
    for (const QTableWidgetItem* item : tableOf(dialog).selectedItems()) {
        if (!appearance.contains(item->row())) {
            appearance.append(item->row());
        }
    }
    QCOMPARE(appearance, SoftUpIndexList({3, 0, 4}));
    SoftUpIndexList rows;
    QVERIFY(QMetaObject::invokeMethod(&dialog, "getCurrentSelectedItems",
                                      Q_RETURN_ARG(SoftUpIndexList, rows)));
    QCOMPARE(rows, appearance);
}

void SoftwareUpdateAvailableDialogTest::reportsEachSelectionChange()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    const QSignalSpy changed(&dialog, itemsChanged);
    clickRow(dialog, 0);
    clickRow(dialog, 2, Qt::ControlModifier);
    clickRow(dialog, 0, Qt::ControlModifier);
    clickRow(dialog, 2, Qt::ControlModifier);
    QCOMPARE(changed.count(), 4);
    QCOMPARE(indexes(changed, 1), SoftUpIndexList({0, 2}));
    QCOMPARE(indexes(changed, 2), SoftUpIndexList({2}));
    QCOMPARE(indexes(changed, 3), SoftUpIndexList());
}

void SoftwareUpdateAvailableDialogTest::installsCurrentRowAndNotSelection()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    clickRow(dialog, 0);
    clickRow(dialog, 2, Qt::ControlModifier);
    clickRow(dialog, 2, Qt::ControlModifier);
    QCOMPARE(tableOf(dialog).currentRow(), 2);

    const QSignalSpy installed(&dialog, installPackage);
    const QSignalSpy downloaded(&dialog, downloadUrls);
    const QSignalSpy notes(&dialog, releaseNotes);
    click(dialog, "installPushButton");
    click(dialog, "downloadPushButton");
    click(dialog, "releaseNotesPushButton");
    QCOMPARE(installed.count(), 1);
    QCOMPARE(installed.at(0).at(0).toInt(), 2);
    QCOMPARE(downloaded.count(), 1);
    QCOMPARE(indexes(downloaded, 0), SoftUpIndexList({0}));
    QCOMPARE(notes.count(), 1);
    QCOMPARE(indexes(notes, 0), SoftUpIndexList({0}));
}

void SoftwareUpdateAvailableDialogTest::installsNoRowWithoutCurrent()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    QSignalSpy installed(&dialog, installPackage);
    QSignalSpy downloaded(&dialog, downloadUrls);
    click(dialog, "installPushButton");
    click(dialog, "downloadPushButton");
    QCOMPARE(installed.at(0).at(0).toInt(), -1);
    QCOMPARE(indexes(downloaded, 0), SoftUpIndexList());
}

void SoftwareUpdateAvailableDialogTest::installsByEnter()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    clickRow(dialog, 1);
    QSignalSpy installed(&dialog, installPackage);
    QTest::keyClick(&tableOf(dialog), Qt::Key_Return);
    QCOMPARE(installed.count(), 1);
    QCOMPARE(installed.at(0).at(0).toInt(), 1);
}

void SoftwareUpdateAvailableDialogTest::reportsButtons_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("signal");
    QTest::newRow("download") << "downloadPushButton" << QByteArray(downloadUrls);
    QTest::newRow("release notes") << "releaseNotesPushButton" << QByteArray(releaseNotes);
}

void SoftwareUpdateAvailableDialogTest::reportsButtons()
{
    QFETCH(QString, button);
    QFETCH(QByteArray, signal);
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(4));
    dialog.show();
    clickRow(dialog, 1);
    clickRow(dialog, 3, Qt::ShiftModifier);
    const QSignalSpy spy(&dialog, signal.constData());
    click(dialog, qPrintable(button));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(indexes(spy, 0), SoftUpIndexList({1, 2, 3}));
}

void SoftwareUpdateAvailableDialogTest::keepsDisabledButtonsQuiet()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(1));
    dialog.show();
    const QSignalSpy installed(&dialog, installPackage);
    const QSignalSpy downloaded(&dialog, downloadUrls);
    const QSignalSpy notes(&dialog, releaseNotes);
    dialog.setInstallButtonState(false);
    QCOMPARE(buttonStates(dialog), QList<bool>({true, true, false}));
    dialog.setDownloadButtonState(false);
    QCOMPARE(buttonStates(dialog), QList<bool>({true, false, false}));
    dialog.setRealeaseNotesButtonState(false);
    QCOMPARE(buttonStates(dialog), QList<bool>({false, false, false}));
    for (const char* name : {"installPushButton", "downloadPushButton", "releaseNotesPushButton"}) {
        click(dialog, name);
    }
    QCOMPARE(installed.count() + downloaded.count() + notes.count(), 0);
    dialog.setInstallButtonState(true);
    dialog.setDownloadButtonState(true);
    dialog.setRealeaseNotesButtonState(true);
    QCOMPARE(buttonStates(dialog), QList<bool>({true, true, true}));
}

void SoftwareUpdateAvailableDialogTest::opensUpdateSettings()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    const QSignalSpy opened(&dialog, SIGNAL(openUpdateSettings()));
    click(dialog, "updateSettingsPushButton");
    QCOMPARE(opened.count(), 1);
    QVERIFY(dialog.isVisible());
}

void SoftwareUpdateAvailableDialogTest::reportsShowAllByClickOnly()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    auto& box = child<QCheckBox>(dialog, "showAllLanguagesCheckBox");
    const QSignalSpy states(&dialog, SIGNAL(showAllLanguages(bool)));
    QTest::keyClick(&box, Qt::Key_Space);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(5, box.height() / 2));
    QCOMPARE(states.count(), 2);
    QCOMPARE(states.at(0).at(0).toBool(), true);
    QCOMPARE(states.at(1).at(0).toBool(), false);

    box.setChecked(true);
    QVERIFY(dialog.getShowAllLanguagesState());
    box.toggle();
    QVERIFY(!dialog.getShowAllLanguagesState());
    QCOMPARE(states.count(), 2);
}

void SoftwareUpdateAvailableDialogTest::passesRowsThroughQueue()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    clickRow(dialog, 2);
    m_received.clear();
    connect(&dialog, downloadUrls, this, SLOT(receive(SoftUpIndexList)), Qt::QueuedConnection);
    click(dialog, "downloadPushButton");
    QCOMPARE(m_received, SoftUpIndexList());
    QTRY_COMPARE(m_received, SoftUpIndexList({2}));
}

void SoftwareUpdateAvailableDialogTest::staysOpenWhateverIsPressed()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    for (const char* name : {"releaseNotesPushButton", "downloadPushButton", "installPushButton",
                             "updateSettingsPushButton", "showAllLanguagesCheckBox"}) {
        click(dialog, name);
        QVERIFY2(dialog.isVisible(), name);
    }
}

void SoftwareUpdateAvailableDialogTest::closesByEscape()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    const QSignalSpy rejected(&dialog, SIGNAL(rejected()));
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dialog.isVisible());
}

VX_TEST_MAIN(SoftwareUpdateAvailableDialogTest)
#include "tst_SoftwareUpdateAvailableDialog.moc"
