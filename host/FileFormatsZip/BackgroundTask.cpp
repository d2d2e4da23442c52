#include "host/FileFormatsZip/BackgroundTask.h"

#include <chrono>
#include <csignal>
#include <new>
#include <system_error>
#include <utility>

#include "host/CoreQt/ExceptionQt.h"
#include "host/FileFormatsZip/Utf8Locale.h"

namespace vx {

namespace {

void blockSignals()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

/** The text of the exception that is being handled. */
QString currentReason()
{
    try {
        throw;
    } catch (const ExceptionQt& exception) {
        return exception.message();
    } catch (const std::bad_alloc&) {
        return QStringLiteral("There is not enough memory to unpack the archive.");
    } catch (const std::exception& exception) {
        return QStringLiteral("The archive cannot be unpacked: %1.")
            .arg(QString::fromLocal8Bit(exception.what()));
    }
}

} // namespace

BackgroundTask::~BackgroundTask()
{
    wait();
}

void BackgroundTask::start(std::function<void()> work, const std::function<void()>& whenEnded)
{
    const std::lock_guard<std::mutex> lock(m_threadMutex);
    try {
        m_thread = std::thread([this, work = std::move(work), whenEnded] {
            blockSignals();
            run(work);
            end(whenEnded);
        });
    } catch (const std::system_error&) {
        m_failure = currentReason();
        end(whenEnded);
    }
}

bool BackgroundTask::waitFor(int milliseconds)
{
    std::unique_lock<std::mutex> lock(m_endMutex);
    return m_ended.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [this] { return m_isEnded; });
}

void BackgroundTask::wait()
{
    const std::lock_guard<std::mutex> lock(m_threadMutex);
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

QString BackgroundTask::failure()
{
    wait();
    return m_failure;
}

void BackgroundTask::run(const std::function<void()>& work)
{
    try {
        const Utf8Locale locale;
        work();
    } catch (...) {
        m_failure = currentReason();
    }
}

void BackgroundTask::end(const std::function<void()>& whenEnded)
{
    if (whenEnded) {
        whenEnded();
    }
    const std::lock_guard<std::mutex> lock(m_endMutex);
    m_isEnded = true;
    m_ended.notify_all();
}

} // namespace vx
