#include "host/FileFormatsZip/Unzipper.h"

#include <QCoreApplication>
#include <QFile>

#include "host/FileFormatsZip/internal/BackgroundTask.h"
#include "host/FileFormatsZip/internal/write/Extraction.h"

namespace vx {

class Unzipper::Private
{
public:
    ExtractionOrder order;
    std::shared_ptr<ExtractionState> state = std::make_shared<ExtractionState>();
    BackgroundTask task;
};

Unzipper::Unzipper(const QString& zipFile, const QString& targetFolder, bool flat)
    : d(std::make_unique<Private>())
{
    d->order = {zipFile, nullptr, {}, targetFolder, flat};
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        // Direct, for whichever thread the job belongs to: the end of the application waits for it.
        // Not every application leaves its loop by quit(), so that its destruction counts too.
        connect(application, SIGNAL(aboutToQuit()), this, SLOT(stop()), Qt::DirectConnection);
        connect(application, SIGNAL(destroyed()), this, SLOT(stop()), Qt::DirectConnection);
    }
    QMetaObject::invokeMethod(this, "start", Qt::QueuedConnection);
}

Unzipper::~Unzipper()
{
    d->state->canceled = true;
}

bool Unzipper::removeZipFile()
{
    return QFile::remove(d->order.archivePath);
}

void Unzipper::start()
{
    // The thread owns what it uses: it may be at work when this object is gone.
    d->task.start(
        [extraction = std::make_shared<Extraction>(d->order, d->state)] { extraction->run(); },
        [this] { QMetaObject::invokeMethod(this, "report", Qt::QueuedConnection); });
}

void Unzipper::report()
{
    // A receiver may destroy this object: nothing may follow the signal.
    const QString reason = d->task.failure();
    if (reason.isEmpty()) {
        emit unzippingDone(QString(d->order.targetFolder));
    } else {
        emit unzippingFailed(reason);
    }
}

void Unzipper::stop()
{
    d->state->canceled = true;
    d->task.finish();
}

} // namespace vx
