#pragma once

#include <QMap>
#include <QString>
#include <QUrl>
#include <QVariant>

#include "host/NetworkHttp/HttpAccess.h"
#include "host/NetworkHttp/NetworkHttpExport.h"

class QSettings;

namespace vx {

/** A server, and the proxy through which it is reached. A record with value semantics. */
struct VX_NETWORKHTTP_EXPORT HttpHost
{
    /** Which proxy requests go through. Any other value counts as NoProxy. */
    enum ProxyPreference : int {
        /** Straight to the server. */
        NoProxy = 0,
        /** Through the proxy part of the record. */
        OwnProxy = 1,
        /** Through the application's proxy, NodeDB::globalProxy, as it is when a request is made.
         */
        GlobalProxy = 2
    };

    /** No server and no proxy. */
    HttpHost();
    HttpHost(const HttpHost& other);

    /**
     * A server and a proxy of its own.
     *
     * @param serverAccess the server.
     * @param proxyAccess the proxy. With an address the preference becomes OwnProxy, without one
     *        NoProxy.
     * @param agent as in userAgent.
     */
    HttpHost(const HttpAccess& serverAccess, const HttpAccess& proxyAccess, const QString& agent);

    ~HttpHost();
    HttpHost& operator=(const HttpHost& other);

    /**
     * Reads server and proxy from the open group of @p settings.
     *
     * The keys are "server-address", "server-port", "server-secure", "server-user",
     * "server-password", "proxy-preference", "proxy-address", "proxy-port", "proxy-user" and
     * "proxy-password". What is missing or can't be used gets the value of a default HttpHost.
     * userAgent is not stored and keeps its value.
     */
    void load(const QSettings& settings);

    /**
     * Writes server and proxy to the keys that load reads.
     *
     * @param withPasswords whether the passwords are stored, in plain text. With false both
     *        password keys are removed, lest an old password be used with a new address.
     */
    void store(QSettings& settings, bool withPasswords) const;

    /**
     * With the preference GlobalProxy, makes the proxy part what NodeDB::globalProxy says now, or
     * empty if it says that no proxy is to be used. Otherwise does nothing.
     *
     * @param url what is going to be fetched, empty for the server. The application has one proxy
     *        for every URL, so that it makes no difference.
     */
    void updateProxy(const QUrl& url);

    /**
     * The URL of @p path on the server.
     *
     * @param path percent-encoded, as HttpClient::encodedUrlPath returns it. What can't stand in
     * the path of a URL is encoded, a "?" and a "#" included; what is encoded stays so. A leading
     * "/" is added where it is missing, so that an empty path becomes "/" in a full URL; without
     * scheme and host an empty path stays empty.
     * @param params becomes the query, in the order of the keys, each key and value percent-encoded
     *        as UTF-8. Empty: no query.
     * @param full whether scheme, host and port come first, as a request needs it. The port is left
     *        out where it is the usual one of the scheme.
     * @return an empty URL if @p full is asked for and there is no server.
     */
    QUrl makeURL(const QString& path, const QMap<QString, QVariant>& params, bool full) const;

    /** The server. */
    HttpAccess server;

    /** Default NoProxy. */
    ProxyPreference proxyPreference;

    /** The proxy; of no effect with NoProxy. Without an address there is no proxy either. */
    HttpAccess proxy;

    /** Sent as "User-Agent" with each request, without control characters; empty: Qt's own. */
    QString userAgent;
};

} // namespace vx
