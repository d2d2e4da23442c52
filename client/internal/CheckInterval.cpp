#include "client/internal/CheckInterval.h"

namespace vx {

QDateTime checkDueAfter(const QDateTime& lastCheck, int interval)
{
    switch (interval) {
    case Daily:
        return lastCheck.addDays(1);
    case Weekly:
        return lastCheck.addDays(7);
    case Monthly:
        return lastCheck.addMonths(1);
    default:
        return {};
    }
}

} // namespace vx
