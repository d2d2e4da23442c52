#pragma once

#include <QStringList>

#include "package/PackageInfo.h"

namespace vx {

/**
 * What tells the packages of @p catalogue apart that have the name and release of another one: date
 * and language of each, by place. Empty for those that no other is called like; the file type is
 * said in any case where they are listed.
 */
QStringList twinDetails(const PackageInfoList& catalogue);

} // namespace vx
