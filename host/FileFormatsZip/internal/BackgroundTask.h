#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace vx {

/**
 * Runs one function on a thread of its own that is fit for an extraction: with signals blocked, so
 * that they go to the application's threads and that a write beyond a resource limit is an error.
 * Whatever the function throws becomes a reason as text.
 */
class BackgroundTask
{
public:
    /**
     * The function. What it returns is destroyed when the task has ended already, so that nobody
     * waits for large things to be given back.
     */
    using Work = std::function<std::shared_ptr<void>()>;

    BackgroundTask();
    /**
     * Waits for the end of the function, but not for long: a thread that has more to do, such as
     * removing what was unpacked, does it behind the object's back. The function must own what it
     * uses by then. Before the application or the library goes, such threads are waited for.
     */
    ~BackgroundTask();
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    /**
     * Starts @p work; to be called once. When it has ended, and if the object is still there,
     * @p whenEnded is called on the same thread. If no thread is to be had, the task ends at once
     * with a failure, and @p whenEnded is called on the caller's thread.
     */
    void start(Work work, std::function<void()> whenEnded = {});

    /** Waits for the end, for at most @p milliseconds. Gives whether the end is reached. */
    bool waitFor(int milliseconds);

    /** Waits for the end; of a task that has not started, there is none. */
    void wait();

    /** The same, until nothing of the task runs any more. Any thread may call it. */
    void finish();

    /** Waits for the end, and gives why the work failed, or nothing if it did not. */
    QString failure();

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared;
    std::mutex m_threadMutex; ///< guards the thread against being joined twice
    std::thread m_thread;
};

} // namespace vx
