#include "tools/update-catalogue/lint/Rules.h"

namespace vx {

namespace {

QList<Rule> structureRules()
{
    return {
        {"not-well-formed", Severity::Error,
         "The document is no XML, or exceeds what a client reads.", nullptr},
        {"no-package", Severity::Error, "The catalogue holds no package that is read.",
         rules::noPackage},
        {"unknown-element", Severity::Warning, "An element that nobody reads.",
         rules::unknownElement},
        {"unknown-attribute", Severity::Warning, "An attribute that nobody reads.",
         rules::unknownAttribute},
        {"unvisited", Severity::Error, "A package or set in a place that nobody visits.",
         rules::unvisited},
        {"further-file", Severity::Warning, "A second file element in a package.",
         rules::furtherFile},
        {"repeated-field", Severity::Warning, "A field given twice at one level.",
         rules::repeatedField},
    };
}

QList<Rule> fileRules()
{
    return {
        {"no-size", Severity::Error, "A package without a size.", rules::noSize},
        {"unreadable-size", Severity::Error, "A size that reads as 0.", rules::unreadableSize},
        {"lost-fraction", Severity::Error, "A size that loses a fraction of its unit.",
         rules::lostFraction},
        {"size-mismatch", Severity::Error,
         "A size that is not that of the file (with --files or --check-urls).",
         rules::sizeMismatch},
        {"no-address", Severity::Error, "A package without an address to download from.",
         rules::noAddress},
        {"ignored-scheme", Severity::Warning, "An address whose scheme is ignored.",
         rules::ignoredScheme},
        {"ignored-port", Severity::Error, "An address whose port is ignored.", rules::ignoredPort},
        {"suspicious-suffix", Severity::Warning, "An address whose end is no file type.",
         rules::suspiciousSuffix},
        {"capital-suffix", Severity::Error, "A file type that is known in small letters only.",
         rules::capitalSuffix},
        {"unlisted-type", Severity::Error, "A file type that the application does not list.",
         rules::unlistedType},
        {"not-installable", Severity::Note, "A file type that can only be downloaded.",
         rules::notInstallable},
    };
}

QList<Rule> releaseRules()
{
    return {
        {"unknown-status", Severity::Error, "A status that is neither STABLE nor BETA.",
         rules::unknownStatus},
        {"unreadable-date", Severity::Warning, "A date in neither of the two forms.",
         rules::unreadableDate},
        {"unreadable-release", Severity::Error, "A release that is no version.",
         rules::unreadableRelease},
        {"release-spelling", Severity::Error, "Equal releases that are spelt differently.",
         rules::releaseSpelling},
        {"equal-identity", Severity::Error, "Different packages of one date and one size.",
         rules::equalIdentity},
    };
}

QList<Rule> reachRules()
{
    return {
        {"hidden-by-empty", Severity::Warning, "An empty value that hides an inherited one.",
         rules::hiddenByEmpty},
        {"inherited-from-far", Severity::Warning,
         "A value of a set that each package should have for itself.", rules::inheritedFromFar},
        {"words-add-up", Severity::Warning, "Words of a set that a package cannot take away.",
         rules::wordsAddUp},
        {"no-platform", Severity::Error, "A package for no platform.", rules::noPlatform},
        {"hidden-from-english", Severity::Warning, "Firmware that English users do not see.",
         rules::hiddenFromEnglish},
        {"notes-without-en", Severity::Warning, "Release notes that the button does not find.",
         rules::notesWithoutEnglish},
        {"notes-language", Severity::Warning, "Release notes whose language is a list of words.",
         rules::notesLanguage},
    };
}

} // namespace

const QList<Rule>& allRules()
{
    static const QList<Rule> table = structureRules() + fileRules() + releaseRules() + reachRules();
    return table;
}

} // namespace vx
