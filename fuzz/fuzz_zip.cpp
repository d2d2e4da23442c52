// Unpacks the input as an archive into a scratch folder.
//
// Whatever the input is, nothing may appear beside the target folder, a failure must leave no
// target folder, and only vx::IOException may come out. Faster with TMPDIR on a memory file system.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"

namespace {

/** A file in memory that has a path. */
class InputFile
{
public:
    InputFile(const uint8_t* data, size_t size)
        : m_descriptor(::memfd_create("input", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || ::write(m_descriptor, data, size) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }

    ~InputFile() { ::close(m_descriptor); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

private:
    int m_descriptor;
};

bool unpack(const QString& archive, const QString& target)
{
    try {
        vx::ZipReader reader(archive, nullptr);
        reader.open(QIODevice::ReadOnly);
        reader.extractFiles(reader.fileList(QRegExp()), target, false);
        return true;
    } catch (const vx::IOException& exception) {
        if (exception.message().isEmpty()) {
            std::abort();
        }
        return false;
    }
}

void removeTree(const QString& folder)
{
    ::chmod(QFile::encodeName(folder).constData(), 0700);
    QDirIterator entries(folder,
                         QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    while (entries.hasNext()) {
        removeTree(entries.next());
    }
    QDir(folder).removeRecursively();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QTemporaryDir scratch;
    const QString target = scratch.filePath(QStringLiteral("target"));
    const InputFile input(data, size);
    if (unpack(input.path(), target)) {
        removeTree(target);
    }
    const QStringList left =
        QDir(scratch.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    if (!left.isEmpty()) {
        std::abort();
    }
    return 0;
}
