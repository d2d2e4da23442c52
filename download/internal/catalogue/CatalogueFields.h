#pragma once

#include <QString>

namespace vx {

/** The fields that a level of a catalogue can hold. The values up to Language are single values. */
enum CatalogueField {
    TypeField,
    NameField,
    PublicNameField,
    ReleaseField,
    PublicReleaseField,
    StatusField,
    DateField,
    BaseUrlField,
    UrlField,
    FileSizeField,
    CommentField,
    DigestField,   ///< not inherited from sets; PackageInfo has no place for it
    LanguageField, ///< a single value for translated URLs, gathered for the package itself
    PlatformField,
    ReleaseNotesField,
    ReadmeField
};

constexpr int singleFieldCount = LanguageField + 1;
constexpr int firstGatheredField = LanguageField;
constexpr int gatheredFieldCount = ReadmeField - firstGatheredField + 1;

/** The name of @p field in the catalogue. */
const QString& tagOf(CatalogueField field);

/** The field of that name, or -1. */
int fieldOf(const QString& tagname);

} // namespace vx
