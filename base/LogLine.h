#pragma once

class QString;

namespace vx {

/**
 * Writes one line to the process-wide log: prefix, @p text in Latin-1 and the line's end, flushed.
 *
 * Does nothing when @p level has no stream or is below the threshold. Lines of several threads do
 * not mix, and the stream's format flags are left as they were. Internal to the library.
 */
void logLine(int level, const QString& text);

} // namespace vx
