#include "trust/internal/TrustTexts.h"

#include <QCoreApplication>

namespace vx {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("UpdateTrust", text);
}

struct Refusal
{
    const char* text;
    const char* logText;
};

Refusal refusal(SealOutcome outcome)
{
    switch (outcome) {
    case SealOutcome::Accepted:
        break;
    case SealOutcome::NoSeal:
        return {QT_TRANSLATE_NOOP("UpdateTrust",
                                  "The list of updates is not signed, so it was not used."),
                "no seal"};
    case SealOutcome::UnreadableSeal:
        return {QT_TRANSLATE_NOOP("UpdateTrust", "The signature of the list of updates cannot be "
                                                 "read, so the list was not used."),
                "unreadable seal"};
    case SealOutcome::UnknownKey:
        return {QT_TRANSLATE_NOOP("UpdateTrust", "The list of updates is signed with an unknown "
                                                 "key, so it was not used."),
                "unknown key"};
    case SealOutcome::Changed:
        return {QT_TRANSLATE_NOOP("UpdateTrust", "The list of updates was changed after it was "
                                                 "signed, so it was not used."),
                "changed since it was signed"};
    case SealOutcome::BytesBehind:
        return {QT_TRANSLATE_NOOP("UpdateTrust", "Something was added behind the signature of the "
                                                 "list of updates, so the list was not used."),
                "bytes behind the seal"};
    case SealOutcome::Older:
        return {QT_TRANSLATE_NOOP("UpdateTrust", "The list of updates is older than one that was "
                                                 "received before, so it was not used."),
                "older than one accepted before"};
    case SealOutcome::Expired:
        return {QT_TRANSLATE_NOOP("UpdateTrust",
                                  "The list of updates has expired, so it was not used. Please "
                                  "check the date of this computer, or try again later."),
                "expired"};
    case SealOutcome::FromFuture:
        return {QT_TRANSLATE_NOOP("UpdateTrust",
                                  "The list of updates is dated in the future, so it was not used. "
                                  "Please check the date of this computer."),
                "from the future"};
    }
    return {"", ""};
}

} // namespace

QString refusalText(SealOutcome outcome)
{
    const char* const text = refusal(outcome).text;
    return *text == '\0' ? QString() : translated(text);
}

QString refusalLogText(SealOutcome outcome)
{
    return QString::fromLatin1(refusal(outcome).logText);
}

QString verifyingText()
{
    return translated(QT_TRANSLATE_NOOP("UpdateTrust", "Verifying the downloaded package..."));
}

QString packageRefusedTitle()
{
    return translated(QT_TRANSLATE_NOOP("UpdateTrust", "Package not installed"));
}

QString packageDiffersText()
{
    return translated(QT_TRANSLATE_NOOP(
        "UpdateTrust", "The downloaded package is not the one that its publisher announced. It "
                       "was removed, and nothing was installed."));
}

QString packageWithoutDigestText()
{
    return translated(QT_TRANSLATE_NOOP(
        "UpdateTrust", "The downloaded package cannot be verified, because its publisher did not "
                       "announce its contents. It was removed, and nothing was installed."));
}

} // namespace vx
