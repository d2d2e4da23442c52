#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace vx {

/** The number by which a signature names the key that it was made with. */
using KeyId = std::array<std::uint8_t, 8>;

/** A public key of minisign: an Ed25519 key with its number. */
struct PublicKey
{
    KeyId id;
    std::array<std::uint8_t, 32> key;
};

using PublicKeys = QList<PublicKey>;

/** Reads the base64 line of a ".pub" file, or nothing. White space around it does no harm. */
std::optional<PublicKey> readPublicKey(const QByteArray& line);

/** Reads a whole ".pub" file, comment and base64 line, or the base64 line alone, or nothing. */
std::optional<PublicKey> readPublicKeyFile(const QByteArray& content);

/** The number as minisign prints it, but always in sixteen hexadecimal digits. */
QString keyIdText(const KeyId& id);

} // namespace vx
