#pragma once

#include "tools/update-catalogue/lint/Rule.h"

/** The checks behind the rules; RuleTable.cpp gives each its name. */
namespace vx::rules {

using Check = void(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink);

// StructureRules.cpp
Check noPackage, unknownElement, unknownAttribute, unvisited, furtherFile, repeatedField,
    markupInText, strayText;
// TextRules.cpp
Check blankAround, wrongEncoding, escapedTwice, swallowedPackage;
// SizeRules.cpp
Check noSize, unreadableSize, lostFraction, implausibleSize;
// SizeComparison.cpp
Check sizeMismatch;
// OwnAddressRules.cpp
Check ownAddress, ownAnswer;
// AddressRules.cpp
Check noAddress, ignoredScheme, ignoredPort, suspiciousSuffix, capitalSuffix, unlistedType,
    notInstallable;
// AddressTextRules.cpp
Check absoluteUnderBase, baseWithoutSlash, doubledSlash, oddAddress, localAddress;
// ReleaseRules.cpp
Check unknownStatus, unreadableDate, unreadableRelease, releaseSpelling, preliminaryStable,
    publicReleaseDiffers;
// TwinRules.cpp
Check equalIdentity, sharedAddress, repeatedPackage, addressOfOther;
// InheritanceRules.cpp
Check hiddenByEmpty, inheritedFromFar, wordsAddUp;
// NameRules.cpp
Check noName, nameSpelling;
// PlatformRules.cpp
Check noPlatform, platformSpelling, platformBeginsOther, blankInPlatform;
// AudienceRules.cpp
Check hiddenFromEnglish, languageWord;
// NotesRules.cpp
Check notesWithoutEnglish, notesLanguage, notesRepeated, notesWithoutUrl, relativeNotes;
// InstallationRules.cpp
Check platformNotInField, platformTooWide, applicationWithoutPackage;
// SignatureRules.cpp
Check noDigest, malformedDigest, twoDigests, digestMismatch, unreadableSeal, bytesBehindSeal,
    sealExpired, sealExpiring;

} // namespace vx::rules
