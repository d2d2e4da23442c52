#pragma once

#include <QString>
#include <QStringList>

#include "host/FileFormatsZip/internal/read/Archive.h"

namespace vx {

/** Whether @p raw is valid UTF-8. */
bool isUtf8(ByteView raw);

/**
 * The text of a name as it stands in an archive: UTF-8 if it is valid UTF-8, else code page 437.
 * The archive's own flag for UTF-8 is not asked, for many writers store UTF-8 without setting it.
 */
QString decodeName(ByteView raw);

/**
 * The form under which two spellings of a name are the same entry: Unicode composition, the two
 * slashes and a slash at the end make no difference.
 */
QString nameKey(const QString& name);

/**
 * What makes a path unfit as a name and as the target of a link, as "has a name with a backslash";
 * null if nothing does. Control characters are a flaw but for that of "Icon\r", and so are more
 * characters than file systems take and more than 128 parts.
 */
const char* pathFlaw(const QString& path);

/** The same for the name of an entry, where ".." is a flaw as well. */
const char* nameFlaw(const QString& name);

/** The parts of a name, without empty ones and ".". */
QStringList nameParts(const QString& name);

} // namespace vx
