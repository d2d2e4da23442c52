#include <QHash>
#include <QRegularExpression>

#include "download/DownloadManager.h"
#include "host/CoreQt/StringUtils.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

using Group = QList<const CataloguePackage*>;

/** The packages by what @p keyOf gives for each; each group in document order. */
template <typename Key>
QHash<QString, Group> grouped(const CatalogueTree& tree, Key keyOf)
{
    QHash<QString, Group> groups;
    for (const CataloguePackage& package : tree.packages()) {
        groups[keyOf(package.info)].append(&package);
    }
    return groups;
}

/** Whether people can't tell the rows of the two apart, and somebody gets both. */
bool areSameRow(const PackageInfo& a, const PackageInfo& b)
{
    return a.packageType == b.packageType && a.languages == b.languages &&
           StringUtils::intersectsOnBeginning(a.platforms, b.platforms);
}

/** The version numbers in a file's name, such as "5.2" of "CameraManager-5.2.mpkg.zip". */
QStringList numbersIn(const QString& fileName)
{
    static const QRegularExpression number("[0-9]+(\\.[0-9]+)+");
    QStringList numbers;
    QRegularExpressionMatchIterator matches = number.globalMatch(fileName);
    while (matches.hasNext()) {
        numbers.append(matches.next().captured());
    }
    return numbers;
}

} // namespace

void equalIdentity(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const Group& group :
         grouped(tree, [](const PackageInfo& info) { return info.stringID(); })) {
        const PackageInfo& first = group.first()->info;
        for (const CataloguePackage* package : group.mid(1)) {
            if (package->info.url != first.url || package->info.release != first.release) {
                sink.add(*package, package->package->position,
                         QString("Date and size are those of \"%1\" in line %2, so that both count "
                                 "as one package: as firmware, only the first is offered.")
                             .arg(group.first()->label())
                             .arg(group.first()->package->position.line));
            }
        }
    }
}

void sharedAddress(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const Group& group :
         grouped(tree, [](const PackageInfo& info) { return info.url.toString(); })) {
        const PackageInfo& first = group.first()->info;
        for (const CataloguePackage* package : group.mid(1)) {
            if (first.url.isEmpty() || package->info.stringID() == first.stringID()) {
                continue;
            }
            sink.addAt(*package, DownloadManager::URL,
                       QString("The address is that of \"%1\" in line %2, and size or date are "
                               "not: at most one of the two fits the file.")
                           .arg(group.first()->label())
                           .arg(group.first()->package->position.line));
        }
    }
}

void repeatedPackage(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const Group& group : grouped(tree, [](const PackageInfo& info) {
             return info.name + '\n' + info.release + '\n' + info.status;
         })) {
        for (int i = 1; i < group.size(); ++i) {
            const CataloguePackage& package = *group.at(i);
            const auto same = std::find_if(group.begin(), group.begin() + i,
                                           [&package](const CataloguePackage* earlier) {
                                               return areSameRow(earlier->info, package.info);
                                           });
            if (same != group.begin() + i && isForApplication(package, options)) {
                sink.add(package, package.package->position,
                         QString("\"%1\" stands in line %2 already: users see two rows that they "
                                 "can't tell apart.")
                             .arg((*same)->label())
                             .arg((*same)->package->position.line));
            }
        }
    }
}

void addressOfOther(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    QHash<QString, QStringSet> releases;
    for (const CataloguePackage& package : tree.packages()) {
        releases[package.info.name].insert(package.info.release);
    }
    for (const CataloguePackage& package : tree.packages()) {
        const QStringList numbers = numbersIn(package.info.fileName());
        for (const QString& number : numbers) {
            if (!numbers.contains(package.info.release) &&
                releases.value(package.info.name).contains(number)) {
                sink.addAt(package, DownloadManager::URL,
                           QString("The file \"%1\" seems to be release %2, and this package is "
                                   "%3.")
                               .arg(package.info.fileName(), number, package.info.release));
            }
        }
    }
}

} // namespace vx::rules
