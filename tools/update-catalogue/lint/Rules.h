#pragma once

#include "tools/update-catalogue/lint/Rule.h"

/** The checks behind the rules; RuleTable.cpp gives each its name. */
namespace vx::rules {

using Check = void(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink);

// StructureRules.cpp
Check noPackage, unknownElement, unknownAttribute, unvisited, furtherFile, repeatedField;
// SizeRules.cpp
Check noSize, unreadableSize, lostFraction;
// SizeComparison.cpp
Check sizeMismatch;
// AddressRules.cpp
Check noAddress, ignoredScheme, ignoredPort, suspiciousSuffix, capitalSuffix, unlistedType,
    notInstallable;
// ReleaseRules.cpp
Check unknownStatus, unreadableDate, unreadableRelease, releaseSpelling, equalIdentity;
// InheritanceRules.cpp
Check hiddenByEmpty, inheritedFromFar, wordsAddUp;
// AudienceRules.cpp
Check noPlatform, hiddenFromEnglish, notesWithoutEnglish, notesLanguage;

} // namespace vx::rules
