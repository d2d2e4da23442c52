#include "download/internal/DownloadFile.h"

#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>

namespace vx {

namespace {

// A null character would end the path early, wherever it stands.
bool isUsablePath(const QString& path)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const bool hasControl = std::any_of(
        name.cbegin(), name.cend(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return !hasControl && !path.contains(QChar::Null);
}

} // namespace

DownloadFile::DownloadFile(const QString& fileName)
    : m_fileName(fileName)
{}

// Not by QFile's own open(), which would write through a link that someone has put in the file's
// place, and wait for the reader of a pipe.
void DownloadFile::openEmpty()
{
    if (!isUsablePath(m_fileName)) {
        return;
    }
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const int handle = ::open(QFile::encodeName(m_fileName).constData(), flags, 0666);
    if (handle >= 0) {
        open(handle, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
    }
}

quint64 closeAndMeasure(QFile& file)
{
    if (!file.isOpen()) {
        return 0;
    }
    file.close();
    return static_cast<quint64>(QFileInfo(file.fileName()).size());
}

} // namespace vx
