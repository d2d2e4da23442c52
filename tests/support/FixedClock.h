#pragma once

#include <QDateTime>

namespace vx::test {

/**
 * Holds the time of day still while it lives, for borders that pass within a millisecond.
 *
 * It stands in for the C library's gettimeofday(), which is where Qt reads the time, so that the
 * code under test needs no door for a false clock. Timers and event loops run on another clock.
 */
class FixedClock
{
public:
    explicit FixedClock(const QDateTime& now);
    ~FixedClock();
    FixedClock(const FixedClock&) = delete;
    FixedClock& operator=(const FixedClock&) = delete;
};

} // namespace vx::test
