#include "host/FileFormatsZip/ZipReader.h"

#include <QSet>

#include <new>
#include <utility>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/Archive.h"
#include "host/FileFormatsZip/BackgroundTask.h"
#include "host/FileFormatsZip/Extraction.h"
#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/Failure.h"
#include "host/FileFormatsZip/Utf8Locale.h"

namespace vx {

namespace {

// How often the dialog is served, so that it and its cancel button feel immediate.
constexpr int pollMilliseconds = 10;

std::shared_ptr<const Archive> openArchive(const QString& path)
{
    const Utf8Locale locale;
    const std::atomic<bool> never{false};
    return std::make_shared<Archive>(path, never);
}

ArchiveIndex selected(const ArchiveIndex& index, const QStringList& names,
                      const std::atomic<bool>& canceled)
{
    QSet<QString> wanted(names.begin(), names.end());
    ArchiveIndex selection;
    for (const ArchiveEntry& entry : index) {
        if (canceled) {
            return selection;
        }
        if (wanted.remove(entry.name)) {
            selection.push_back(entry);
        }
    }
    if (!wanted.isEmpty()) {
        fail(QStringLiteral("The archive does not contain %1.").arg(quoted(*wanted.begin())));
    }
    return selection;
}

} // namespace

class ZipReader::Private
{
public:
    /** Kept alive by an extraction even if the reader is opened anew or destroyed meanwhile. */
    std::shared_ptr<const Archive> archive;
    QString failure = QStringLiteral("The archive is not open.");
    bool isExtracting = false;
};

ZipReader::ZipReader(const QString& path, QObject* parent)
    : ZipDevice(path, parent)
    , d(std::make_unique<Private>())
{}

ZipReader::~ZipReader() = default;

bool ZipReader::open(QIODevice::OpenMode mode)
{
    d->archive.reset();
    if (mode != QIODevice::ReadOnly) {
        d->failure = QStringLiteral("An archive can only be opened for reading.");
        return false;
    }
    try {
        d->archive = openArchive(path());
    } catch (const IOException& exception) {
        d->failure = exception.message();
    } catch (const std::bad_alloc&) {
        d->failure = QStringLiteral("There is not enough memory to open the archive.");
    }
    return isOpen();
}

bool ZipReader::isOpen() const
{
    return d->archive != nullptr;
}

QStringList ZipReader::fileList(const QRegExp& pattern) const
{
    QStringList names;
    if (isOpen()) {
        for (const ArchiveEntry& entry : d->archive->index()) {
            if (pattern.indexIn(entry.name) >= 0) {
                names.append(entry.name);
            }
        }
    }
    return names;
}

void ZipReader::extractFiles(const QStringList& names, const QString& targetFolder, bool flat)
{
    if (!isOpen()) {
        fail(d->failure);
    }
    if (d->isExtracting) {
        fail(QStringLiteral("The archive is being unpacked already."));
    }
    const std::shared_ptr<const Archive> archive = d->archive;
    ExtractionState state;
    BackgroundTask task;
    task.start([&] {
        ExtractionPlan plan(selected(archive->index(), names, state.canceled), flat,
                            state.canceled);
        Extraction(*archive, std::move(plan), targetFolder, state).run();
    });
    const QPointer<ZipReader> self(this);
    watch(task, state);
    if (!self) {
        fail(QStringLiteral("The archive was closed while it was being unpacked."));
    }
    if (!task.failure().isEmpty()) {
        fail(task.failure());
    }
}

/** Serves the dialog until the task has ended. The reader may be gone afterwards. */
void ZipReader::watch(BackgroundTask& task, ExtractionState& state)
{
    const QPointer<ZipReader> self(this);
    d->isExtracting = true;
    beginProgress();
    while (self && hasProgressDialog() && !task.waitFor(pollMilliseconds)) {
        showProgress(state.doneBytes, state.totalBytes);
        if (!self || wasCanceled()) {
            state.canceled = true;
        }
    }
    task.wait();
    if (self) {
        d->isExtracting = false;
        if (!wasCanceled() && task.failure().isEmpty()) {
            endProgress();
        }
    }
}

} // namespace vx
