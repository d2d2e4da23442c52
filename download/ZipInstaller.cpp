#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>

#include <exception>

#include <unistd.h>

#include "download/DownloadManager.h"
#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "host/IO/FileUtils.h"

namespace vx {

namespace {

bool askForInstallPath(QString& installPath, const QString& installerFile)
{
    const QString title = DownloadManager::tr("Select Installation Path for '%1'")
                              .arg(QFileInfo(installerFile).fileName());
    return FileUtils::openDirectoryDialog(installPath, title, QString(), nullptr);
}

/** @return whether everything was unpacked; false if the user cancelled. */
bool unpackAll(const QString& installerFile, const QString& folder)
{
    ZipReader reader(installerFile, nullptr);
    reader.open(QIODevice::ReadOnly); // a failure is thrown by extractFiles()
    // Never restored: either this process is replaced, or the cursor stays.
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QProgressDialog dialog;
    dialog.setLabelText(DownloadManager::tr("Unpacking '%1'").arg(installerFile));
    reader.attachProgressDialog(&dialog);
    reader.extractFiles(reader.fileList(QRegExp()), folder, false);
    return !reader.wasCanceled();
}

// It may name files of the archive, which may be named like markup.
void showUnpackingFailed(const QString& message)
{
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Unpacking failed"), message,
                    QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

/** @param folder becomes the folder with what was unpacked. */
bool unpackOrTell(const QString& installerFile, QString& folder)
{
    try {
        folder = FileUtils::createTempDir();
        return unpackAll(installerFile, folder);
    } catch (const IOException& failure) {
        showUnpackingFailed(failure.message());
        throw IOException(failure);
    }
}

/**
 * Replaces this process with the step that copies the files and starts the program.
 *
 * The arguments stand exactly so, and three things must not be corrected: there is no "-c", so that
 * "cp" is the name of a script and "&&" an argument of it; "sh" has no folder, and execl() does not
 * search PATH; and the install path is handed over in UTF-16, of which a reader of bytes sees no
 * more than the first character.
 */
void replaceProcess(const QString& unpackedFolder, const QString& installPath,
                    const QString& program)
{
    const QByteArray unpacked = FileUtils::nativePath(unpackedFolder).toLocal8Bit();
    const QString install = FileUtils::nativePath(installPath);
    const QByteArray start = FileUtils::nativePath(program).toLocal8Bit();
    ::execl("sh", "sh", "cp", "-fr", unpacked.constData(),
            reinterpret_cast<const char*>(install.utf16()), "&&rm", "-fr", unpacked.constData(),
            "&&", start.constData(), static_cast<char*>(nullptr));
}

} // namespace

// Callers are promised exceptions of ExceptionQt's kind; any other one ends the process here.
void DownloadManager::runZipInstaller(const QString& installerFile)
try {
    QString installPath = QDir(QCoreApplication::applicationDirPath()).absolutePath();
    if (!askForInstallPath(installPath, installerFile)) {
        return;
    }
    QString folder;
    if (!unpackOrTell(installerFile, folder)) {
        return;
    }
    const QString executable = findDefaultExecutable(QDir(folder));
    const QString program = executable.isEmpty() ? QCoreApplication::applicationFilePath()
                                                 : QDir(installPath).filePath(executable);
    replaceProcess(folder, installPath, program);
} catch (const ExceptionQt&) {
    throw;
} catch (...) {
    std::terminate();
}

} // namespace vx
