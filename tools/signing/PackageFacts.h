#pragma once

#include <QByteArray>
#include <QMap>

namespace vx {

/** What a publisher says of the file of a package. */
struct PackageFacts
{
    /** In bytes. */
    quint64 size = 0;
    /** The SHA-256 digest, in small hexadecimal digits. */
    QByteArray sha256;
};

/**
 * Writes facts into a catalogue and leaves every other byte as it is.
 *
 * A value that stands at a package or its "file" is replaced where it stands. One that is missing
 * there, or that only a set has, is put beside the size or the address of the package, as an
 * element beside an element and as an attribute beside an attribute. A last end of line is added
 * where there is none, of the kind that the document uses.
 *
 * @param document any encoding that holds ASCII characters as single bytes.
 * @param facts by the package's place in the list of DownloadManager::parseXML; packages without
 *     an entry stay as they are.
 * @throws ParseException when the document is not one that the library reads, or when the result
 *     would not read as it should, as where packages come from an entity.
 */
QByteArray writePackageFacts(const QByteArray& document, const QMap<int, PackageFacts>& facts);

} // namespace vx
