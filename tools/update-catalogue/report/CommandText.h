#pragma once

#include <QStringList>

namespace vx {

/**
 * @p arguments, the program's own first, as somebody would type them into a shell again. Passwords
 * in addresses are left out.
 */
QString commandLine(const QStringList& arguments);

} // namespace vx
