#include "trust/internal/FileVerification.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <csignal>
#include <system_error>

#include "trust/internal/FileDigest.h"
#include "trust/internal/PrivateFile.h"

namespace vx {

namespace {

constexpr int progressInterval = 50; // milliseconds
constexpr int wholeProgress = 1000;

// Signals go to the application's own threads, whose handlers expect them there.
void leaveSignalsToOthers()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

} // namespace

FileVerification::FileVerification(const QString& path, const QByteArray& sha256, QObject* parent)
    : QObject(parent)
    , m_path(path)
    , m_sha256(sha256)
{
    m_progress.setInterval(progressInterval);
    connect(&m_progress, SIGNAL(timeout()), this, SLOT(showProgress()));
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        // The libraries that the thread uses are gone soon after. Not every application leaves its
        // event loop by quit(), so that its destruction counts too.
        connect(application, SIGNAL(aboutToQuit()), this, SLOT(stopForGood()));
        connect(application, SIGNAL(destroyed()), this, SLOT(stopForGood()));
    }
}

FileVerification::~FileVerification()
{
    stopForGood();
}

void FileVerification::start()
{
    m_progress.start();
    try {
        m_thread = std::thread([this] {
            leaveSignalsToOthers();
            work();
            QMetaObject::invokeMethod(this, "report", Qt::QueuedConnection);
        });
    } catch (const std::system_error&) {
        // Without a thread nothing was verified, and that is what is reported.
        QMetaObject::invokeMethod(this, "report", Qt::QueuedConnection);
    }
}

void FileVerification::cancel()
{
    m_isCanceled = true;
}

void FileVerification::work()
{
    QFile file;
    if (!openPrivately(file, m_path)) {
        return;
    }
    const qint64 size = std::max<qint64>(file.size(), 1);
    const auto hash = sha256Of(file, [this, size](qint64 done) {
        m_done = static_cast<int>(std::min<qint64>(done, size) * wholeProgress / size);
        return !m_isCanceled;
    });
    m_isSame = hash && *hash == m_sha256;
}

void FileVerification::showProgress()
{
    if (!m_isCanceled) {
        emit progressed(m_done, wholeProgress);
    }
}

void FileVerification::report()
{
    m_progress.stop();
    deleteLater();
    if (!m_isCanceled) {
        emit ended(m_isSame);
    }
}

void FileVerification::stopForGood()
{
    m_isCanceled = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

} // namespace vx
