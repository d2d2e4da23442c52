#pragma once

#include <QByteArray>
#include <QString>

namespace vx {

/**
 * Writes @p bytes as a whole or not at all: what is at @p path is replaced in one step, and keeps
 * its permissions.
 *
 * @param path a file; a link is followed. "-" is standard output.
 * @throws CommandFailure with ExitUnreadable, in particular if something else than a regular file
 *     stands there, such as a device or a folder.
 */
void writeOutput(const QString& path, const QByteArray& bytes);

/**
 * Where a command that changes a catalogue in place writes it: to "--out" if that is given, else to
 * where it was read.
 *
 * @param source the catalogue as the command line names it.
 * @param out the value of "--out", or an empty text.
 * @throws CommandFailure with ExitUsage if there is no such place, as for an address, or if the
 *     catalogue would get mixed up with JSON on standard output.
 */
QString outputPath(const QString& source, const QString& out, bool printsJson);

} // namespace vx
