#pragma once

#include <QByteArray>
#include <QUrl>

namespace vx {

/** Whether an answer of @p status only points to another address. */
bool isRedirect(int status);

/**
 * Where the "Location" header @p location of an answer from @p base points to.
 *
 * A relative target is resolved. User and password are dropped: a server has no business with them
 * in an address that it sends.
 *
 * @return an empty URL unless it is an http or https one with a host.
 */
QUrl redirectTarget(const QUrl& base, const QByteArray& location);

} // namespace vx
