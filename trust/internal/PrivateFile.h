#pragma once

#include <QFile>
#include <QString>

namespace vx {

/**
 * Opens the file @p path for reading if nobody but the user, and the administrator, can change it
 * or put another in its place: it is a regular file of the user's, in a folder that is the user's
 * alone to write, and no folder above it lets everybody rename what is another's.
 *
 * @return whether @p file is open.
 */
bool openPrivately(QFile& file, const QString& path);

} // namespace vx
