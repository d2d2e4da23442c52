#include "download/CatalogueFields.h"

#include <QHash>

#include "download/DownloadManager.h"

namespace vx {

namespace {

using Tags = DownloadManager;

// In the order of CatalogueField.
const QString* const tags[] = {
    &Tags::TYPE,
    &Tags::NAME,
    &Tags::NAME_PUBLIC,
    &Tags::RELEASE_VERSION,
    &Tags::RELEASE_VERSION_PUBLIC,
    &Tags::RELEASE_STATUS,
    &Tags::RELEASE_DATE,
    &Tags::BASE_URL,
    &Tags::URL,
    &Tags::FILE_SIZE,
    &Tags::COMMENT,
    &Tags::LANGUAGE,
    &Tags::PLATFORM,
    &Tags::RELEASE_NOTES,
    &Tags::README,
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
