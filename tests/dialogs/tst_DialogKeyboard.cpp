#include <QAccessible>
#include <QDesktopServices>
#include <QLabel>
#include <QScopedPointer>
#include <QtTest>

#include "tests/dialogs/AvailableDialogAccess.h"
#include "tests/dialogs/HeldModifier.h"
#include "tests/dialogs/SettingsDialogAccess.h"
#include "tests/support/TestMain.h"

using namespace vx::test;
using vx::SoftwareUpdateAvailableDialog;
using vx::SoftwareUpdateDialog;

namespace {

QString nameOf(const QWidget* widget)
{
    if (widget == nullptr) {
        return QStringLiteral("nothing");
    }
    const auto* button = qobject_cast<const QPushButton*>(widget);
    return button != nullptr && widget->objectName().isEmpty() ? button->text()
                                                               : widget->objectName();
}

/**
 * The focus after each press of Tab, or of Backtab, until it is back where it was. A text with a
 * link takes two presses: one for the text, one for the link.
 */
QString tabRound(const QWidget& dialog, Qt::Key key = Qt::Key_Tab)
{
    QStringList names;
    const QWidget* first = dialog.focusWidget();
    do {
        QTest::keyClick(dialog.focusWidget(), key);
        names.append(nameOf(dialog.focusWidget()));
    } while (dialog.focusWidget() != first && names.size() < 30);
    return names.join(' ');
}

QString accessibleName(QWidget& widget)
{
    const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&widget);
    return face != nullptr ? face->text(QAccessible::Name) : QString();
}

QStringList controlsWithoutName(const QWidget& dialog)
{
    QStringList names;
    for (QWidget* widget : dialog.findChildren<QWidget*>()) {
        const bool ours =
            !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_");
        const bool container = widget->inherits("QSplitter") ||
                               widget->inherits("QDialogButtonBox") ||
                               widget->inherits("QSplitterHandle");
        if (ours && !container && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            accessibleName(*widget).isEmpty()) {
            names.append(widget->objectName());
        }
    }
    return names;
}

} // namespace

class DialogKeyboardTest : public QObject
{
    Q_OBJECT

public slots:
    void openLink(const QUrl& url) { m_opened.append(url); }

private slots:
    void init() { m_opened.clear(); }
    void walksSettings();
    void walksSettingsWithSupportFields();
    void walksPackages();
    void walksPackagesBackwards();
    void movesInTableByArrows();
    void followsSupportLink();
    void followsSupportLinkByMouse();
    void followsLinkInComment();
    void namesControls();

private:
    QList<QUrl> m_opened;
};

void DialogKeyboardTest::walksSettings()
{
    SoftwareUpdateDialog dialog(nullptr, {});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    // OK is the default button and has the focus at first.
    const QString ok = standardButton(dialog, QDialogButtonBox::Ok).text();
    const QString cancel = standardButton(dialog, QDialogButtonBox::Cancel).text();
    QCOMPARE(tabRound(dialog),
             QStringList({cancel, "updatePushButton", "updateCheckBox", "updateComboBox", ok})
                 .join(' '));
}

void DialogKeyboardTest::walksSettingsWithSupportFields()
{
    QScopedPointer<SoftwareUpdateDialog> dialog;
    {
        const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
        dialog.reset(new SoftwareUpdateDialog(nullptr, {}));
    }
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.data()));
    const QString ok = standardButton(*dialog, QDialogButtonBox::Ok).text();
    const QString cancel = standardButton(*dialog, QDialogButtonBox::Cancel).text();
    QCOMPARE(tabRound(*dialog),
             QStringList({cancel, "updatePushButton", "updateCheckBox", "updateComboBox",
                          "checkForBetaCheckBox", "updateServerLineEdit", ok})
                 .join(' '));
}

