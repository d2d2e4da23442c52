#pragma once

#include <QNetworkRequest>
#include <QString>

class QUrl;

namespace vx {

/** What is sent to @p url: one request without cookies, cache or compression. */
QNetworkRequest networkRequest(const QUrl& url, const QString& userAgent);

} // namespace vx
