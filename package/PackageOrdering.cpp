#include "package/PackageInfo.h"

namespace vx {

int PackageInfo::compareVersion(const QString& a, const QString& b)
{
    return a.compare(b);
}

// The opposite sign of compareVersion(), for lists that begin with the newest.
int PackageInfo::compareRelease(const QString& a, const QString& b)
{
    return -a.compare(b);
}

// Three alternatives and no ranking: an older release with a lower status word is better, too.
bool PackageInfo::isBetterMatch(const PackageInfo& other) const
{
    if (release.compare(other.release) > 0) {
        return true;
    }
    if (status.compare(other.status) < 0) {
        return true;
    }
    return other.date < date;
}

} // namespace vx
