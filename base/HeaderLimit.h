#pragma once

#include <QtGlobal>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

namespace vx {

/** The header that an answer may have, in bytes. */
constexpr qint64 largestHeader = 256LL * 1024;

/**
 * Asks for @p request by @p manager, and ends the reply with an error if the answer's header is
 * longer than largestHeader, or if it is answered without end and without a byte of a body.
 *
 * The network stack doesn't tell what it reads of a header, and by http without a proxy it hears of
 * nothing else until it has read all that comes. So the count is taken from the system, which is
 * Linux; there the connection is closed, too. Elsewhere only headers that end are held to the
 * limit. Every request of @p manager is to be sent in this way.
 *
 * @return the reply, as QNetworkAccessManager::get gives it.
 */
QNetworkReply* getWithHeaderLimit(QNetworkAccessManager& manager, const QNetworkRequest& request);

/** Whether the limit is what has ended @p reply. */
bool hasTooLongHeader(const QNetworkReply& reply);

} // namespace vx
