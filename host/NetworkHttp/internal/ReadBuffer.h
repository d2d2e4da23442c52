#pragma once

#include <QtGlobal>

class QNetworkReply;

namespace vx {

/**
 * Lets @p reply, of a request that was just sent, hold back at most @p size bytes of its body. The
 * rest waits in the network until some of them are read.
 */
void limitReadBuffer(QNetworkReply* reply, qint64 size);

/**
 * Makes the network stack look whether the connection of @p reply, whose bytes so far are read, has
 * more bytes or has ended; does nothing before its header is there. When the last bytes have filled
 * its buffer, it doesn't look by itself and takes a connection that is closed for one that is slow.
 */
void lookForMore(QNetworkReply* reply, qint64 size);

} // namespace vx
