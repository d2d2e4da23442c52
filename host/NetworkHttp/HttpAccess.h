#pragma once

#include <QString>
#include <QUrl>

#include "host/NetworkHttp/NetworkHttpExport.h"

namespace vx {

/**
 * The way to a server or a proxy: host, port and, where needed, user and password.
 *
 * A record with value semantics. An empty address means that there is none: no server, no proxy.
 * The operations never fail; what they can't read leaves the record as the default constructor
 * makes it.
 */
struct VX_NETWORKHTTP_EXPORT HttpAccess
{
    /** No access: an empty address, port 80. */
    HttpAccess();

    /**
     * @param host as in setAddress.
     * @param hostPort as in setAddress.
     * @param userName the name to log in with when asked; empty for none.
     * @param userPassword the password that goes with it.
     */
    HttpAccess(const QString& host, int hostPort, const QString& userName,
               const QString& userPassword);

    /**
     * Takes scheme, host, port, user and password of @p url; path and query are ignored.
     *
     * Without a port it is 80, or 443 for https. A URL that is invalid, has no host, or has another
     * scheme than http, https or none yields no access.
     */
    void setUrl(const QUrl& url);

    /**
     * Sets host and port, and forgets user and password, which belonged to another address.
     *
     * @param host a name or an address; IPv6 with or without brackets. What can't be a host
     *        yields no access.
     * @param hostPort 1 to 65535; anything else stands for 80, or 443 with @p https.
     * @param https whether a server there is asked by https instead of http.
     */
    void setAddress(const QString& host, int hostPort, bool https);

    /**
     * Reads what a person types for a server or proxy: "host", "host:port", "[::1]:port",
     * "user:password@host", or a whole URL such as "http://host:port/".
     *
     * Whitespace around it is dropped. Text that names no host yields no access.
     *
     * @param defaultPort the port when @p text names none; for https it is 443 whatever this says.
     */
    void parseAddress(const QString& text, int defaultPort);

    /**
     * The access as text, such as "http://host", "https://host" or "http://[::1]:8080".
     *
     * The port stands there unless it is the usual one of the scheme. User and password are left
     * out, since the text ends in dialogs and logs. Empty without an address.
     */
    operator QString() const;

    /** Whether host, without regard to case, and port are those of @p other. */
    bool hasSameAddress(const HttpAccess& other) const;

    /** Host name or address, IPv6 without brackets. Empty: no access. */
    QString address;

    /** 1 to 65535. Default 80. */
    int port;

    /** The name to log in with when asked; empty for none. */
    QString user;

    /** The password that goes with the name. */
    QString password;

    /** Whether a server is asked by https instead of http. Not used of a proxy. Default false. */
    bool secure;
};

} // namespace vx
