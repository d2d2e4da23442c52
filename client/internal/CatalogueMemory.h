#pragma once

#include <QUrl>

#include <optional>

namespace vx {

/**
 * When the newest catalogue that was accepted from @p address was signed, in seconds since 1970;
 * nothing if none was, or if the store has been damaged.
 *
 * @param address the one that was asked, wherever redirects led from there.
 */
std::optional<qint64> newestAccepted(const QUrl& address);

/** Notes in the application's store that a catalogue of that time was accepted from @p address. */
void rememberAccepted(const QUrl& address, qint64 timestamp);

} // namespace vx
