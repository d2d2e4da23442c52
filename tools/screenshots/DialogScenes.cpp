#include "tools/screenshots/DialogScenes.h"

#include <QApplication>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTableWidget>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "trust/internal/TrustTexts.h"

namespace vx::screenshots {

namespace {

const QStringList headers = {"Name", "File Size", "File Type", "Languages", "Platforms"};

const char* const longNotification =
    "Error transferring http://updates.example.com/products/camera-manager/catalogue.xml - "
    "server replied: Service Temporarily Unavailable, please come back in a few minutes";

const char* const comment =
    "<b>Camera Manager 4.3 BETA, Application</b><br />Published on Friday, 21 November 2025"
    "<br /><a href=\"http://updates.example.com/CameraManager-4.3.mpkg\">"
    "http://updates.example.com/CameraManager-4.3.mpkg</a><br />"
    "Opens recordings faster and shows up to 64 cameras at once.";

SoftwareUpdateDialogSettings settings()
{
    SoftwareUpdateDialogSettings record;
    record.doUpdateCheck = true;
    record.updateInterval = 2;
    record.serverURL = "http://updates.example.com/products/camera-manager/catalogue.xml";
    record.versionText = "4.2.1";
    record.lastCheckText = "Friday, 21 November 2025 10:00:00 UTC";
    return record;
}

SoftwareUpdateDialog* settingsDialog()
{
    auto* dialog = new SoftwareUpdateDialog(nullptr, {});
    dialog->setDialogSettings(settings());
    return dialog;
}

QDialog* neverChecked()
{
    SoftwareUpdateDialogSettings record = settings();
    record.lastCheckText = QString();
    auto* dialog = new SoftwareUpdateDialog(nullptr, {});
    dialog->setDialogSettings(record);
    return dialog;
}

// A modifier key at the time of its creation shows these; here nobody is at the keyboard.
QDialog* withSupportFields()
{
    auto* dialog = settingsDialog();
    for (const char* name : {"checkForBetaCheckBox", "updateServerLabel", "updateServerLineEdit"}) {
        dialog->findChild<QWidget*>(QString::fromLatin1(name))->show();
    }
    return dialog;
}

QDialog* checking()
{
    auto* dialog = settingsDialog();
    dialog->enableProgress();
    return dialog;
}

QDialog* notified(const QString& text)
{
    auto* dialog = settingsDialog();
    dialog->setNotificationText(text);
    return dialog;
}

// Asked for when the scene is built, so that the text is in the language of the look.
QDialog* refused(SealOutcome outcome)
{
    return notified(refusalText(outcome));
}

QDialog* verifying()
{
    auto* dialog = new QProgressDialog;
    dialog->setLabelText(verifyingText());
    dialog->setValue(40);
    return dialog;
}

QDialog* packageRefused(const QString& reason)
{
    return new QMessageBox(QMessageBox::Critical, packageRefusedTitle(), reason, QMessageBox::Ok);
}

QStringList row(int number)
{
    return {QStringLiteral("Camera Firmware Mini-%1 5.%2.1").arg(10 + number).arg(number % 10),
            QStringLiteral("%1.5 MB").arg(12 + number % 40), "zip", "de, en", "Dome-24, Mini-12"};
}

SoftwareUpdateAvailableDialog* availableDialog(const QList<QStringList>& rows)
{
    auto* dialog = new SoftwareUpdateAvailableDialog(nullptr, {});
    dialog->setTableEntries(rows);
    dialog->setTableHeaders(headers);
    dialog->setInstallButtonState(false);
    dialog->setDownloadButtonState(false);
    dialog->setRealeaseNotesButtonState(false);
    return dialog;
}

QDialog* rowsOf(int count)
{
    QList<QStringList> rows;
    for (int number = 0; number < count; ++number) {
        rows.append(row(number));
    }
    return availableDialog(rows);
}

QDialog* betaSelected()
{
    auto* dialog = availableDialog(
        {{"Camera Manager 4.3 BETA", "86.2 MB", "mpkg", "Multilingual", "Mac64, MacPP"},
         row(0),
         row(2)});
    dialog->findChild<QTableWidget*>()->selectRow(0);
    dialog->setInstallButtonState(true);
    dialog->setDownloadButtonState(true);
    dialog->setRealeaseNotesButtonState(true);
    dialog->setCommentText(QString::fromLatin1(comment));
    return dialog;
}

QDialog* longNames()
{
    const QString name = "Camera Manager for the Observation of Very Large Sites Professional "
                         "Edition with Extended Recording 4.3.0.1234 BETA";
    return availableDialog(
        {{name, "1048576.0 MB", "mpkg", "de, en, es, fi, fr, it, nl, pl, ru",
          "Mac32, Mac64, MacPP, Dome-24, Dome-24-Indoor, Dome-24-Wide, Mini-12, Mini-12-Indoor"},
         row(1)});
}

void useFontSize(qreal points)
{
    QFont font = QApplication::font();
    font.setPointSizeF(points);
    QApplication::setFont(font);
}

QPalette darkPalette()
{
    QPalette palette(QColor(78, 78, 78));
    palette.setColor(QPalette::Base, QColor(28, 28, 28));
    palette.setColor(QPalette::AlternateBase, QColor(40, 40, 40));
    palette.setColor(QPalette::Link, QColor(110, 170, 240));
    palette.setColor(QPalette::Highlight, QColor(42, 110, 180));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(150, 150, 150));
    return palette;
}

} // namespace

