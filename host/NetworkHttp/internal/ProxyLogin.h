#pragma once

#include <QNetworkProxy>

#include "host/NetworkHttp/HttpHost.h"

class QAuthenticator;

namespace vx {

/** The proxy that @p host asks for, without user and password; NoProxy in so many words if none. */
QNetworkProxy networkProxyOf(const HttpHost& host);

/**
 * Fills in user and password for the proxy of @p host: its own, or, if it has no password, those of
 * the application's proxy, if that has the same host and port and not another user. Leaves
 * @p authenticator alone if nothing is stored.
 */
void logInToProxy(const HttpHost& host, QAuthenticator* authenticator);

} // namespace vx
