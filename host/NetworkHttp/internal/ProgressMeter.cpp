#include "host/NetworkHttp/internal/ProgressMeter.h"

#include <algorithm>
#include <limits>

namespace vx {

Progress scaledProgress(qint64 done, qint64 total)
{
    int shift = 0;
    while ((std::max(done, total) >> shift) > std::numeric_limits<int>::max()) {
        ++shift;
    }
    return {static_cast<int>(done >> shift), static_cast<int>(total >> shift)};
}

bool ProgressMeter::takeTurn()
{
    if (m_sinceReport.isValid() && m_sinceReport.elapsed() < interval) {
        return false;
    }
    m_sinceReport.start();
    return true;
}

} // namespace vx
