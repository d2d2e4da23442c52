#include "tools/update-catalogue/signing/SealText.h"

#include <QDateTime>

namespace vx {

QString timeText(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString("yyyy-MM-dd hh:mm:ss 'UTC'");
}

TextPosition sealPosition(const QByteArray& document)
{
    const SealReading reading = readSeal(document);
    const QByteArray before = reading.outcome == SealOutcome::NoSeal
                                  ? document
                                  : document.left(static_cast<int>(reading.seal.signedSize));
    return {static_cast<int>(before.count('\n')) + 1, 1};
}

QString sealText(const Seal& seal)
{
    const QString text = QString("signed with the key %1 at %2")
                             .arg(keyIdText(seal.keyId), timeText(seal.timestamp));
    return seal.expires ? text + ", expires at " + timeText(*seal.expires) : text;
}

QJsonObject sealToJson(const Seal& seal)
{
    return {{"key", keyIdText(seal.keyId)},
            {"signedAt", seal.timestamp},
            {"expires", seal.expires ? QJsonValue(*seal.expires) : QJsonValue()},
            {"prehashed", seal.isPrehashed},
            {"trustedComment", QString::fromUtf8(seal.trustedComment)}};
}

QString refusalSentence(const SealReading& reading)
{
    const Seal& seal = reading.seal;
    switch (reading.outcome) {
    case SealOutcome::Accepted:
        break;
    case SealOutcome::NoSeal:
        return "It has no seal: sign it with minisign, then seal it.";
    case SealOutcome::UnreadableSeal:
        return "Its seal is not the four lines that minisign writes, with one timestamp: between "
               "the lines <?minisign and ?>.";
    case SealOutcome::UnknownKey:
        return QString("It is signed with the key %1, which is not given.")
            .arg(keyIdText(seal.keyId));
    case SealOutcome::Changed:
        return "Its content or its trusted comment is not what was signed.";
    case SealOutcome::BytesBehind:
        return "Something stands behind its seal, which nobody signed.";
    case SealOutcome::Older:
        return "It is older than one that was accepted before.";
    case SealOutcome::Expired:
        return QString("Its time was over at %1: sign it anew.")
            .arg(timeText(seal.expires.value_or(0)));
    case SealOutcome::FromFuture:
        return QString("It was signed at %1, which is still to come: mend the clock of the machine "
                       "that signs.")
            .arg(timeText(seal.timestamp));
    }
    return QString();
}

QString refusalName(SealOutcome outcome)
{
    switch (outcome) {
    case SealOutcome::Accepted:
        break;
    case SealOutcome::NoSeal:
        return "no-seal";
    case SealOutcome::UnreadableSeal:
        return "unreadable-seal";
    case SealOutcome::UnknownKey:
        return "unknown-key";
    case SealOutcome::Changed:
        return "changed";
    case SealOutcome::BytesBehind:
        return "bytes-behind-seal";
    case SealOutcome::Older:
        return "older";
    case SealOutcome::Expired:
        return "seal-expired";
    case SealOutcome::FromFuture:
        return "from-future";
    }
    return QString();
}

} // namespace vx
