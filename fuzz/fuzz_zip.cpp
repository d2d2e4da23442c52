// Reads the input as an archive: directory, headers, plan, links and contents, in memory. One in
// some hundred is unpacked into a scratch folder as well.
//
// Whatever the input is, only vx::IOException may come out. What is accepted must be what a second
// reader finds in it, with zlib, and what that reader finds plain and sound must be accepted. On
// disk, nothing may appear beside the target folder, and a failure must leave no target folder.
// Faster with TMPDIR on a memory file system.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fuzz/zip/SecondReader.h"
#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/read/Archive.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"

namespace {

// More than that says nothing new, and takes long.
constexpr qint64 mostBytes = 1 << 18;
constexpr size_t pieceSize = 1 << 12;
constexpr unsigned inputsPerUnpacking = 512;

const std::atomic<bool> never{false};

void require(bool isTrue, const char* what)
{
    if (!isTrue) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

/** A file in memory that has a path, for one input after the other. */
class InputFile
{
public:
    InputFile()
        : m_descriptor(::memfd_create("input", MFD_CLOEXEC))
    {}

    ~InputFile() { ::close(m_descriptor); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    void fill(const uint8_t* data, size_t size) const
    {
        require(::ftruncate(m_descriptor, static_cast<off_t>(size)) == 0, "no memory");
        require(::pwrite(m_descriptor, data, size, 0) == static_cast<ssize_t>(size), "no memory");
    }

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

private:
    int m_descriptor;
};

struct ReadEntry
{
    QString name;
    bool isFile = false;
    std::string content;
};

/** Everything in the archive if it may be unpacked; nothing if that is large. Throws IOException.
 */
std::vector<ReadEntry> readAll(const QString& path, const vx::FileDescriptor& target)
{
    const vx::Archive archive(path, never);
    std::vector<const vx::ArchiveEntry*> all;
    qint64 bytes = 0;
    for (const vx::ArchiveEntry& entry : archive.entries()) {
        all.push_back(&entry);
        bytes += std::min(entry.size, mostBytes);
    }
    vx::ExtractionPlan plan;
    plan.add(all, false, never);
    vx::requireLinksInside(plan, target, never);
    std::vector<ReadEntry> entries;
    if (bytes > mostBytes) {
        return entries;
    }
    vx::ContentReader reader(archive, pieceSize);
    for (const vx::ArchiveEntry* const entry : all) {
        ReadEntry read = {entry->name, entry->kind == vx::ArchiveEntry::File, {}};
        if (read.isFile) {
            reader.begin(*entry);
            for (vx::ByteView piece = reader.next(); !piece.empty(); piece = reader.next()) {
                read.content += piece;
            }
        }
        entries.push_back(std::move(read));
    }
    return entries;
}

void compare(const std::vector<ReadEntry>& read, const vx::fuzz::SeenArchive& seen)
{
    if (!seen.isReadable || read.empty()) {
        return;
    }
    require(read.size() == seen.entries.size(), "another number of entries");
    for (size_t i = 0; i < read.size(); ++i) {
        if (read[i].isFile && seen.entries[i].isContentKnown) {
            require(read[i].content == seen.entries[i].content, "another content");
        }
    }
}

bool unpack(const QString& archive, const QString& target)
{
    try {
        vx::ZipReader reader(archive, nullptr);
        reader.open(QIODevice::ReadOnly);
        reader.extractFiles(reader.fileList(QRegExp()), target, false);
        return true;
    } catch (const vx::IOException& exception) {
        require(!exception.message().isEmpty(), "no reason");
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

void unpackToDisk(const QString& archive)
{
    static const QTemporaryDir scratch;
    const QString target = scratch.filePath(QStringLiteral("target"));
    if (unpack(archive, target)) {
        removeTree(target);
    }
    const QStringList left =
        QDir(scratch.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    require(left.isEmpty(), "something is left");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const InputFile input;
    static const QTemporaryDir scratch;
    static const vx::FileDescriptor empty(
        ::open(QFile::encodeName(scratch.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    static unsigned inputs = 0;
    input.fill(data, size);
    const vx::fuzz::SeenArchive seen =
        vx::fuzz::readAgain({reinterpret_cast<const char*>(data), size});
    try {
        compare(readAll(input.path(), empty), seen);
    } catch (const vx::IOException& exception) {
        require(!exception.message().isEmpty(), "no reason");
        require(!seen.isPlain, "a plain archive is refused");
    }
    if (inputs++ % inputsPerUnpacking == 0) {
        unpackToDisk(input.path());
    }
    return 0;
}
