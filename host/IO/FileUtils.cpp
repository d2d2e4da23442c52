#include "host/IO/FileUtils.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QUuid>

namespace vx {

namespace {

// Qt returns no path at all when TMPDIR names a folder that is not there. The current folder, which
// an empty path stands for, is no place for temporary files.
QString temporaryFolder()
{
    const QString folder = QDir::tempPath();
    return folder.isEmpty() ? qEnvironmentVariable("TMPDIR") : folder;
}

} // namespace

QString FileUtils::createTempDir()
{
    const QString prefix =
        QDir(temporaryFolder()).absoluteFilePath(QStringLiteral("SoftwareUpdate-"));
    QTemporaryDir folder(prefix + QStringLiteral("XXXXXX"));
    folder.setAutoRemove(false);
    if (!folder.isValid()) {
        // Not an empty path, which stands for the current folder wherever it is used.
        return prefix + QUuid::createUuid().toString(QUuid::WithoutBraces);
    }
    return folder.path();
}

QString FileUtils::nativePath(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

QByteArray FileUtils::readBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    return file.error() == QFileDevice::NoError ? bytes : QByteArray();
}

bool FileUtils::writeBytes(const QByteArray& bytes, const QString& path)
{
    QSaveFile file(path);
    // Where no new file can be made, the one that is there may still be written.
    file.setDirectWriteFallback(true);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

bool FileUtils::openDirectoryDialog(QString& path, const QString& title, const QString& acceptText,
                                    QWidget* parent)
{
    QFileDialog dialog(parent, title, path);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (!acceptText.isEmpty()) {
        dialog.setLabelText(QFileDialog::Accept, acceptText);
    }
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    path = dialog.selectedFiles().value(0);
    return true;
}

} // namespace vx
