#include "tools/server/SealedScenario.h"

#include <QDateTime>

#include "host/CoreQt/ParseException.h"
#include "tools/signing/PackageFiles.h"
#include "trust/internal/Seal.h"

namespace vx {

namespace {

constexpr qint64 day = qint64{24} * 60 * 60;
constexpr qint64 month = 30 * day;

/** With the facts of the files, and without a seal that no longer fits. */
QByteArray filledIn(const QByteArray& catalogue, const QString& folder)
{
    const SealReading reading = readSeal(catalogue);
    const bool isSealed = reading.outcome == SealOutcome::Accepted;
    try {
        return writeFactsOfFolder(
            isSealed ? catalogue.left(static_cast<int>(reading.seal.signedSize)) : catalogue,
            folder);
    } catch (const ParseException&) {
        // Whoever serves something else than a catalogue wants to see what a client makes of it.
        return catalogue;
    }
}

} // namespace

SealedScenario::SealedScenario(SealPlay play, const SigningKey& key, const QString& folder)
    : m_play(play)
    , m_key(key)
    , m_folder(folder)
{}

QByteArray SealedScenario::sealed(const QByteArray& document)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    switch (m_play) {
    case SealPlay::Unsigned:
        return document;
    case SealPlay::Forged:
        return m_key.sealed(document, now, now + month)
            .replace("<?minisign\n", "<!-- by somebody else -->\n<?minisign\n");
    case SealPlay::Replayed: {
        const qint64 signedAt = m_catalogues == 0 ? now : now - day;
        return m_key.sealed(document, signedAt, now + month);
    }
    case SealPlay::Expired:
        return m_key.sealed(document, now - 2 * month, now - month);
    case SealPlay::Signed:
    case SealPlay::PackageExchanged:
        break;
    }
    return m_key.sealed(document, now, now + month);
}

ServedReply SealedScenario::catalogue(ServedReply reply)
{
    if (reply.status == 200) {
        reply.body = sealed(filledIn(reply.body, m_folder));
        ++m_catalogues;
    }
    return reply;
}

ServedReply SealedScenario::package(ServedReply reply) const
{
    if (m_play == SealPlay::PackageExchanged && reply.status == 200 && !reply.body.isEmpty()) {
        const auto last = reply.body.size() - 1;
        reply.body[last] = static_cast<char>(~reply.body.at(last));
    }
    return reply;
}

} // namespace vx
