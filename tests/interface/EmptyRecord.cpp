// Hosts make empty records in each of these ways.

#include "package/PackageInfo.h"

namespace {

vx::PackageInfo emptyRecord()
{
    return {};
}

vx::PackageInfo namedRecord()
{
    return {"Application", "Camera Manager"};
}

} // namespace

int main()
{
    const vx::PackageInfo assigned = {};
    const vx::PackageInfo declared;
    return assigned == emptyRecord() && declared == namedRecord() ? 0 : 1;
}
