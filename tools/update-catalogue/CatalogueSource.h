#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace vx {

/** The bytes of a catalogue and the name by which messages speak of it. */
struct CatalogueSource
{
    /** A path, a URL, or "standard input". */
    QString name;
    QByteArray bytes;
    /** When it was last changed, as its file or its server says; null if neither does. */
    QDateTime date = QDateTime();
};

/**
 * Reads a whole catalogue, of the size at most that the library reads.
 *
 * @param source a file's path, an http or https URL, or "-" for standard input. A URL is asked as
 *     the library asks it: one GET with the same header, redirects followed, 15 s for each.
 * @throws CommandFailure with ExitUnreadable
 */
CatalogueSource readCatalogue(const QString& source);

} // namespace vx
