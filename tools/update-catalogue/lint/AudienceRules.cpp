#include <QMultiHash>

#include <algorithm>

#include "download/DownloadManager.h"
#include "host/CoreQt/StringUtils.h"
#include "tools/update-catalogue/lint/Languages.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

bool isSeenByEnglish(const CataloguePackage& package)
{
    return package.info.languages.contains("de") && package.info.languages.contains("en");
}

/** The packages that English users see, by release. */
QMultiHash<QString, const CataloguePackage*> rowsForEnglish(const CatalogueTree& tree)
{
    QMultiHash<QString, const CataloguePackage*> rows;
    for (const CataloguePackage& package : tree.packages()) {
        if (isSeenByEnglish(package)) {
            rows.insert(package.info.release, &package);
        }
    }
    return rows;
}

/** Whether whoever has @p platform and is offered @p package is offered one of @p rows as well. */
bool hasRow(const QList<const CataloguePackage*>& rows, const CataloguePackage& package,
            const QString& platform)
{
    return std::any_of(rows.begin(), rows.end(), [&](const CataloguePackage* row) {
        const QString& status = row->info.status;
        return (status == package.info.status || status == "STABLE") &&
               StringUtils::intersectsOnBeginning({platform}, row->info.platforms);
    });
}

QStringList sortedWords(const QStringSet& words)
{
    QStringList list = words.values();
    list.sort();
    return list;
}

} // namespace

void hiddenFromEnglish(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    const auto rows = rowsForEnglish(tree);
    for (const CataloguePackage& package : tree.packages()) {
        const QStringSet& platforms = package.info.platforms;
        const QList<const CataloguePackage*> ofRelease = rows.values(package.info.release);
        const bool isSeen = std::all_of(platforms.begin(), platforms.end(), [&](const QString& p) {
            return hasRow(ofRelease, package, p);
        });
        if (!isSeen && !isForApplication(package, options)) {
            sink.addAt(package, DownloadManager::LANGUAGE,
                       "English users see firmware only if its languages hold both \"de\" and "
                       "\"en\", and no package of this release for this camera does: as soon as "
                       "another row suits them, they see none of it until they tick \"Show all "
                       "languages\".");
        }
    }
}

void languageWord(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        for (const QString& word : sortedWords(package.info.languages)) {
            if (!isSystemLanguage(word) && !isForApplication(package, options)) {
                sink.addAt(package, DownloadManager::LANGUAGE,
                           QString("No system calls its language \"%1\", and users of that "
                                   "language do not see the row as theirs. Write two small "
                                   "letters, as in \"de\".")
                               .arg(word));
            }
        }
    }
}

} // namespace vx::rules
