#include "host/FileFormatsZip/ZipReader.h"

#include <new>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/internal/BackgroundTask.h"
#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/write/Extraction.h"

namespace vx {

// How often the dialog is served, so that it and its cancel button feel immediate.
static constexpr int pollMilliseconds = 10;

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
        d->archive = std::make_shared<Archive>(path(), std::atomic<bool>(false));
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
        for (const ArchiveEntry& entry : d->archive->entries()) {
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
    const auto state = std::make_shared<ExtractionState>();
    const ExtractionOrder order = {path(), d->archive, names, targetFolder, flat, true};
    BackgroundTask task;
    // Only the task holds the extraction, so that nobody waits for its end.
    task.start([extraction = std::make_shared<Extraction>(order, state)] { extraction->run(); });
    // The dialog's events may destroy this object.
    const QPointer<ZipReader> self(this);
    d->isExtracting = true;
    beginProgress();
    while (self && hasProgressDialog() && !task.waitFor(pollMilliseconds)) {
        showProgress(state->doneBytes, state->totalBytes);
        if (!self || wasCanceled()) {
            state->canceled = true;
        }
    }
    const QString failure = task.failure();
    if (self) {
        d->isExtracting = false;
    }
    if (self && failure.isEmpty() && !wasCanceled()) {
        endProgress();
    }
    if (!self || !failure.isEmpty()) {
        fail(self ? failure
                  : QStringLiteral("The archive was closed while it was being unpacked."));
    }
}

} // namespace vx