void DialogKeyboardTest::walksPackages()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.setCommentText("plain text");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QCOMPARE(nameOf(dialog.focusWidget()), QString("tableWidget"));
    QCOMPARE(tabRound(dialog),
             QStringList({"commentText", "showAllLanguagesCheckBox", "releaseNotesPushButton",
                          "downloadPushButton", "installPushButton", "vxLinkLabel", "vxLinkLabel",
                          "updateSettingsPushButton", "tableWidget"})
                 .join(' '));
}

void DialogKeyboardTest::walksPackagesBackwards()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QCOMPARE(tabRound(dialog, Qt::Key_Backtab),
             QStringList({"updateSettingsPushButton", "vxLinkLabel", "vxLinkLabel",
                          "installPushButton", "downloadPushButton", "releaseNotesPushButton",
                          "showAllLanguagesCheckBox", "tableWidget"})
                 .join(' '));
}

void DialogKeyboardTest::movesInTableByArrows()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const QTableWidget& table = tableOf(dialog);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
    QCOMPARE(table.currentRow(), 2);
    QCOMPARE(table.selectedItems().size(), 5);
}

void DialogKeyboardTest::followsSupportLink()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QDesktopServices::setUrlHandler("http", this, "openLink");
    auto& label = child<QLabel>(dialog, "vxLinkLabel");
    label.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&label, Qt::Key_Tab);
    QTest::keyClick(&label, Qt::Key_Return);
    QDesktopServices::unsetUrlHandler("http");
    QCOMPARE(m_opened,
             QList<QUrl>({QUrl("http://www.example.com/other/Support/Software-Downloads")}));
}

void DialogKeyboardTest::followsSupportLinkByMouse()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QDesktopServices::setUrlHandler("http", this, "openLink");
    auto& label = child<QLabel>(dialog, "vxLinkLabel");
    // Where exactly the link is drawn is the font's affair: the label is clicked all over.
    for (int y = 2; y < label.height() && m_opened.isEmpty(); y += 4) {
        for (int x = 2; x < label.width() && m_opened.isEmpty(); x += 8) {
            QTest::mouseClick(&label, Qt::LeftButton, {}, QPoint(x, y));
        }
    }
    QDesktopServices::unsetUrlHandler("http");
    QCOMPARE(m_opened.size(), 1);
}

void DialogKeyboardTest::followsLinkInComment()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(1));
    dialog.setCommentText("<b>Name</b><br /><a href=\"http://example.com/p.mpkg\">link</a>");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QDesktopServices::setUrlHandler("http", this, "openLink");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(nameOf(dialog.focusWidget()), QString("commentText"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QDesktopServices::unsetUrlHandler("http");
    QCOMPARE(m_opened, QList<QUrl>({QUrl("http://example.com/p.mpkg")}));
}

void DialogKeyboardTest::namesControls()
{
    const HeldModifier held(Qt::Key_Shift, Qt::ShiftModifier);
    SoftwareUpdateDialog settings(nullptr, {});
    QCOMPARE(controlsWithoutName(settings), QStringList());
    // Outside Windows and macOS Qt lets a combo box's entry stand for its name.
    QCOMPARE(child<QWidget>(settings, "updateComboBox").accessibleName(),
             QString("Check for updates:"));
    QCOMPARE(accessibleName(child<QWidget>(settings, "updateServerLineEdit")),
             QString("Update server URL:"));
    QCOMPARE(accessibleName(child<QWidget>(settings, "progressBar")), QString("Check for Updates"));

    SoftwareUpdateAvailableDialog available(nullptr, {});
    QCOMPARE(controlsWithoutName(available), QStringList());
    QCOMPARE(accessibleName(child<QWidget>(available, "tableWidget")),
             QString("Select Packages from List:"));
    QCOMPARE(accessibleName(child<QWidget>(available, "commentText")), QString("Update Available"));
}

VX_TEST_MAIN(DialogKeyboardTest)
#include "tst_DialogKeyboard.moc"
