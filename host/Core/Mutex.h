#pragma once

#include <mutex>

#include "host/Core/CoreExport.h"

namespace vx {

/** A plain, non-recursive lock. Taken through MutexLocker. */
class VX_CORE_EXPORT Mutex
{
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /** Waits until the lock is free and takes it. A thread must not take it twice. */
    void lock() { m_mutex.lock(); }

    /** Takes the lock if it is free. @return whether it was taken. */
    bool tryLock() { return m_mutex.try_lock(); }

    /** Releases the lock; only for the thread that took it. */
    void unlock() { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

} // namespace vx
