#include "download/internal/catalogue/CatalogueFields.h"

#include <QHash>

#include "download/internal/catalogue/CatalogueTags.h"

namespace vx {

namespace {

// In the order of CatalogueField.
const QString* const tags[] = {
    &CatalogueTag::TYPE,
    &CatalogueTag::NAME,
    &CatalogueTag::NAME_PUBLIC,
    &CatalogueTag::RELEASE_VERSION,
    &CatalogueTag::RELEASE_VERSION_PUBLIC,
    &CatalogueTag::RELEASE_STATUS,
    &CatalogueTag::RELEASE_DATE,
    &CatalogueTag::BASE_URL,
    &CatalogueTag::URL,
    &CatalogueTag::FILE_SIZE,
    &CatalogueTag::COMMENT,
    &CatalogueTag::DIGEST,
    &CatalogueTag::LANGUAGE,
    &CatalogueTag::PLATFORM,
    &CatalogueTag::RELEASE_NOTES,
    &CatalogueTag::README,
};

QHash<QString, int> fieldsByTag()
{
    QHash<QString, int> fields;
    for (int field = TypeField; field <= ReadmeField; ++field) {
        fields.insert(*tags[field], field);
    }
    return fields;
}

} // namespace

const QString& tagOf(CatalogueField field)
{
    return *tags[field];
}

int fieldOf(const QString& tagname)
{
    static const QHash<QString, int> fields = fieldsByTag();
    return fields.value(tagname, -1);
}

} // namespace vx
