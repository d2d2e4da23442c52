#include "host/FileFormatsZip/ZipReader.h"

#include <QSet>

#include <new>
#include <optional>
#include <utility>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/internal/BackgroundTask.h"
#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/read/Archive.h"
#include "host/FileFormatsZip/internal/write/Extraction.h"

namespace vx {

namespace {

// How often the dialog is served, so that it and its cancel button feel immediate.
constexpr int pollMilliseconds = 10;

std::shared_ptr<const Archive> openArchive(const QString& path)
{
    const std::atomic<bool> never{false};
    return std::make_shared<Archive>(path, never);
}

/**
 * Unpacking some entries. What it holds is large if they are many, and given back when nobody waits
 * any more.
 */
class Job
{
public:
    Job(std::shared_ptr<const Archive> archive, const QString& targetFolder, bool flat,
        std::shared_ptr<ExtractionState> state)
        : m_archive(std::move(archive))
        , m_targetFolder(targetFolder)
        , m_flat(flat)
        , m_state(std::move(state))
    {}

    void run(const QStringList& names)
    {
        select(names);
        m_plan.emplace(m_selection, m_flat, m_state->canceled);
        if (!m_state->canceled) {
            m_extraction.emplace(m_archive, std::move(*m_plan), m_targetFolder, m_state);
            m_extraction->run();
        }
    }

private:
    void select(const QStringList& names)
    {
        m_wanted.reserve(names.size());
        for (int i = 0; i < names.size() && !m_state->canceled; ++i) {
            m_wanted.insert(names.at(i));
        }
        for (const ArchiveEntry& entry : m_archive->index()) {
            if (m_state->canceled) {
                return;
            }
            if (m_wanted.remove(entry.name)) {
                m_selection.push_back(&entry);
            }
        }
        if (!m_wanted.isEmpty()) {
            fail(QStringLiteral("The archive does not contain %1.").arg(quoted(*m_wanted.begin())));
        }
    }

    std::shared_ptr<const Archive> m_archive;
    QString m_targetFolder;
    bool m_flat;
    std::shared_ptr<ExtractionState> m_state;
    QSet<QString> m_wanted;
    EntrySelection m_selection;
    std::optional<ExtractionPlan> m_plan;
    std::optional<Extraction> m_extraction;
};

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
    const auto state = std::make_shared<ExtractionState>();
    BackgroundTask task;
    // Only the task holds the job, so that its end is not waited for.
    task.start([job = std::make_shared<Job>(d->archive, targetFolder, flat, state), names] {
        job->run(names);
        return job;
    });
    const QPointer<ZipReader> self(this);
    watch(task, *state);
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
