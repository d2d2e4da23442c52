#pragma once

#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

namespace vx {

/** The address that was asked for in the first place, before any redirect led to @p reply. */
QUrl askedAddress(const QNetworkReply& reply);

/** Notes for the request that @p manager has sent that it follows a redirect, @p reply. */
void passAskedAddressOn(const QNetworkReply& reply, const QNetworkAccessManager& manager);

} // namespace vx
