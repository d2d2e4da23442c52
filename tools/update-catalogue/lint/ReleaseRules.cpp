#include <QHash>

#include <algorithm>
#include <string>
#include <vector>

#include "download/DownloadManager.h"
#include "package/ReleaseNumber.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** Texts that can't be read sort below all that can, and among themselves by character. */
bool isReadable(const QString& release)
{
    const VersionNumber greatestUnreadable(
        std::string(static_cast<size_t>(release.size()) + 1, '\xff'));
    return releaseNumber(release) > greatestUnreadable;
}

bool areOfferedTogether(const CataloguePackage& a, const CataloguePackage& b)
{
    return a.info.name == b.info.name || a.info.platforms.intersects(b.info.platforms);
}

struct Release
{
    VersionNumber number;
    const CataloguePackage* package;
};

/** Every readable release, equal ones together and in document order. */
std::vector<Release> sortedReleases(const CatalogueTree& tree)
{
    std::vector<Release> releases;
    for (const CataloguePackage& package : tree.packages()) {
        if (isReadable(package.info.release)) {
            releases.push_back({releaseNumber(package.info.release), &package});
        }
    }
    std::stable_sort(releases.begin(), releases.end(),
                     [](const Release& a, const Release& b) { return a.number < b.number; });
    return releases;
}

/** Reports each spelling in [first, end) that an earlier one of the same value pushes out. */
void reportSpellings(const std::vector<Release>& releases, size_t first, size_t end,
                     FindingSink& sink)
{
    for (size_t i = first + 1; i < end; ++i) {
        const CataloguePackage& package = *releases[i].package;
        for (size_t j = first; j < i; ++j) {
            const CataloguePackage& other = *releases[j].package;
            if (other.info.release != package.info.release && areOfferedTogether(other, package)) {
                sink.addAt(package, DownloadManager::RELEASE_VERSION,
                           QString("The release \"%1\" equals \"%2\" of line %3 and is spelt "
                                   "differently: only the package that stands first is offered.")
                               .arg(package.info.release, other.info.release)
                               .arg(other.package->position.line));
                break;
            }
        }
    }
}

/** Packages by what makes two of them equal. */
QHash<QString, QList<const CataloguePackage*>> byIdentity(const CatalogueTree& tree)
{
    QHash<QString, QList<const CataloguePackage*>> groups;
    for (const CataloguePackage& package : tree.packages()) {
        groups[package.info.stringID()].append(&package);
    }
    return groups;
}

} // namespace

void unknownStatus(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString status = package.info.status;
        if (status != "STABLE" && status != "BETA") {
            sink.addAt(package, DownloadManager::RELEASE_STATUS,
                       QString("The status \"%1\" is neither \"STABLE\" nor \"BETA\": only users "
                               "who want beta versions are offered this package, and it is not "
                               "marked as one.")
                           .arg(status));
        }
    }
}

void unreadableDate(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString text = package.find(DownloadManager::RELEASE_DATE).value.text;
        if (!text.isEmpty() && !package.info.date.isValid()) {
            sink.addAt(package, DownloadManager::RELEASE_DATE,
                       QString("The date \"%1\" is neither \"yyyy-MM-dd hh:mm:ss\" nor "
                               "\"yyyy-MM-dd\": users see no date.")
                           .arg(text));
        }
    }
}

void unreadableRelease(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (!isReadable(package.info.release)) {
            sink.addAt(package, DownloadManager::RELEASE_VERSION,
                       QString("The release \"%1\" is no version number: it is older than every "
                               "installed version, and nobody is offered this package.")
                           .arg(package.info.release));
        }
    }
}

void releaseSpelling(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const std::vector<Release> releases = sortedReleases(tree);
    for (size_t first = 0, end = 0; first < releases.size(); first = end) {
        while (end < releases.size() && releases[end].number == releases[first].number) {
            ++end;
        }
        reportSpellings(releases, first, end, sink);
    }
}

void equalIdentity(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const auto& group : byIdentity(tree)) {
        for (const CataloguePackage* package : group.mid(1)) {
            if (package->info.url != group.first()->info.url ||
                package->info.release != group.first()->info.release) {
                sink.add(*package, package->package->position,
                         QString("Date and size are those of \"%1\" in line %2, so that both count "
                                 "as one package: as firmware, only the first is offered.")
                             .arg(group.first()->label())
                             .arg(group.first()->package->position.line));
            }
        }
    }
}

} // namespace vx::rules
