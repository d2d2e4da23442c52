#include "trust/internal/SealVerification.h"

#include <sodium.h>

#include <algorithm>

namespace vx {

namespace {

static_assert(sizeof(PublicKey::key) == crypto_sign_PUBLICKEYBYTES);
static_assert(sizeof(Seal::signature) == crypto_sign_BYTES);

using Signature = std::array<std::uint8_t, crypto_sign_BYTES>;

const std::uint8_t* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const std::uint8_t*>(bytes.constData());
}

bool isSignatureOf(const Signature& signature, const std::uint8_t* message, std::size_t size,
                   const PublicKey& key)
{
    return crypto_sign_verify_detached(signature.data(), message, size, key.key.data()) == 0;
}

bool isContentSigned(const QByteArray& document, const Seal& seal, const PublicKey& key)
{
    const auto size = static_cast<std::size_t>(seal.signedSize);
    if (!seal.isPrehashed) {
        return isSignatureOf(seal.signature, bytesOf(document), size, key);
    }
    std::array<std::uint8_t, crypto_generichash_BYTES_MAX> hash{};
    crypto_generichash(hash.data(), hash.size(), bytesOf(document), size, nullptr, 0);
    return isSignatureOf(seal.signature, hash.data(), hash.size(), key);
}

bool isCommentSigned(const Seal& seal, const PublicKey& key)
{
    QByteArray message(reinterpret_cast<const char*>(seal.signature.data()),
                       static_cast<int>(seal.signature.size()));
    message += seal.trustedComment;
    return isSignatureOf(seal.globalSignature, bytesOf(message),
                         static_cast<std::size_t>(message.size()), key);
}

} // namespace

SealOutcome verifySeal(const QByteArray& document, const Seal& seal, const PublicKeys& keys)
{
    // Chooses the fastest implementation that the processor has; harmless if called again.
    if (sodium_init() < 0) {
        return SealOutcome::Changed;
    }
    // Numbers are no proof of anything, so that two keys may have the same one.
    const auto named = [&seal](const PublicKey& key) { return key.id == seal.keyId; };
    if (std::none_of(keys.begin(), keys.end(), named)) {
        return SealOutcome::UnknownKey;
    }
    const bool isSigned = std::any_of(keys.begin(), keys.end(), [&](const PublicKey& key) {
        // The comment first: it takes no time.
        return named(key) && isCommentSigned(seal, key) && isContentSigned(document, seal, key);
    });
    if (!isSigned) {
        return SealOutcome::Changed;
    }
    return seal.hasBytesBehind ? SealOutcome::BytesBehind : SealOutcome::Accepted;
}

SealOutcome judgeTimes(const Seal& seal, const SealCircumstances& circumstances)
{
    if (circumstances.newestAccepted && seal.timestamp < *circumstances.newestAccepted) {
        return SealOutcome::Older;
    }
    if (seal.expires && *seal.expires < circumstances.now - clockGrace) {
        return SealOutcome::Expired;
    }
    if (seal.timestamp > circumstances.now + clockGrace) {
        return SealOutcome::FromFuture;
    }
    return SealOutcome::Accepted;
}

SealReading judgeSealed(const QByteArray& document, const PublicKeys& keys,
                        const SealCircumstances& circumstances)
{
    SealReading reading = readSeal(document);
    if (reading.outcome == SealOutcome::Accepted) {
        reading.outcome = verifySeal(document, reading.seal, keys);
    }
    if (reading.outcome == SealOutcome::Accepted) {
        reading.outcome = judgeTimes(reading.seal, circumstances);
    }
    return reading;
}

} // namespace vx
