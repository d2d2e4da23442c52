#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

constexpr int shortestType = 3;
constexpr int longestType = 7;

bool hasUsualLength(const QString& type)
{
    return type.size() >= shortestType && type.size() <= longestType;
}

/** The types that the library treats in some way of its own. */
const QStringList& knownTypes()
{
    static const QStringList types{"exe", "mpkg", "zip",    "msi",     "deb",
                                   "rpk", "dmg",  "tar.gz", "tar.bz2", "bin"};
    return types;
}

QString typeInSmallLetters(const CataloguePackage& package)
{
    return DownloadManager::parsePackageSuffix(package.info.url.toString().toLower());
}

bool isMisspelt(const CataloguePackage& package)
{
    const QString small = typeInSmallLetters(package);
    return small != package.info.packageType && knownTypes().contains(small);
}

} // namespace

void noAddress(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (package.info.url.host().isEmpty() || package.info.fileName().isEmpty()) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The address \"%1\" names no host and file: the download fails. It "
                               "is \"base-url\" followed by \"url\", without anything between.")
                           .arg(package.info.url.toString()));
        }
    }
}

void ignoredScheme(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString scheme = package.info.url.scheme();
        if (!package.info.url.host().isEmpty() && scheme != "http") {
            sink.addAt(package, DownloadManager::URL,
                       QString("The scheme \"%1\" is ignored: an installation fetches the package "
                               "by HTTP from port 80 of %2.")
                           .arg(scheme, package.info.url.host()));
        }
    }
}

void ignoredPort(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const int port = package.info.url.port(80);
        if (port != 80) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The port %1 is ignored: an installation fetches the package from "
                               "port 80 of %2.")
                           .arg(port)
                           .arg(package.info.url.host()));
        }
    }
}

void suspiciousSuffix(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString type = package.info.packageType;
        if (!hasUsualLength(type) || package.info.url.hasQuery()) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The file type is what follows the last dot of the whole address, "
                               "here \"%1\": users see that as the type.")
                           .arg(type));
        }
    }
}

void capitalSuffix(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString type = package.info.packageType;
        const QString small =
            DownloadManager::parsePackageSuffix(package.info.url.toString().toLower());
        if (type != small && knownTypes().contains(small)) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The file type \"%1\" is known as \"%2\" only: the application "
                               "neither lists nor installs it. Rename the file.")
                           .arg(type, typeInSmallLetters(package)));
        }
    }
}

void unlistedType(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString type = package.info.packageType;
        if (isForApplication(package, options) && hasUsualLength(type) && !isMisspelt(package) &&
            !options.listedTypes.contains(type)) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The application lists %1 and not \"%2\": nobody is offered this "
                               "package.")
                           .arg(options.listedTypes.join(", "), type));
        }
    }
}

void notInstallable(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString type = package.info.packageType;
        if (options.listedTypes.contains(type) && !options.installableTypes.contains(type)) {
            sink.addAt(package, DownloadManager::URL,
                       QString("Users can download a \"%1\" package and must install it by hand: "
                               "\"Install Package\" stays disabled.")
                           .arg(type));
        }
    }
}

} // namespace vx::rules
