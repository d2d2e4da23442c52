#include "host/FileFormatsXml/XmlUtils.h"

#include <QDomDocument>
#include <QIODevice>
#include <QXmlStreamReader>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/internal/XmlDecoding.h"
#include "host/FileFormatsXml/internal/XmlLimits.h"

namespace vx {

namespace {

constexpr qint64 pieceSize = Q_INT64_C(64) * 1024;

/** All bytes of @p device; one that has more than allowed, or has no end, is not read to its end.
 */
QByteArray readDocument(QIODevice* device)
{
    if (device == nullptr || !device->isReadable()) {
        throw ParseException(QStringLiteral("The document cannot be read."));
    }
    QByteArray document;
    while (document.size() <= XmlUtils::maximumDocumentSize) {
        const QByteArray piece = device->read(pieceSize);
        if (piece.isEmpty()) {
            return document;
        }
        document += piece;
    }
    throw ParseException(QStringLiteral("The document is too large."));
}

bool isBlankSection(const QDomNode& node)
{
    return node.isCDATASection() && node.nodeValue().trimmed().isEmpty();
}

/** Takes the CDATA sections of white space alone out of @p parent and what is below it. */
void removeBlankSections(QDomNode parent)
{
    QDomNode child = parent.firstChild();
    while (!child.isNull()) {
        const QDomNode next = child.nextSibling();
        if (isBlankSection(child)) {
            parent.removeChild(child);
        } else {
            removeBlankSections(child);
        }
        child = next;
    }
}

/** Whether @p text may hold CDATA sections, be it by way of an entity. */
bool mayHoldSections(const QString& text)
{
    return text.contains(QLatin1String("<![CDATA[")) || text.contains(QLatin1String("<!ENTITY"));
}

// Not the parser that reads bytes by default: that one is lax about characters and references, and
// its time grows with the square of the number of entities.
QDomDocument build(const QString& text)
{
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    reader.setEntityExpansionLimit(XmlUtils::maximumEntityExpansion);
    QDomDocument document;
    QString reason;
    int line = 0;
    int column = 0;
    if (!document.setContent(&reader, false, &reason, &line, &column)) {
        throw ParseException(
            QStringLiteral("Line %1, column %2: %3").arg(line).arg(column).arg(reason));
    }
    if (mayHoldSections(text)) {
        // White space alone is left out by the parser of Qt 5, however it is written. That of Qt 6
        // keeps it in a CDATA section, and a field would hold blanks.
        removeBlankSections(document);
    }
    return document;
}

} // namespace

QDomDocument* XmlUtils::parseXml(QIODevice* device, QDomDocument* document)
{
    const QString text = decodeXml(readDocument(device));
    XmlLimits::check(text);
    const QDomDocument built = build(text);
    if (document == nullptr) {
        return new QDomDocument(built);
    }
    *document = built;
    return document;
}

} // namespace vx
