#pragma once

namespace vx {

/**
 * Tells any number of threads, wherever they wait for a socket, that the server stops.
 *
 * A file descriptor rather than a condition variable, because the threads wait in poll().
 */
class StopSignal
{
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    /** Wakes everybody who waits now or later. */
    void raise();

    /** Becomes readable, and stays so, once raise() was called. */
    int descriptor() const { return m_ends[0]; }

private:
    int m_ends[2] = {-1, -1};
};

} // namespace vx
