#pragma once

#include <QString>

#include <functional>
#include <future>
#include <memory>
#include <mutex>

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
     * Waits for the end of the thread, but not for long: what takes longer, such as removing what
     * was unpacked, goes on behind the object's back. The function must own what it uses by then.
     * Before the application or the library goes, such threads are waited for.
     */
    ~BackgroundTask();

    /**
     * Starts @p work; to be called once. When it has ended, and if the object is still there,
     * @p whenEnded is called on the same thread, and what @p work owns is destroyed, for which
     * nobody waits. If no thread is to be had, both happens at once, on the caller's thread.
     */
    void start(std::function<void()> work, std::function<void()> whenEnded = {});

    /** Waits for the end of the started work, for at most @p milliseconds; whether it is there. */
    bool waitFor(int milliseconds) const;

    /** Waits for the end of the started work. Gives why it failed, or nothing if it did not. */
    QString failure() const { return m_failure.get(); }

    /** Waits until nothing of the task runs any more. Any thread may call it. */
    void finish();

private:
    /** What outlives the task if the thread does. */
    struct Shared
    {
        std::promise<QString> failure;
        std::mutex mutex; ///< guards what follows
        std::function<void()> whenEnded;

        void end(const QString& reason);
    };

    const std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
    const std::shared_future<QString> m_failure = m_shared->failure.get_future();
    std::mutex m_threadMutex;   ///< guards what follows
    std::future<void> m_thread; ///< of std::async: joins the thread when it is destroyed
};

} // namespace vx
