#include "host/NetworkHttp/internal/ReadBuffer.h"

#include <QNetworkReply>

namespace vx {

// A change of the size makes the network stack look for bytes at once. A connection by https can't
// read any before it is encrypted, and the stack crashes if it is told to while the request already
// belongs to the connection, which is so from the moment on at which a proxy asks for a password.
// So the size is set when the encryption is there. That is reported while the stack waits, so that
// no byte comes before. A connection that is used again reports nothing, but has a header.
void limitReadBuffer(QNetworkReply* reply, qint64 size)
{
    if (reply->url().scheme() != QLatin1String("https")) {
        reply->setReadBufferSize(size);
        return;
    }
    const auto limit = [reply, size] { reply->setReadBufferSize(size); };
    QObject::connect(reply, &QNetworkReply::encrypted, reply, limit);
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, limit);
}

void lookForMore(QNetworkReply* reply, qint64 size)
{
    // Before there is a header the connection may not be encrypted, as above.
    if (reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid()) {
        reply->setReadBufferSize(size);
    }
}

} // namespace vx
