#include "host/FileFormatsZip/internal/BackgroundTask.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

#include "host/CoreQt/ExceptionQt.h"

namespace vx {

namespace {

// Long enough for nearly all jobs to end in order, and too short to be felt.
constexpr int patienceMilliseconds = 30;

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

/** What outlives the task if the thread does. */
struct BackgroundTask::Shared
{
    std::mutex mutex; ///< guards all that follows
    std::condition_variable changed;
    bool isStarted = false;
    bool isEnded = false;
    bool isGone = false; ///< the thread touches nothing any more but itself
    QString failure;
    std::function<void()> whenEnded;

    void end(const QString& reason)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        failure = reason;
        isEnded = true;
        if (whenEnded) {
            whenEnded();
        }
        changed.notify_all();
    }

    void run(Work& work)
    {
        std::shared_ptr<void> leftover;
        QString reason;
        try {
            leftover = work();
        } catch (...) {
            reason = currentReason();
        }
        end(reason);
        leftover.reset();
        work = nullptr;
        const std::lock_guard<std::mutex> lock(mutex);
        isGone = true;
        changed.notify_all();
    }
};

namespace {

/** Threads whose task is gone. The code that they run must not be unloaded under them. */
class LateThreads
{
public:
    ~LateThreads() { join(); }

    /** @p running expires at the end of the thread. */
    void add(std::thread thread, std::weak_ptr<void> running)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_threads.empty()) {
            qAddPostRoutine([] { instance().join(); });
        }
        for (Late& late : m_threads) {
            if (late.running.expired()) {
                late.thread.join();
            }
        }
        m_threads.erase(std::remove_if(m_threads.begin(), m_threads.end(),
                                       [](const Late& late) { return !late.thread.joinable(); }),
                        m_threads.end());
        m_threads.push_back({std::move(thread), std::move(running)});
    }

    void join()
    {
        std::vector<Late> threads;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            threads.swap(m_threads);
        }
        for (Late& late : threads) {
            late.thread.join();
        }
    }

    static LateThreads& instance()
    {
        static LateThreads threads;
        return threads;
    }

private:
    struct Late
    {
        std::thread thread;
        std::weak_ptr<void> running;
    };

    std::mutex m_mutex; ///< guards the threads
    std::vector<Late> m_threads;
};

} // namespace

BackgroundTask::BackgroundTask()
    : m_shared(std::make_shared<Shared>())
{}

BackgroundTask::~BackgroundTask()
{
    const std::lock_guard<std::mutex> threadLock(m_threadMutex);
    if (!m_thread.joinable()) {
        return;
    }
    std::unique_lock<std::mutex> lock(m_shared->mutex);
    m_shared->whenEnded = nullptr;
    const bool isGone = m_shared->changed.wait_for(
        lock, std::chrono::milliseconds(patienceMilliseconds), [this] { return m_shared->isGone; });
    lock.unlock();
    if (isGone) {
        m_thread.join();
    } else {
        LateThreads::instance().add(std::move(m_thread), m_shared);
    }
}

void BackgroundTask::start(Work work, std::function<void()> whenEnded)
{
    const std::lock_guard<std::mutex> threadLock(m_threadMutex);
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->isStarted = true;
        m_shared->whenEnded = std::move(whenEnded);
    }
    try {
        m_thread = std::thread([shared = m_shared, work = std::move(work)]() mutable {
            blockSignals();
            shared->run(work);
        });
    } catch (const std::system_error&) {
        m_shared->end(currentReason());
    }
}

bool BackgroundTask::waitFor(int milliseconds)
{
    std::unique_lock<std::mutex> lock(m_shared->mutex);
    return m_shared->changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                      [this] { return m_shared->isEnded; });
}

void BackgroundTask::wait()
{
    std::unique_lock<std::mutex> lock(m_shared->mutex);
    m_shared->changed.wait(lock, [this] { return m_shared->isEnded || !m_shared->isStarted; });
}

void BackgroundTask::finish()
{
    const std::lock_guard<std::mutex> threadLock(m_threadMutex);
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

QString BackgroundTask::failure()
{
    wait();
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    return m_shared->failure;
}

} // namespace vx
