#include <QRegularExpression>

#include <algorithm>
#include <vector>

#include "base/ReleaseNumber.h"
#include "download/DownloadManager.h"
#include "tools/update-catalogue/ReadableVersion.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

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
        if (isReadableVersion(package.info.release)) {
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

/** The numbers that @p release begins with, as people read them: of "5.3-rc1" that is "5.3". */
QString leadingNumbers(const QString& release)
{
    static const QRegularExpression numbers("^\\s*([0-9]+(?:\\.[0-9]+)*)");
    return numbers.match(release).captured(1);
}

/** Whether the two are dotted numbers of one series that say different things. */
bool contradict(const QString& release, const QString& publicRelease)
{
    static const QRegularExpression dotted("^[0-9]+(\\.[0-9]+)+$");
    if (!dotted.match(release).hasMatch() || !dotted.match(publicRelease).hasMatch()) {
        return false;
    }
    const QStringList a = release.split('.');
    const QStringList b = publicRelease.split('.');
    const int shared = static_cast<int>(std::min(a.size(), b.size()));
    // Marketing may count on its own, as in "2026.1" for 5.3.
    return a.first() == b.first() && a.mid(0, shared) != b.mid(0, shared);
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
        if (!isReadableVersion(package.info.release)) {
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

void preliminaryStable(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString release = package.info.release;
        const QString numbers = leadingNumbers(release);
        if (package.info.status == "STABLE" && isReadableVersion(release) &&
            releaseNumber(release) < releaseNumber(numbers)) {
            sink.addAt(package, DownloadManager::RELEASE_VERSION,
                       QString("The release \"%1\" counts as a preliminary version of %2: it is "
                               "lower, and nobody who has %2 is offered it. Write numbers with a "
                               "dot between them, or the status \"BETA\".")
                           .arg(release, numbers));
        }
    }
}

void publicReleaseDiffers(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (contradict(package.info.release, package.info.publicRelease)) {
            sink.addAt(package, DownloadManager::RELEASE_VERSION_PUBLIC,
                       QString("Users see release %1, and %2 is compared.")
                           .arg(package.info.publicRelease, package.info.release));
        }
    }
}

} // namespace vx::rules
