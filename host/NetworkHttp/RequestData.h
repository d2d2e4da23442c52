#pragma once

#include <QBuffer>
#include <QList>
#include <QMetaType>
#include <QUrl>

#include <boost/shared_ptr.hpp>
#include <memory>

#include "host/NetworkHttp/NetworkHttpExport.h"
#include "host/NetworkHttp/QHttpHeader.h"

class HttpClient;
class QIODevice;

namespace vx {
class HttpTransfer;
struct RequestPlan;
} // namespace vx

/**
 * One HTTP request and its answer.
 *
 * HttpClient::prepareGet makes it, the client fills it while the request runs, and the result slot
 * reads it. A request runs once. To be touched on the event-loop thread only. Outside the
 * namespace, where the HTTP client has its types.
 */
class VX_NETWORKHTTP_EXPORT RequestData
{
public:
    RequestData();
    /** Frees the client's own buffer, and neither responseDevice of the caller nor userData. */
    ~RequestData();
    RequestData(const RequestData&) = delete;
    RequestData& operator=(const RequestData&) = delete;

    /**
     * The client's own buffer, which holds the body of the answer; the record owns it.
     *
     * Null unless the request was prepared with the device value -1. Open for reading and writing
     * and positioned at its end, so that a reader seeks to 0 first. After HttpClient::reset it is
     * closed.
     */
    QBuffer* getResponseBuffer() const;

    /**
     * The body in the client's own buffer as text; empty for a request with a device of the caller.
     *
     * A byte order mark decides how the bytes are read, then the "charset" of the "Content-Type",
     * and UTF-8 where neither says anything that is known.
     */
    QString getResponseText() const;

    /** The addresses asked, without user and password: the requested one, then each redirect. */
    QList<QUrl> requestUrls;

    /**
     * The HTTP status of the last answer, 0 until there is one.
     *
     * Stays what it is when the answer breaks off; is 0 again when the target of a redirect sends
     * no answer at all.
     */
    int statusCode = 0;

    /** The header of the last answer; empty until there is one. */
    QHttpHeader responseHeader;

    /**
     * The device that receives the body: the one given to HttpClient::prepareGet, or the client's
     * own buffer when that was -1, or null when the body is thrown away.
     *
     * A device of the caller stays the caller's, who sets this to null on deleting it. The client
     * sets it to null when the device was destroyed while the request ran. Only the body of the
     * final answer arrives here, never that of a redirect.
     */
    QIODevice* responseDevice = nullptr;

    /** For the caller, who owns what it points to; null at first and never read by the client. */
    void* userData = nullptr;

private:
    friend class ::HttpClient;
    friend class vx::HttpTransfer;

    std::unique_ptr<vx::RequestPlan> m_plan;
    std::unique_ptr<QBuffer> m_buffer;
};

/** How requests are handed about: the record lives as long as the client or a caller holds it. */
using RequestPtr = boost::shared_ptr<RequestData>;

Q_DECLARE_METATYPE(RequestPtr)
