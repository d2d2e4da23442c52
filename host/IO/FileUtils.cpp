#include "host/IO/FileUtils.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QSaveFile>
#include <QTemporaryDir>

namespace vx {

QString FileUtils::createTempDir()
{
    QTemporaryDir folder;
    folder.setAutoRemove(false);
    return folder.path();
}

bool FileUtils::erase(const QString& path)
{
    return QFile::remove(path);
}

QString FileUtils::nativePath(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

QByteArray FileUtils::readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool FileUtils::writeBytes(const QByteArray& bytes, const QString& path)
{
    QSaveFile file(path);
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
