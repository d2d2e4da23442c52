#pragma once

#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace vx {

/**
 * Runs one function on a thread of its own that is fit for an extraction: with a Utf8Locale, and
 * with signals blocked, so that they go to the application's threads and that a write beyond a
 * resource limit is an error. Whatever the function throws becomes a reason as text.
 */
class BackgroundTask
{
public:
    BackgroundTask() = default;
    /** Waits for the end of the function. */
    ~BackgroundTask();
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    /**
     * Starts @p work; to be called once. When it has ended, @p whenEnded is called on the same
     * thread. If no thread is to be had, the task ends at once with a failure, and @p whenEnded is
     * called on the caller's thread.
     */
    void start(std::function<void()> work, const std::function<void()>& whenEnded = {});

    /** Waits for the end, for at most @p milliseconds. Gives whether the end is reached. */
    bool waitFor(int milliseconds);

    /** Waits for the end; of a task that has not started, there is none. Any thread may call it. */
    void wait();

    /** Waits for the end, and gives why the work failed, or nothing if it did not. */
    QString failure();

private:
    void run(const std::function<void()>& work);
    void end(const std::function<void()>& whenEnded);

    std::mutex m_threadMutex; ///< guards the thread against being joined twice
    std::thread m_thread;
    std::mutex m_endMutex; ///< guards m_isEnded
    std::condition_variable m_ended;
    bool m_isEnded = false;
    QString m_failure;
};

} // namespace vx
