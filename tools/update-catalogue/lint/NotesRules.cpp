#include "download/DownloadManager.h"
#include "tools/update-catalogue/CatalogueVocabulary.h"
#include "tools/update-catalogue/lint/Languages.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** The address that the entry has for itself; without one it takes that of the package around. */
QString ownAddress(const FieldValue& entry)
{
    if (entry.isAttribute) {
        return entry.text;
    }
    const QDomElement url = entry.element.firstChildElement(DownloadManager::URL);
    return url.isNull() ? entry.element.attribute(DownloadManager::URL) : url.text();
}

/** Calls @p visit for every entry of release notes or readmes, with the name of its field. */
template <typename Visit>
void forEachEntry(const CatalogueTree& tree, Visit visit)
{
    for (const auto& level : tree.levels()) {
        for (const QString& field : urlFields()) {
            for (const FieldValue& entry : level->fields.value(field)) {
                visit(field, entry);
            }
        }
    }
}

using UrlsByLanguage = QMap<QString, QList<QUrl>>;

/** The entries of @p map, the one that a lookup gives first. */
UrlsByLanguage byLanguage(const UrlMap& map)
{
    UrlsByLanguage urls;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        urls[entry.key()].append(entry.value());
    }
    return urls;
}

/** Calls @p visit for each language of a package's release notes and readmes. */
template <typename Visit>
void forEachLanguage(const CatalogueTree& tree, Visit visit)
{
    const auto visitAll = [&visit](const CataloguePackage& package, const QString& field,
                                   const UrlsByLanguage& urls) {
        for (auto entry = urls.begin(); entry != urls.end(); ++entry) {
            visit(package, field, entry.key(), entry.value());
        }
    };
    for (const CataloguePackage& package : tree.packages()) {
        visitAll(package, DownloadManager::RELEASE_NOTES, byLanguage(package.info.relNotes));
        visitAll(package, DownloadManager::README, byLanguage(package.info.readme));
    }
}

} // namespace

void notesWithoutEnglish(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const UrlMap& notes = package.info.relNotes;
        if (!notes.isEmpty() && notes.value("en").isEmpty()) {
            sink.addAt(package, DownloadManager::RELEASE_NOTES,
                       "There are release notes, and none in \"en\": the button \"Release Notes\" "
                       "stays disabled for everybody.");
        }
    }
}

void notesLanguage(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    forEachLanguage(tree, [&](const CataloguePackage& package, const QString& field,
                              const QString& language, const QList<QUrl>&) {
        if (!isNotesLanguage(language)) {
            sink.addAt(package, field,
                       QString("\"%1\" stands under the language \"%2\", which nobody looks up. An "
                               "entry without a language of its own takes the nearest one whole.")
                           .arg(field, language));
        }
    });
}

void notesRepeated(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    forEachLanguage(tree, [&](const CataloguePackage& package, const QString& field,
                              const QString& language, const QList<QUrl>& urls) {
        if (urls.count(urls.first()) < urls.size()) {
            sink.addAt(package, field,
                       QString("\"%1\" has %2 entries for \"%3\", and users get \"%4\": the "
                               "outermost and last one counts.")
                           .arg(field)
                           .arg(urls.size())
                           .arg(language, urls.first().toString()));
        }
    });
}

void notesWithoutUrl(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    forEachEntry(tree, [&sink](const QString& field, const FieldValue& entry) {
        if (ownAddress(entry).trimmed().isEmpty()) {
            sink.add(entry.position,
                     QString("\"%1\" has no \"url\" of its own: it takes that of the package "
                             "around, or none. The text of the element is not read.")
                         .arg(field));
        }
    });
}

void relativeNotes(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    forEachEntry(tree, [&sink](const QString& field, const FieldValue& entry) {
        const QString address = ownAddress(entry);
        if (!address.trimmed().isEmpty() && QUrl(address).isRelative()) {
            sink.add(entry.position,
                     QString("The address \"%1\" in \"%2\" opens nothing: \"base-url\" is not put "
                             "in front of it. Write it whole, with \"http://\".")
                         .arg(address, field));
        }
    });
}

} // namespace vx::rules
