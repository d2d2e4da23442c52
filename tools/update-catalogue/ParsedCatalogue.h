#pragma once

#include <QVector>

#include "package/PackageInfo.h"
#include "tools/update-catalogue/CatalogueSource.h"
#include "tools/update-catalogue/CatalogueText.h"
#include "trust/internal/PackageDigests.h"

namespace vx {

/** The packages of a catalogue as the library reads them, and where each stands. */
struct ParsedCatalogue
{
    PackageInfoList packages;
    QVector<TextPosition> positions;
    /** What the packages say of their files. */
    PackageDigests digests;
};

/**
 * Reads @p source with the library's own parser.
 *
 * @throws CommandFailure with ExitUnreadable if the library can't parse it.
 */
ParsedCatalogue parseCatalogue(const CatalogueSource& source);

/** Name and release of @p package, as messages speak of it. */
QString packageLabel(const PackageInfo& package);

} // namespace vx
