#include "trust/UpdateTrust.h"

#include "trust/internal/TrustedKeys.h"

namespace vx {

namespace {

PublicKeys& keysInForce()
{
    static PublicKeys keys;
    return keys;
}

} // namespace

const PublicKeys& trustedKeys()
{
    return keysInForce();
}

bool UpdateTrust::requireSignatures(const QStringList& publicKeys)
{
    PublicKeys keys;
    for (const QString& text : publicKeys) {
        const std::optional<PublicKey> key = readPublicKey(text.toLatin1());
        if (!key) {
            return false;
        }
        keys.append(*key);
    }
    if (keys.isEmpty()) {
        return false;
    }
    keysInForce() = keys;
    return true;
}

bool UpdateTrust::isRequired()
{
    return !keysInForce().isEmpty();
}

void UpdateTrust::acceptUnsigned()
{
    keysInForce().clear();
}

} // namespace vx
