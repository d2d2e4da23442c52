#pragma once

#include "tools/update-catalogue/CatalogueSource.h"
#include "tools/update-catalogue/lint/Rule.h"

namespace vx {

/**
 * What is wrong with @p source, by place. A document that the library can't parse has one finding
 * alone, "not-well-formed".
 */
FindingList lintCatalogue(const CatalogueSource& source, const LintOptions& options);

} // namespace vx
