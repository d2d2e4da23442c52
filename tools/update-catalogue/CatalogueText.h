#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace vx {

/** A place in a catalogue as an editor shows it; both count from 1, 0 means unknown. */
struct TextPosition
{
    int line = 0;
    int column = 0;
};

/** @p bytes as text, in the encoding that a byte-order mark or the XML declaration names. */
QString decodeCatalogue(const QByteArray& bytes);

/**
 * Where each start tag of a well-formed document begins, in document order.
 *
 * QtXml only knows where a tag ends, which for a tag of several lines is not where one looks.
 */
QVector<TextPosition> startTagPositions(const QString& text);

} // namespace vx
