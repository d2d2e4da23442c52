#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <boost/shared_ptr.hpp>

#include "host/NetworkHttp/HttpHost.h"
#include "host/NetworkHttp/NetworkHttpExport.h"
#include "host/NetworkHttp/RequestData.h"

class QIODevice;

/**
 * An asynchronous HTTP client that streams answers to a device.
 *
 * Several requests may run at once, each on its own. A request that was executed ends in exactly
 * one of two ways: its result slot is called, whatever became of it, or requestReset is raised.
 *
 * Bodies are asked for without compression, so that the length on disk is the length served, and
 * arrive at the device in small pieces as they come: memory stays the same for a file of any size.
 * Redirects are followed, at most maxRedirects of them and only to http and https. Cookies are
 * neither stored nor sent. The system's proxy settings are never used. Lives on the event-loop
 * thread; outside the namespace like its records.
 */
class VX_NETWORKHTTP_EXPORT HttpClient : public QObject
{
    Q_OBJECT

public:
    /** So many redirects are followed; one more ends the request with its own status. */
    static constexpr int maxRedirects = 20;

    /** The body that the client's own buffer takes, in bytes. More of it ends the request. */
    static constexpr qint64 maxBufferSize = 64LL * 1024 * 1024;

    /** How long a request waits for the next byte, in milliseconds, unless told otherwise. */
    static constexpr int defaultIdleTimeout = 60000;

    HttpClient();
    explicit HttpClient(const vx::HttpHost& host);

    /** Cancels what is running, as reset does. */
    ~HttpClient() override;

    /** Sets the host of the requests that are prepared from now on. Those prepared keep theirs. */
    void setHost(const vx::HttpHost& host);

    /**
     * How long a request that starts from now on waits for the next byte before it ends.
     *
     * @param milliseconds at least 1; anything less restores defaultIdleTimeout.
     */
    void setIdleTimeout(int milliseconds);

    /**
     * Makes a GET request to the host set last. Nothing is sent before execute.
     *
     * @param path the percent-encoded path, as in vx::HttpHost::makeURL.
     * @param params the query, as in vx::HttpHost::makeURL.
     * @param receiver the object whose slot tells of the end. If it is destroyed meanwhile, the
     *        request runs on, no slot is called, and requestReset is raised at its end. Null: the
     *        same.
     * @param slot as the SLOT macro writes it, "1queryResult(RequestPtr)". A slot without
     *        parameter does as well, access doesn't matter. One that @p receiver doesn't have is
     *        reported as a warning here and counts as no receiver.
     * @param device receives the body; open for writing, the caller's, and to be kept until the
     *        request has ended. It must not reset or destroy the client while it is written to.
     *        The value -1 means that the client keeps the body in its own buffer, see
     *        RequestData::getResponseBuffer. Null: see @p sharedDevice.
     * @param sharedDevice receives the body if @p device is null, and is held by the request. If
     *        both are null, the body is thrown away.
     * @return the request, which hasn't started; never null.
     */
    RequestPtr prepareGet(const QString& path, const QMap<QString, QVariant>& params,
                          QObject* receiver, const char* slot, QIODevice* device,
                          boost::shared_ptr<QIODevice> sharedDevice);

    /** prepareGet and execute in one. */
    RequestPtr get(const QString& path, const QMap<QString, QVariant>& params, QObject* receiver,
                   const char* slot, QIODevice* device, boost::shared_ptr<QIODevice> sharedDevice);

    /** get with an empty query and no shared device. */
    RequestPtr get(const QString& path, QObject* receiver, const char* slot, QIODevice* device);

    /**
     * Starts a request and returns at once.
     *
     * requestStarted is raised within this call; the result slot is always called later, from the
     * event loop. A null request and one that was executed before are ignored.
     *
     * A request ends when its answer is complete, breaks off or can't be had, when no byte came for
     * the idle timeout, when the device takes a byte less than it was given, and when the client's
     * own buffer is full. RequestData::statusCode is then the status received, or 0. Of an answer
     * that breaks off, some of the last bytes may be missing from the device.
     */
    void execute(const RequestPtr& request);

    /** Whether a request runs: from execute until its result slot has returned, or it was reset. */
    bool isExecutingRequest() const;

    /**
     * Cancels everything that runs, without calling a result slot. The device of each request is
     * flushed and closed, then requestReset is raised for it. Harmless when nothing runs, and from
     * within any slot; a request whose result slot is being called at that moment is not cancelled.
     */
    void reset();

    /**
     * The path of @p url, percent-encoded; empty if it has none.
     *
     * Only the path: user, query and fragment are dropped. What is encoded stays as it is, so that
     * "%2F" and "%25" survive, and nothing is encoded twice.
     */
    static QString encodedUrlPath(const QUrl& url);

    /** The same of a URL or a bare path given as text. */
    static QString encodedUrlPath(const QString& url);

signals:
    /** Raised within execute, with RequestData::userData as the caller set it. */
    void requestStarted(RequestPtr request);

    /**
     * How much of a body has reached its device, at most some 50 times a second for a request, and
     * once at its end before the result slot.
     *
     * Both are bytes, up to 2 GiB less one byte; past that both are divided by the same power of
     * two.
     *
     * @param done so far.
     * @param total to come altogether; 0 if the server doesn't say.
     */
    void downloadProgress(int done, int total);

    /**
     * Raised for a request that was executed and whose result slot will not be called: reset
     * cancelled it, the client is being destroyed, or its receiver is gone.
     *
     * The device is closed by then and the client is done with it, so that this is the place for
     * the owner to free RequestData::responseDevice and RequestData::userData.
     */
    void requestReset(RequestPtr request);

private slots:
    void finish(vx::HttpTransfer* transfer);

private:
    void discard(vx::HttpTransfer* transfer);

    vx::HttpHost m_host;
    int m_idleTimeout = defaultIdleTimeout;
    QList<vx::HttpTransfer*> m_transfers;
};
