#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

void noPlatform(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (package.info.platforms.isEmpty()) {
            sink.addAt(package, DownloadManager::PLATFORM,
                       "Without a \"platform\" this package is offered to nobody. Name the "
                       "platforms or cameras that it is for.");
        }
    }
}

void hiddenFromEnglish(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QStringSet& languages = package.info.languages;
        const bool matches = languages.contains("de") && languages.contains("en");
        if (matches || package.info.platforms.isEmpty() || isForApplication(package, options)) {
            continue;
        }
        sink.addAt(package, DownloadManager::LANGUAGE,
                   "English users see firmware only if its languages hold both \"de\" and \"en\": "
                   "as soon as another row does, this one is hidden until they tick \"Show all "
                   "languages\".");
    }
}

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
    for (const CataloguePackage& package : tree.packages()) {
        const QList<QString> keys = package.info.relNotes.keys();
        for (const QString& language : QStringSet(keys.begin(), keys.end())) {
            if (language.simplified().contains(' ') || language.contains(',')) {
                sink.addAt(package, DownloadManager::RELEASE_NOTES,
                           QString("The release notes stand under the language \"%1\", which "
                                   "nobody looks up: an entry without a language of its own takes "
                                   "the nearest one whole.")
                               .arg(language));
            }
        }
    }
}

} // namespace vx::rules
