#pragma once

#include <QByteArray>
#include <QIODevice>

#include <functional>
#include <optional>

namespace vx {

/**
 * The SHA-256 hash of all bytes from the current place of @p device to its end.
 *
 * @param goesOn asked after each piece of a quarter of a megabyte, with the bytes hashed so far;
 *     false ends the work. May be called on any thread, and so may this function.
 * @return 32 bytes; nothing if the device can't be read or the work was ended.
 */
std::optional<QByteArray> sha256Of(QIODevice& device, const std::function<bool(qint64)>& goesOn);

/** The SHA-256 hash of a whole file; nothing if it can't be read. */
std::optional<QByteArray> sha256OfFile(const QString& path);

} // namespace vx
