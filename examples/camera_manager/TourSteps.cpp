#include "examples/camera_manager/TourSteps.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTextBrowser>

#include "examples/camera_manager/CameraManagerWindow.h"
#include "examples/camera_manager/DesktopStandIn.h"
#include "examples/camera_manager/EmbeddedServer.h"
#include "examples/camera_manager/Tour.h"
#include "examples/camera_manager/TourWidgets.h"

namespace {

/** Of the comment, in pixels; less means that it is about to get its place. */
constexpr int comfortableHeight = 60;

constexpr QSize roomyDialog(620, 520);

struct Stage
{
    CameraManagerWindow& window;
    EmbeddedServer& server;
    DesktopStandIn& desktop;
};

QTableWidget* packageTable()
{
    QWidget* dialog = updateAvailableDialog();
    return dialog != nullptr ? dialog->findChild<QTableWidget*>() : nullptr;
}

QWidget* settingsDialogSaying(const QString& text)
{
    QWidget* dialog = settingsDialog();
    const bool says = dialog != nullptr && labelText(dialog, "updateNotificationLabel") == text;
    return says ? dialog : nullptr;
}

QWidget* messageBoxTitled(const QString& title)
{
    QMessageBox* box = messageBox();
    return box != nullptr && box->windowTitle() == title ? box : nullptr;
}

/** The button of the open message box that accepts, whatever it is called. */
void acceptMessageBox()
{
    const QList<QAbstractButton*> buttons = messageBox()->buttons();
    for (QAbstractButton* button : buttons) {
        if (messageBox()->buttonRole(button) == QMessageBox::AcceptRole) {
            clickButton(button);
        }
    }
}

void cancelSettings()
{
    if (const QWidget* dialog = settingsDialog()) {
        const auto* buttons = dialog->findChild<QDialogButtonBox*>();
        clickButton(buttons->button(QDialogButtonBox::Cancel));
    }
}

QWidget* dialogWithAllRows()
{
    QTableWidget* table = packageTable();
    const bool all = table != nullptr && visibleRows(table).size() == table->rowCount();
    return all ? updateAvailableDialog() : nullptr;
}

/** Some rows are hidden: the firmware in languages that the user does not read. */
QWidget* dialogWithOwnRows()
{
    return packageTable() != nullptr && dialogWithAllRows() == nullptr ? updateAvailableDialog()
                                                                       : nullptr;
}

QWidget* dialogWithComment(const QString& text)
{
    QWidget* dialog = updateAvailableDialog();
    const auto* comment = dialog != nullptr ? dialog->findChild<QTextBrowser*>() : nullptr;
    const bool shown = comment != nullptr && comment->viewport()->height() > comfortableHeight &&
                       comment->toPlainText().contains(text);
    return shown ? dialog : nullptr;
}

/** Lets the server play @p scenario and the user press "Check Now". */
std::function<void()> check(EmbeddedServer& server, const char* scenario)
{
    return [&server, scenario] {
        server.play(QLatin1String(scenario));
        clickButton(settingsDialog(), "updatePushButton");
    };
}

/** The window, once the desktop was asked @p count times to open a bundle that is complete. */
QWidget* windowAfterOpening(const Stage& stage, int count)
{
    const QStringList paths = stage.desktop.paths();
    const bool complete = paths.size() == count &&
                          QFileInfo(QDir(paths.constLast()), "Contents/Archive.bin").size() > 0;
    return complete && updateAvailableDialog() == nullptr ? &stage.window : nullptr;
}

QWidget* openProgressDialog()
{
    auto* dialog = visibleWindow<QProgressDialog>();
    return dialog != nullptr && dialog->value() > dialog->maximum() / 4 ? dialog : nullptr;
}

void pressInstall()
{
    clickButton(updateAvailableDialog(), "installPushButton");
}

void addSettingsSteps(Tour& tour, const Stage& stage)
{
    tour.expect("The application shows its version and its cameras",
                [stage] { return stage.window.isVisible() ? &stage.window : nullptr; })
        .picture("window")
        .then([stage] { stage.window.findChild<QAction*>("checkForUpdatesAction")->trigger(); });
    tour.expect("Check for Updates... opens the settings dialog", settingsDialog)
        .picture("settings")
        .then(check(stage.server, "up-to-date"));
}

void addCheckSteps(Tour& tour, const Stage& stage)
{
    const QString upToDate = "Congratulations! Your product is up-to-date!";
    const QString nothing = "No update available!";
    tour.expect("A catalogue with nothing newer: " + upToDate,
                [upToDate] { return settingsDialogSaying(upToDate); })
        .picture("up-to-date")
        .then(check(stage.server, "empty"));
    tour.expect("An empty catalogue: " + nothing,
                [nothing] { return settingsDialogSaying(nothing); })
        .picture("no-update")
        .then(check(stage.server, "slow"));
    tour.expect("A catalogue with newer packages opens the update-available dialog",
                dialogWithOwnRows)
        .details([] { return visibleRows(packageTable()).join("\n        "); })
        .then([] {
            updateAvailableDialog()->resize(roomyDialog);
            clickButton(updateAvailableDialog(), "showAllLanguagesCheckBox");
        });
    tour.expect("Show all languages adds the firmware in other languages", dialogWithAllRows)
        .picture("all-languages")
        .then([] {
            clickButton(updateAvailableDialog(), "showAllLanguagesCheckBox");
            clickRow(packageTable(), 0);
        });
}

void addInstallationSteps(Tour& tour, const Stage& stage)
{
    tour.expect("Selecting the application shows its comment",
                [] { return dialogWithComment("timeline of all cameras"); })
        .picture("update-available")
        .then(pressInstall);
    tour.expect("Install Package asks first", [] { return messageBoxTitled("Install Package"); })
        .picture("confirmation")
        .details([] { return messageBox()->text(); })
        .then(acceptMessageBox);
    tour.expect("Proceed downloads under a progress dialog", openProgressDialog)
        .picture("progress");
    tour.expect("The package is unpacked and its installer bundle opened",
                [stage] { return windowAfterOpening(stage, 1); })
        .picture("installed")
        .details([stage] { return stage.desktop.paths().constLast(); })
        .then(check(stage.server, "short"));
}

void addFailureSteps(Tour& tour)
{
    tour.expect("Another check, with a server that breaks downloads off", dialogWithOwnRows)
        .then([] { clickRow(packageTable(), 0); });
    tour.expect("The application is selected again",
                [] { return dialogWithComment("CameraManager 5.3"); })
        .then(pressInstall);
    tour.expect("Install Package asks again", [] { return messageBoxTitled("Install Package"); })
        .then(acceptMessageBox);
    tour.expect("The broken download is reported",
                [] { return messageBoxTitled("Download Error"); })
        .picture("broken-download")
        .details([] { return messageBox()->text(); })
        .then(acceptMessageBox);
}

void addRecoverySteps(Tour& tour, const Stage& stage)
{
    tour.expect("The dialog and its selection are still there for a second try",
                [] {
                    return messageBox() == nullptr ? dialogWithComment("CameraManager 5.3")
                                                   : nullptr;
                })
        .then([stage] {
            stage.server.play("as-it-is");
            pressInstall();
        });
    tour.expect("Install Package asks once more",
                [] { return messageBoxTitled("Install Package"); })
        .then(acceptMessageBox);
    tour.expect("The second try succeeds", [stage] { return windowAfterOpening(stage, 2); })
        .picture("recovered")
        .then(cancelSettings);
    tour.expect("Cancel closes the settings dialog",
                [stage] { return settingsDialog() == nullptr ? &stage.window : nullptr; });
}

} // namespace

void addSteps(Tour& tour, CameraManagerWindow& window, EmbeddedServer& server,
              DesktopStandIn& desktop)
{
    const Stage stage = {window, server, desktop};
    addSettingsSteps(tour, stage);
    addCheckSteps(tour, stage);
    addInstallationSteps(tour, stage);
    addFailureSteps(tour);
    addRecoverySteps(tour, stage);
}
