#include "client/internal/CatalogueMemory.h"

#include <QCryptographicHash>
#include <QVariant>

#include "client/internal/Store.h"

namespace vx {

namespace {

/** A hash, because a "/" in a key would open a group, and an address may hold a password. */
QString keyOf(const QUrl& address)
{
    const QByteArray hash =
        QCryptographicHash::hash(address.toEncoded(), QCryptographicHash::Sha256);
    return QStringLiteral("signedCatalogue-") + QString::fromLatin1(hash.toHex());
}

} // namespace

std::optional<qint64> newestAccepted(const QUrl& address)
{
    bool isNumber = false;
    const qint64 timestamp = openStore()->value(keyOf(address)).toString().toLongLong(&isNumber);
    return isNumber ? std::optional<qint64>(timestamp) : std::nullopt;
}

void rememberAccepted(const QUrl& address, qint64 timestamp)
{
    openStoreToWrite()->setValue(keyOf(address), QString::number(timestamp));
}

} // namespace vx
