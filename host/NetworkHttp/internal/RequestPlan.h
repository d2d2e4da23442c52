#pragma once

#include <QIODevice>
#include <QMetaMethod>
#include <QObject>
#include <QPointer>

#include <boost/shared_ptr.hpp>

#include "host/NetworkHttp/HttpHost.h"

namespace vx {

/** What the client remembers of a request besides its public record. */
struct RequestPlan
{
    /** Server and proxy as they were when the request was prepared. */
    HttpHost host;
    /** Who is told of the end; null when there is nobody, or nobody any more. */
    QPointer<QObject> receiver;
    /** How the receiver is told; invalid when there is nobody. */
    QMetaMethod slot;
    /** Keeps a shared device alive; null for any other. */
    boost::shared_ptr<QIODevice> sharedDevice;
    /** Whether the request was given to HttpClient::execute. */
    bool executed = false;
};

} // namespace vx
