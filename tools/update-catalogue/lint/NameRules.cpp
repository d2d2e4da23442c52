#include <QMap>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/Spelling.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** Names of the application's packages, with how many have each. */
QMap<QString, int> applicationNames(const CatalogueTree& tree, const LintOptions& options)
{
    QMap<QString, int> names;
    for (const CataloguePackage& package : tree.packages()) {
        if (isForApplication(package, options)) {
            ++names[package.info.name];
        }
    }
    return names;
}

/** A name that more packages have, or as many and an earlier one, and that looks like @p name. */
QString commonerName(const QString& name, const QMap<QString, int>& names)
{
    for (auto other = names.begin(); other != names.end(); ++other) {
        const bool isCommoner =
            *other > names.value(name) || (*other == names.value(name) && other.key() < name);
        if (isCommoner && (differInStyle(name, other.key()) || differByASlip(name, other.key()))) {
            return other.key();
        }
    }
    return QString();
}

} // namespace

void noName(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (package.info.name.isEmpty() && isForApplication(package, options)) {
            sink.addAt(package, DownloadManager::NAME,
                       "A package of the application without a \"name\" is offered to no "
                       "application that has one. \"public-name\" is not compared.");
        }
    }
}

void nameSpelling(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    const QMap<QString, int> names = applicationNames(tree, options);
    for (const CataloguePackage& package : tree.packages()) {
        if (!isForApplication(package, options)) {
            continue;
        }
        const QString other = commonerName(package.info.name, names);
        if (!other.isEmpty()) {
            sink.addAt(package, DownloadManager::NAME,
                       QString("The name \"%1\" looks like \"%2\" and is another one: names are "
                               "compared letter by letter.")
                           .arg(package.info.name, other));
        }
    }
}

} // namespace vx::rules
