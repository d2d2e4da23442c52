#pragma once

#include <QByteArray>
#include <QString>

namespace vx {

/**
 * The text of an XML document, without a byte-order mark.
 *
 * The encoding is that of the byte-order mark, of the way "<" is written, or of the declaration, in
 * this order, and UTF-8 without any of them. Internal to the library.
 *
 * @throws ParseException when the encoding is unknown or the bytes are not in it.
 */
QString decodeXml(const QByteArray& document);

} // namespace vx
