#pragma once

#include <QByteArray>

#include <optional>

#include "trust/internal/PublicKey.h"
#include "trust/internal/Seal.h"

namespace vx {

/** How long after its end a catalogue still counts, and how far ahead a clock may be: seconds. */
constexpr qint64 clockGrace = qint64{24} * 60 * 60;

/** What is known beside the document and the keys. */
struct SealCircumstances
{
    /** The present time in seconds since 1970. */
    qint64 now = 0;
    /** When the newest catalogue that was accepted from the same address was signed, or nothing. */
    std::optional<qint64> newestAccepted;
};

/**
 * Verifies the signatures of a seal that readSeal() took from @p document: whether the key is among
 * @p keys, whether content and trusted comment are what was signed, and whether nothing follows.
 *
 * @return Accepted, UnknownKey, Changed or BytesBehind.
 */
SealOutcome verifySeal(const QByteArray& document, const Seal& seal, const PublicKeys& keys);

/** Judges the times of a verified seal. @return Accepted, Older, Expired or FromFuture. */
SealOutcome judgeTimes(const Seal& seal, const SealCircumstances& circumstances);

/** All of it, in the order of SealOutcome. The seal is Seal() unless it can be read. */
SealReading judgeSealed(const QByteArray& document, const PublicKeys& keys,
                        const SealCircumstances& circumstances);

} // namespace vx
