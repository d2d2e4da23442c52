#pragma once

#include "host/Core/CoreExport.h"
#include "host/Core/Mutex.h"

namespace vx {

/** Holds a Mutex until the end of a scope. */
class VX_CORE_EXPORT MutexLocker
{
public:
    /** Refers to @p mutex, which must outlive the object, and takes it at once if @p lockNow. */
    MutexLocker(Mutex& mutex, bool lockNow)
        : m_mutex(mutex)
    {
        if (lockNow) {
            lock();
        }
    }

    /** Releases the mutex if this object holds it. */
    ~MutexLocker()
    {
        if (m_locked) {
            m_mutex.unlock();
        }
    }

    MutexLocker(const MutexLocker&) = delete;
    MutexLocker& operator=(const MutexLocker&) = delete;

    /** Takes the mutex now, for an object that was made without; does nothing if it is held. */
    void lock()
    {
        if (!m_locked) {
            m_mutex.lock();
            m_locked = true;
        }
    }

private:
    Mutex& m_mutex;
    bool m_locked = false;
};

} // namespace vx
