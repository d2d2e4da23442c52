#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "trust/internal/PublicKey.h"

namespace vx {

/**
 * What becomes of a catalogue where signatures are required.
 *
 * The refusals stand in the order in which they are looked for: where several apply, the first is
 * given.
 */
enum class SealOutcome {
    Accepted,
    NoSeal,         ///< there is no seal, or the document is too long to look for one
    UnreadableSeal, ///< it has not the form of a seal
    UnknownKey,     ///< signed with a key that is not among the given ones
    Changed,        ///< content or trusted comment are not what was signed
    BytesBehind,    ///< something follows the seal
    Older,          ///< signed before a catalogue that was accepted earlier
    Expired,        ///< its time is over
    FromFuture      ///< signed at a time that is still to come
};

/**
 * The seal of a catalogue: a minisign signature in a processing instruction behind the root.
 *
 *     ...the signed bytes...</softwareList>
 *     <?minisign
 *     untrusted comment: ...
 *     RUQ...
 *     trusted comment: timestamp:1764000000	expires:1766592000
 *     ...
 *     ?>
 *
 * Nothing in here is worth anything before verifySeal() has accepted it.
 */
struct Seal
{
    /** The signed bytes are so many from the start of the document, to the end of a line. */
    qsizetype signedSize = 0;
    /** Where the four lines begin, and where they end, behind their last end of line. They are the
     *  ".minisig" file, byte for byte. */
    qsizetype signatureBegin = 0;
    qsizetype signatureEnd = 0;

    /** Whether the signature is one of the content's BLAKE2b-512 hash, and not of the content. */
    bool isPrehashed = false;
    KeyId keyId{};
    std::array<std::uint8_t, 64> signature{};
    /** Without "trusted comment: " and without an end of line. */
    QByteArray trustedComment;
    /** The signature of signature and trusted comment together. */
    std::array<std::uint8_t, 64> globalSignature{};

    /** When the catalogue was signed, in seconds since 1970. */
    qint64 timestamp = 0;
    /** When its time is over, in seconds since 1970, or nothing. */
    std::optional<qint64> expires;

    /** Whether anything but white space follows. */
    bool hasBytesBehind = false;
};

/** A document's seal, or why there is none: NoSeal or UnreadableSeal. */
struct SealReading
{
    SealOutcome outcome = SealOutcome::NoSeal;
    Seal seal;
};

/** Looks for the last seal in @p document and takes it apart. Verifies nothing. */
SealReading readSeal(std::string_view document);

/** The same, for a whole document in one array. */
SealReading readSeal(const QByteArray& document);

} // namespace vx
