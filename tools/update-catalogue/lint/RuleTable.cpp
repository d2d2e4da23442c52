#include "tools/update-catalogue/lint/Rules.h"

namespace vx {

namespace {

constexpr Severity error = Severity::Error;
constexpr Severity warning = Severity::Warning;
constexpr Severity note = Severity::Note;

QList<Rule> structureRules()
{
    return {
        {"not-well-formed", error, "The document is no XML, or exceeds what a client reads.",
         nullptr},
        {"no-package", error, "The catalogue holds no package that is read.", rules::noPackage},
        {"unknown-element", warning, "An element that nobody reads.", rules::unknownElement},
        {"unknown-attribute", warning, "An attribute that nobody reads.", rules::unknownAttribute},
        {"unvisited", error, "A package or set in a place that nobody visits.", rules::unvisited},
        {"further-file", warning, "A second file element in a package.", rules::furtherFile},
        {"repeated-field", warning, "A field given twice at one level.", rules::repeatedField},
        {"markup-in-text", warning, "An element inside a text, which loses its tags.",
         rules::markupInText},
        {"stray-text", warning, "Text between elements, which nobody reads.", rules::strayText},
    };
}

QList<Rule> textRules()
{
    return {
        {"blank-around", error, "White space that belongs to a value.", rules::blankAround},
        {"wrong-encoding", warning, "Letters that come from another encoding.",
         rules::wrongEncoding},
        {"escaped-twice", warning, "A text in which entities are left over.", rules::escapedTwice},
        {"swallowed-package", error, "A text that goes on to the end of another one.",
         rules::swallowedPackage},
    };
}

QList<Rule> sizeRules()
{
    return {
        {"no-size", error, "A package without a size.", rules::noSize},
        {"unreadable-size", error, "A size that reads as 0.", rules::unreadableSize},
        {"lost-fraction", error, "A size that loses a fraction of its unit.", rules::lostFraction},
        {"implausible-size", warning, "A size of more than 64 GiB.", rules::implausibleSize},
        {"size-mismatch", error,
         "A size that is not that of the file (with --files or --check-urls).",
         rules::sizeMismatch},
    };
}

QList<Rule> addressRules()
{
    return {
        {"own-address", error,
         "An address at which no client gets the catalogue (a URL with --check-urls).",
         rules::ownAddress},
        {"own-answer", note,
         "A catalogue served slowly or as another type (a URL with --check-urls).",
         rules::ownAnswer},
        {"no-address", error, "A package without an address to download from.", rules::noAddress},
        {"absolute-under-base", error, "A whole address behind a base-url.",
         rules::absoluteUnderBase},
        {"base-without-slash", error, "A base-url that runs into the url.",
         rules::baseWithoutSlash},
        {"doubled-slash", warning, "Two slashes in an address's path.", rules::doubledSlash},
        {"odd-address", error, "An address with a backslash, a fragment or a user.",
         rules::oddAddress},
        {"local-address", warning, "An address on the installation's own machine.",
         rules::localAddress},
        {"ignored-scheme", warning, "An address whose scheme is ignored.", rules::ignoredScheme},
        {"ignored-port", error, "An address whose port is ignored.", rules::ignoredPort},
        {"suspicious-suffix", warning, "An address whose end is no file type.",
         rules::suspiciousSuffix},
        {"capital-suffix", error, "A file type that is known in small letters only.",
         rules::capitalSuffix},
        {"unlisted-type", error, "A file type that the application does not list.",
         rules::unlistedType},
        {"not-installable", note, "A file type that can only be downloaded.",
         rules::notInstallable},
    };
}

QList<Rule> releaseRules()
{
    return {
        {"unknown-status", error, "A status that is neither STABLE nor BETA.",
         rules::unknownStatus},
        {"unreadable-date", warning, "A date in neither of the two forms.", rules::unreadableDate},
        {"unreadable-release", error, "A release that is no version.", rules::unreadableRelease},
        {"preliminary-stable", error, "A stable release that is below its own number.",
         rules::preliminaryStable},
        {"release-spelling", error, "Equal releases that are spelt differently.",
         rules::releaseSpelling},
        {"public-release-differs", warning, "A release shown as another one.",
         rules::publicReleaseDiffers},
    };
}

QList<Rule> twinRules()
{
    return {
        {"equal-identity", error, "Different packages of one date and one size.",
         rules::equalIdentity},
        {"shared-address", error, "One address with different sizes or dates.",
         rules::sharedAddress},
        {"repeated-package", warning, "A package of the application that stands there twice.",
         rules::repeatedPackage},
        {"address-of-other", warning, "A file that is named after another release.",
         rules::addressOfOther},
    };
}

QList<Rule> reachRules()
{
    return {
        {"hidden-by-empty", warning, "An empty value that hides an inherited one.",
         rules::hiddenByEmpty},
        {"inherited-from-far", warning,
         "A value of a set that each package should have for itself.", rules::inheritedFromFar},
        {"words-add-up", warning, "Words of a set that a package cannot take away.",
         rules::wordsAddUp},
        {"no-name", error, "A package of the application without a name.", rules::noName},
        {"name-spelling", error, "A name that is nearly that of other packages.",
         rules::nameSpelling},
        {"no-platform", error, "A package for no platform.", rules::noPlatform},
        {"platform-spelling", error, "A platform that is nearly a known one.",
         rules::platformSpelling},
        {"platform-begins-other", warning, "A platform that another one begins with.",
         rules::platformBeginsOther},
        {"blank-in-platform", error, "A platform whose name holds a blank.",
         rules::blankInPlatform},
        {"language-word", warning, "A language that no system has.", rules::languageWord},
        {"hidden-from-english", warning, "Firmware that English users do not see.",
         rules::hiddenFromEnglish},
    };
}

QList<Rule> notesRules()
{
    return {
        {"notes-without-en", warning, "Release notes that the button does not find.",
         rules::notesWithoutEnglish},
        {"notes-language", warning, "Release notes under a language that nobody looks up.",
         rules::notesLanguage},
        {"notes-repeated", warning, "Release notes that are given twice in one language.",
         rules::notesRepeated},
        {"notes-without-url", error, "Release notes without an address of their own.",
         rules::notesWithoutUrl},
        {"relative-notes", error, "Release notes whose address is not whole.",
         rules::relativeNotes},
    };
}

QList<Rule> installationRules()
{
    return {
        {"platform-not-in-field", warning,
         "A platform that nobody in the field has (with --installations).",
         rules::platformNotInField},
        {"platform-too-wide", warning,
         "A platform that fits cameras of other names (with --installations).",
         rules::platformTooWide},
        {"application-without-package", warning,
         "An application in the field that no package names (with --installations).",
         rules::applicationWithoutPackage},
    };
}

QList<Rule> signatureRules()
{
    return {
        {"no-digest", Severity::Error, "A package without a sha256 (sealed, or with --signed).",
         rules::noDigest},
        {"malformed-digest", Severity::Error,
         "A sha256 that is no digest (sealed, or with --signed).", rules::malformedDigest},
        {"two-digests", Severity::Error,
         "One address with two different sha256 (sealed, or with --signed).", rules::twoDigests},
        {"digest-mismatch", Severity::Error,
         "A sha256 that is not that of the file (sealed, or with --signed; with --files).",
         rules::digestMismatch},
        {"unreadable-seal", Severity::Error, "A seal that no client can read.",
         rules::unreadableSeal},
        {"bytes-behind-seal", Severity::Error, "Something that stands behind the seal.",
         rules::bytesBehindSeal},
        {"seal-expired", Severity::Error, "A seal whose time is over.", rules::sealExpired},
        {"seal-expiring", Severity::Warning, "A seal whose time is over within 14 days.",
         rules::sealExpiring},
    };
}

} // namespace

const QList<Rule>& allRules()
{
    static const QList<Rule> table = structureRules() + textRules() + sizeRules() + addressRules() +
                                     releaseRules() + twinRules() + reachRules() + notesRules() +
                                     installationRules() + signatureRules();
    return table;
}

} // namespace vx
