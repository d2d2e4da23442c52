#include "tests/support/FixedClock.h"

#include <ctime>

#include <sys/time.h>

namespace {

// Milliseconds since 1970, or 0 while the clock runs.
qint64 fixedTime = 0;

} // namespace

extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval* time, void*) noexcept
{
    timespec real{};
    clock_gettime(CLOCK_REALTIME, &real);
    time->tv_sec = fixedTime != 0 ? fixedTime / 1000 : real.tv_sec;
    time->tv_usec = fixedTime != 0 ? fixedTime % 1000 * 1000 : real.tv_nsec / 1000;
    return 0;
}

namespace vx::test {

FixedClock::FixedClock(const QDateTime& now)
{
    fixedTime = now.toMSecsSinceEpoch();
}

FixedClock::~FixedClock()
{
    fixedTime = 0;
}

} // namespace vx::test
