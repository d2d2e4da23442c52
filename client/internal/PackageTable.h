#pragma once

#include <QString>
#include <QStringList>

#include "package/PackageInfo.h"

namespace vx {

/** The five column titles of the update-available dialog, translated. */
QStringList packageTableHeaders();

/** The five cells of @p package, in the order of packageTableHeaders(). */
QStringList packageTableRow(const PackageInfo& package);

/** What the dialog shows below the table while @p package alone is selected, as HTML. */
QString packageComment(const PackageInfo& package);

} // namespace vx
