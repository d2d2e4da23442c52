#pragma once

#include <QString>

class QNetworkProxy;
class QNetworkReply;

namespace vx {

/**
 * Keeps in mind what is wrong with the certificate of the server that @p reply talks to, for
 * failureReason. To be called when the request was just sent: later the network stack only says
 * that there was something.
 */
void rememberTlsErrors(QNetworkReply* reply);

/**
 * Why a request has failed and what to do about it, in one English sentence for the log.
 *
 * Names servers and proxies by host and port only: no address of it holds a user or a password.
 * What comes from outside is cut short and has no control characters.
 *
 * @param reply one that has ended with an error.
 * @param proxy which the request went through; NoProxy if none.
 * @param received bytes of the body so far.
 */
QString failureReason(const QNetworkReply& reply, const QNetworkProxy& proxy, qint64 received);

/**
 * The same of a request that was given up, because @p what ("another byte") did not come within
 * @p seconds.
 */
QString stallReason(const QNetworkReply& reply, const QNetworkProxy& proxy, qint64 received,
                    const QString& what, int seconds);

/** What to do about a server whose interim answer of @p status was taken for the final one. */
QString interimReason(int status);

/** At most the first 100 characters of @p text; all but printable ASCII is a "?". */
QString printable(const QString& text);

} // namespace vx
