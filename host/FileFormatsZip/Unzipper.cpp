#include "host/FileFormatsZip/Unzipper.h"

#include <QCoreApplication>
#include <QFile>

#include <utility>

#include "host/FileFormatsZip/internal/BackgroundTask.h"
#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/read/Archive.h"
#include "host/FileFormatsZip/internal/write/Extraction.h"

namespace vx {

namespace {

/** What the job's thread uses; it may be at work when the Unzipper is gone. */
struct Job
{
    QString zipFile;
    QString targetFolder;
    bool flat = false;
    std::shared_ptr<ExtractionState> state = std::make_shared<ExtractionState>();

    std::shared_ptr<void> unpack() const
    {
        const auto archive = std::make_shared<const Archive>(zipFile, state->canceled);
        EntrySelection all;
        for (const ArchiveEntry& entry : archive->index()) {
            all.push_back(&entry);
        }
        ExtractionPlan plan(all, flat, state->canceled);
        requireNotCanceled();
        const auto extraction =
            std::make_shared<Extraction>(archive, std::move(plan), targetFolder, state);
        if (!extraction->run()) {
            extraction->removeMade();
            requireNotCanceled();
        }
        return extraction;
    }

    void requireNotCanceled() const
    {
        if (state->canceled) {
            fail(QStringLiteral("Unpacking was cancelled."));
        }
    }
};

} // namespace

class Unzipper::Private
{
public:
    std::shared_ptr<Job> job = std::make_shared<Job>();
    BackgroundTask task;
};

Unzipper::Unzipper(const QString& zipFile, const QString& targetFolder, bool flat)
    : d(std::make_unique<Private>())
{
    d->job->zipFile = zipFile;
    d->job->targetFolder = targetFolder;
    d->job->flat = flat;
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        // Direct, for whichever thread the job belongs to: the end of the application waits for it.
        // Not every application leaves its event loop by quit(), so that its destruction counts
        // too.
        connect(application, SIGNAL(aboutToQuit()), this, SLOT(stop()), Qt::DirectConnection);
        connect(application, SIGNAL(destroyed()), this, SLOT(stop()), Qt::DirectConnection);
    }
    QMetaObject::invokeMethod(this, "start", Qt::QueuedConnection);
}

Unzipper::~Unzipper()
{
    d->job->state->canceled = true;
}

bool Unzipper::removeZipFile()
{
    return QFile::remove(d->job->zipFile);
}

void Unzipper::start()
{
    d->task.start([job = d->job] { return job->unpack(); },
                  [this] { QMetaObject::invokeMethod(this, "report", Qt::QueuedConnection); });
}

void Unzipper::report()
{
    // A receiver may destroy this object: nothing may follow the signal.
    const QString reason = d->task.failure();
    if (reason.isEmpty()) {
        emit unzippingDone(QString(d->job->targetFolder));
    } else {
        emit unzippingFailed(reason);
    }
}

void Unzipper::stop()
{
    d->job->state->canceled = true;
    d->task.finish();
}

} // namespace vx
