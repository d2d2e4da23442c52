#pragma once

#include <QtGlobal>

#include "host/FileFormatsXml/FileFormatsXmlExport.h"

class QDomDocument;
class QIODevice;

namespace vx {

/** Reads XML that comes from outside. */
class VX_FILEFORMATSXML_EXPORT XmlUtils
{
public:
    XmlUtils() = delete;

    /** The largest document read, in bytes. */
    static constexpr qint64 maximumDocumentSize = Q_INT64_C(64) * 1024 * 1024;

    /** How many nodes a document may have: elements, attributes, texts, comments and the like. */
    static constexpr qint64 maximumNodes = 1000000;

    /** How deep elements may be nested; the root is at depth 1. */
    static constexpr int maximumDepth = 1000;

    /** How many attributes an element may have, and a document type may declare in all. */
    static constexpr int maximumAttributes = 256;

    /**
     * How many characters the entities of a document may expand to, all together. Default values of
     * attributes count as well, once for each element that they are declared for.
     */
    static constexpr qint64 maximumEntityExpansion = Q_INT64_C(1024) * 1024;

    /**
     * Reads @p device to its end and builds the document.
     *
     * The device is open for reading and stays the caller's. Names are kept as they are written,
     * prefixes included. The encoding is that of a byte-order mark or of the XML declaration, or
     * else UTF-8. Nothing outside of the document is ever fetched, and parameter entities are not
     * expanded.
     *
     * @param document is filled and returned; null has a new one made, which the caller deletes.
     * @throws ParseException when the document is not well-formed, is not in its encoding, refers
     *     to a parameter entity, or exceeds one of the limits above, which are tested before
     *     anything is built. @p document is then as it was.
     */
    static QDomDocument* parseXml(QIODevice* device, QDomDocument* document);
};

} // namespace vx
