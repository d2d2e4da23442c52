#include "host/FileFormatsZip/internal/BackgroundTask.h"

#include <QCoreApplication>

#include <chrono>
#include <csignal>
#include <list>
#include <new>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/CoreQt/ExceptionQt.h"

namespace vx {

namespace {

// Long enough for nearly all jobs to end in order, and too short to be felt.
constexpr std::chrono::milliseconds patience(30);

/** Why @p work failed, or nothing if it did not. */
QString reasonOf(const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const ExceptionQt& exception) {
        return exception.message();
    } catch (const std::bad_alloc&) {
        return QStringLiteral("There is not enough memory to unpack the archive.");
    } catch (const std::exception& exception) {
        return QStringLiteral("The archive cannot be unpacked: %1.")
            .arg(QString::fromLocal8Bit(exception.what()));
    }
}

/** Threads whose task is gone, waited for before the code that they run can be unloaded. */
struct LateThreads
{
    ~LateThreads() { qRemovePostRoutine(join); }

    void add(std::future<void> thread)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        qRemovePostRoutine(join);
        qAddPostRoutine(join);
        threads.remove_if([](const std::future<void>& late) {
            return late.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
        threads.push_back(std::move(thread));
    }

    static void join();

    std::mutex mutex; ///< guards the threads
    std::list<std::future<void>> threads;
} lateThreads;

void LateThreads::join()
{
    std::list<std::future<void>> threads;
    const std::lock_guard<std::mutex> lock(lateThreads.mutex);
    threads.swap(lateThreads.threads);
}

} // namespace

void BackgroundTask::Shared::end(const QString& reason)
{
    const std::lock_guard<std::mutex> lock(mutex);
    failure.set_value(reason);
    if (whenEnded) {
        whenEnded();
    }
}

BackgroundTask::~BackgroundTask()
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->whenEnded = nullptr;
    }
    const std::lock_guard<std::mutex> lock(m_threadMutex);
    if (m_thread.valid() && m_thread.wait_for(patience) != std::future_status::ready) {
        lateThreads.add(std::move(m_thread));
    }
}

void BackgroundTask::start(std::function<void()> work, std::function<void()> whenEnded)
{
    const std::lock_guard<std::mutex> lock(m_threadMutex);
    m_shared->whenEnded = std::move(whenEnded);
    const QString reason = reasonOf([&] {
        m_thread =
            std::async(std::launch::async, [shared = m_shared, work = std::move(work)]() mutable {
                sigset_t all;
                sigfillset(&all);
                pthread_sigmask(SIG_SETMASK, &all, nullptr);
                // Linux lets the event loop in at once if the busy thread is nicer and asks for
                // longer turns. The numbers are a sched_attr, whose header can't stand beside that
                // of the C library.
                quint64 attributes[7] = {};
                ::syscall(SYS_sched_getattr, 0, attributes, sizeof(attributes), 0);
                attributes[2] = static_cast<quint32>(attributes[2] + 5); // sched_nice, 19 at most
                attributes[3] = 10000000; // sched_runtime in nanoseconds
                ::syscall(SYS_sched_setattr, 0, attributes, 0);
                shared->end(reasonOf(work));
                work = nullptr;
            });
    });
    if (!reason.isEmpty()) {
        m_shared->end(reason);
    }
}

bool BackgroundTask::waitFor(int milliseconds) const
{
    return m_failure.wait_for(std::chrono::milliseconds(milliseconds)) == std::future_status::ready;
}

void BackgroundTask::finish()
{
    const std::lock_guard<std::mutex> lock(m_threadMutex);
    m_thread = {};
}

} // namespace vx
