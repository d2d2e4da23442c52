#pragma once

#include <QString>

namespace vx {

/** @p text without its password if it is an address that holds one, else as it is. */
QString withoutPassword(const QString& text);

} // namespace vx
