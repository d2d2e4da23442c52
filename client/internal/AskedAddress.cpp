#include "client/internal/AskedAddress.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QVariant>

namespace vx {

namespace {

constexpr char addressMark[] = "vx_askedAddress";

} // namespace

QUrl askedAddress(const QNetworkReply& reply)
{
    const QVariant asked = reply.property(addressMark);
    return asked.isValid() ? asked.toUrl() : reply.request().url();
}

void passAskedAddressOn(const QNetworkReply& reply, const QNetworkAccessManager& manager)
{
    const auto followers =
        manager.findChildren<QNetworkReply*>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply* follower : followers) {
        follower->setProperty(addressMark, askedAddress(reply));
    }
}

} // namespace vx
