#pragma once

#include <QList>
#include <QString>

#include "package/PackageInfo.h"

namespace vx {

/**
 * The rows of @p list to hide from a user whose system speaks @p systemLanguage, such as "de".
 *
 * Only camera firmware is ever hidden, and none of it if no firmware suits the user.
 */
QList<int> foreignLanguageRows(const PackageInfoList& list, const QString& systemLanguage);

} // namespace vx
