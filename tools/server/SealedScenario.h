#pragma once

#include "tools/server/UpdateServer.h"
#include "tools/signing/SigningKey.h"

namespace vx {

/** What becomes of a catalogue for clients that require signatures. */
enum class SealPlay {
    Signed,          ///< sealed, with the digests of the packages in it
    Unsigned,        ///< the same without the seal
    Forged,          ///< changed after it was sealed
    Replayed,        ///< from the second request on an older one than before
    Expired,         ///< sealed two months ago for one month
    PackageExchanged ///< sealed, and each package has another last byte than it should
};

/**
 * Plays a publisher with a key of its own, and whoever stands between it and its users.
 *
 * Sizes and digests are those of the files at the moment of the request; nothing is written.
 */
class SealedScenario
{
public:
    /** @param folder where the packages lie, by the last parts of their addresses. */
    SealedScenario(SealPlay play, const SigningKey& key, const QString& folder);

    /** What is answered in place of the catalogue that @p reply holds. */
    ServedReply catalogue(ServedReply reply);

    /** What is answered in place of the package that @p reply holds. */
    ServedReply package(ServedReply reply) const;

private:
    QByteArray sealed(const QByteArray& document);

    SealPlay m_play;
    SigningKey m_key;
    QString m_folder;
    int m_catalogues = 0;
};

} // namespace vx
