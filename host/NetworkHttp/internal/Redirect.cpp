#include "host/NetworkHttp/internal/Redirect.h"

namespace vx {

bool isRedirect(int status)
{
    // 300 leaves the choice to a person, 304 and 305 point nowhere.
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

QUrl redirectTarget(const QUrl& base, const QByteArray& location)
{
    if (location.isEmpty()) {
        return QUrl();
    }
    QUrl target = base.resolved(QUrl::fromEncoded(location));
    const bool isHttp =
        target.scheme() == QLatin1String("http") || target.scheme() == QLatin1String("https");
    if (!target.isValid() || !isHttp || target.host().isEmpty()) {
        return QUrl();
    }
    target.setUserInfo(QString());
    return target;
}

} // namespace vx
