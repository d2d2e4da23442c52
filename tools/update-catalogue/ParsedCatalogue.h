#pragma once

#include "package/PackageInfo.h"
#include "tools/update-catalogue/CatalogueSource.h"

namespace vx {

/**
 * The packages of @p source as the library reads them.
 *
 * @throws CommandFailure with ExitUnreadable if the library can't parse it.
 */
PackageInfoList parseCatalogue(const CatalogueSource& source);

/** Name and release of @p package, as messages speak of it. */
QString packageLabel(const PackageInfo& package);

} // namespace vx
