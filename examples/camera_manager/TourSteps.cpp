#include "examples/camera_manager/TourSteps.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QTableWidget>
#include <QTextBrowser>

#include <memory>

#include "examples/camera_manager/CameraManagerWindow.h"
#include "examples/camera_manager/DesktopStandIn.h"
#include "examples/camera_manager/EmbeddedServer.h"
#include "examples/camera_manager/Tour.h"
#include "examples/camera_manager/TourWidgets.h"
#include "trust/UpdateTrust.h"

namespace {

/** Of the comment, in pixels; less means that it is about to get its place. */
constexpr int comfortableHeight = 60;

/** A new dialog takes no more than two thirds of the screen, which scaling makes small. */
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
        .details([stage] { return stage.window.statusBar()->currentMessage(); })
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
        .then([] {
            updateAvailableDialog()->resize(roomyDialog);
            clickRow(packageTable(), 0);
        });
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

/** The way from the list of packages to a download; each call goes on as soon as it can. */
class Installing
{
public:
    void proceed()
    {
        if (m_next == Row && dialogWithOwnRows() != nullptr) {
            updateAvailableDialog()->resize(roomyDialog);
            clickRow(packageTable(), 0);
            m_next = Button;
        } else if (m_next == Button && dialogWithComment("CameraManager 5.3") != nullptr) {
            pressInstall();
            m_next = Agreement;
        } else if (m_next == Agreement && messageBoxTitled("Install Package") != nullptr) {
            acceptMessageBox();
            m_next = Nothing;
        }
    }

    bool isUnderWay() const { return m_next == Nothing; }

private:
    enum Next { Row, Button, Agreement, Nothing };
    Next m_next = Row;
};

/** What @p seen gives once an installation is under way, which this sees to. */
std::function<QWidget*()> afterInstalling(const std::function<QWidget*()>& seen)
{
    const auto installing = std::make_shared<Installing>();
    return [installing, seen]() -> QWidget* {
        if (installing->isUnderWay()) {
            return seen();
        }
        installing->proceed();
        return nullptr;
    };
}

QWidget* criticalBox()
{
    QMessageBox* box = messageBox();
    return box != nullptr && box->icon() == QMessageBox::Critical ? box : nullptr;
}

void addSignatureSteps(Tour& tour, const Stage& stage)
{
    tour.expect("Signatures are required: a forged package is refused",
                afterInstalling(criticalBox))
        .picture("forged-package")
        .details([] { return messageBox()->text(); })
        .then([stage] {
            stage.server.play("signed");
            acceptMessageBox();
        });
    tour.expect("The package that its publisher sealed is installed",
                afterInstalling([stage] { return windowAfterOpening(stage, 3); }))
        .picture("sealed-package")
        .details([stage] { return stage.desktop.paths().constLast(); })
        .then(cancelSettings);
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
        .then([stage] {
            vx::UpdateTrust::requireSignatures({stage.server.publicKey()});
            check(stage.server, "package-exchanged")();
        });
}

void addLastStep(Tour& tour, const Stage& stage)
{
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
    addSignatureSteps(tour, stage);
    addLastStep(tour, stage);
}
