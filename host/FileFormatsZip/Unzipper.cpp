#include "host/FileFormatsZip/Unzipper.h"

#include <QCoreApplication>
#include <QFile>

#include <utility>

#include "host/FileFormatsZip/Archive.h"
#include "host/FileFormatsZip/BackgroundTask.h"
#include "host/FileFormatsZip/Extraction.h"
#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

class Unzipper::Private
{
public:
    void unpack();

    QString zipFile;
    QString targetFolder;
    bool flat = false;
    ExtractionState state;
    /** The last member, so that its thread has ended before the others go. */
    BackgroundTask task;
};

/** Runs on the task's thread. */
void Unzipper::Private::unpack()
{
    const Archive archive(zipFile, state.canceled);
    if (!state.canceled) {
        ExtractionPlan plan(archive.index(), flat, state.canceled);
        Extraction extraction(archive, std::move(plan), targetFolder, state);
        if (extraction.run()) {
            return;
        }
        extraction.removeMade();
    }
    fail(QStringLiteral("Unpacking was cancelled."));
}

Unzipper::Unzipper(const QString& zipFile, const QString& targetFolder, bool flat)
    : d(std::make_unique<Private>())
{
    d->zipFile = zipFile;
    d->targetFolder = targetFolder;
    d->flat = flat;
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
    d->state.canceled = true;
}

bool Unzipper::removeZipFile()
{
    return QFile::remove(d->zipFile);
}

void Unzipper::start()
{
    d->task.start([this] { d->unpack(); },
                  [this] { QMetaObject::invokeMethod(this, "report", Qt::QueuedConnection); });
}

void Unzipper::report()
{
    // A receiver may destroy this object: nothing may follow the signal.
    const QString reason = d->task.failure();
    if (reason.isEmpty()) {
        emit unzippingDone(QString(d->targetFolder));
    } else {
        emit unzippingFailed(reason);
    }
}

void Unzipper::stop()
{
    d->state.canceled = true;
    d->task.wait();
}

} // namespace vx