QList<Scene> scenes()
{
    return {{"settings", settingsDialog},
            {"settings-never-checked", neverChecked},
            {"settings-support-fields", withSupportFields},
            {"settings-progress", checking},
            {"settings-up-to-date",
             [] { return notified("Congratulations! Your product is up-to-date!"); }},
            {"settings-long-notification", [] { return notified(longNotification); }},
            {"refused-no-seal", [] { return refused(SealOutcome::NoSeal); }},
            {"refused-unreadable-seal", [] { return refused(SealOutcome::UnreadableSeal); }},
            {"refused-unknown-key", [] { return refused(SealOutcome::UnknownKey); }},
            {"refused-changed", [] { return refused(SealOutcome::Changed); }},
            {"refused-bytes-behind", [] { return refused(SealOutcome::BytesBehind); }},
            {"refused-older", [] { return refused(SealOutcome::Older); }},
            {"refused-expired", [] { return refused(SealOutcome::Expired); }},
            {"refused-from-future", [] { return refused(SealOutcome::FromFuture); }},
            {"package-verifying", verifying},
            {"package-differs", [] { return packageRefused(packageDiffersText()); }},
            {"package-without-digest", [] { return packageRefused(packageWithoutDigestText()); }},
            {"available-0-rows", [] { return rowsOf(0); }},
            {"available-1-row", [] { return rowsOf(1); }},
            {"available-5-rows", [] { return rowsOf(5); }},
            {"available-500-rows", [] { return rowsOf(500); }},
            {"available-beta-selected", betaSelected},
            {"available-long-names", longNames}};
}

QString Look::name() const
{
    QString result = language;
    if (fontPercent != 100) {
        result += QStringLiteral("-%1").arg(fontPercent);
    }
    return dark ? result + QStringLiteral("-dark") : result;
}

QList<Look> looks()
{
    QList<Look> result;
    for (const char* language : {"en", "de", "fr"}) {
        result.append({language, 100, false});
        result.append({language, 150, false});
    }
    result.append({"en", 100, true});
    return result;
}

AppliedLook::AppliedLook(const Look& look)
    : m_previousPointSize(QApplication::font().pointSizeF())
    , m_previousPalette(QApplication::palette())
{
    if (m_translator.load(":/Translations/SoftwareUpdateClient_" + look.language + ".qm")) {
        QCoreApplication::installTranslator(&m_translator);
    }
    if (m_trustTranslator.load(":/trust/UpdateTrust_" + look.language + ".qm")) {
        QCoreApplication::installTranslator(&m_trustTranslator);
    }
    useFontSize(m_previousPointSize * look.fontPercent / 100);
    if (look.dark) {
        QApplication::setPalette(darkPalette());
    }
}

AppliedLook::~AppliedLook()
{
    useFontSize(m_previousPointSize);
    QApplication::setPalette(m_previousPalette);
}

} // namespace vx::screenshots
