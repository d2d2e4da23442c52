// Links with nothing but what pkg-config says.
#include <cstdio>

#include "host/Core/VersionNumber.h"
#include "package/PackageInfo.h"

int main()
{
    vx::PackageInfo package("Application", "Consumer", "2.0", "STABLE");
    const vx::PackageInfo filter("", "Consumer", "1.9");
    if (!package.filterPackageCandidate(filter, {})) {
        std::puts("2.0 should be newer than 1.9");
        return 1;
    }
    return 0;
}
