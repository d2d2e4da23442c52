#pragma once

#include <QByteArray>
#include <QString>

namespace vx {

/**
 * The text that @p bytes hold: by their byte order mark, else by the "charset" of @p contentType,
 * else as UTF-8. Bytes that don't fit become replacement characters.
 */
QString decodedText(const QByteArray& bytes, const QString& contentType);

} // namespace vx
