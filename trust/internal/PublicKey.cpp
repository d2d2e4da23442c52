#include "trust/internal/PublicKey.h"

#include <algorithm>
#include <string_view>

#include "trust/internal/Base64.h"

namespace vx {

namespace {

// As minisign lays a key down: "Ed", the number, the key.
constexpr std::size_t algorithmSize = 2;
constexpr std::size_t encodedKeySize = algorithmSize + sizeof(KeyId) + sizeof(PublicKey::key);

constexpr char commentStart[] = "untrusted comment:";

} // namespace

std::optional<PublicKey> readPublicKey(const QByteArray& line)
{
    const QByteArray text = line.trimmed();
    std::array<std::uint8_t, encodedKeySize> bytes{};
    const std::string_view view(text.constData(), static_cast<std::size_t>(text.size()));
    if (!decodeBase64(view, bytes.data(), bytes.size()) || bytes[0] != 'E' || bytes[1] != 'd') {
        return std::nullopt;
    }
    PublicKey key{};
    const auto* const idStart = bytes.data() + algorithmSize;
    std::copy_n(idStart, key.id.size(), key.id.begin());
    std::copy_n(idStart + key.id.size(), key.key.size(), key.key.begin());
    return key;
}

std::optional<PublicKey> readPublicKeyFile(const QByteArray& content)
{
    const QByteArray text = content.trimmed();
    if (!text.startsWith(commentStart)) {
        return readPublicKey(text);
    }
    const auto lineEnd = text.indexOf('\n');
    return lineEnd < 0 ? std::nullopt : readPublicKey(text.mid(lineEnd));
}

QString keyIdText(const KeyId& id)
{
    QByteArray bytes(reinterpret_cast<const char*>(id.data()), static_cast<int>(id.size()));
    // Minisign reads the bytes as one number, the lowest first.
    std::reverse(bytes.begin(), bytes.end());
    return QString::fromLatin1(bytes.toHex()).toUpper();
}

} // namespace vx
