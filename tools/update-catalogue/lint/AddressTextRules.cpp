#include <QHostAddress>
#include <QRegularExpression>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** Ends that join a "base-url" with what follows as they are meant to, as in "/firmware-". */
bool joinsWithoutSlash(const QString& base)
{
    static const QRegularExpression joint("[-_.=/]$");
    return joint.match(base).hasMatch();
}

QString textOf(const CataloguePackage& package, const QString& field)
{
    return package.find(field).value.text.trimmed();
}

bool isAbsolute(const QString& text)
{
    static const QRegularExpression scheme("^([A-Za-z][A-Za-z0-9+.-]*:)?//");
    return scheme.match(text).hasMatch();
}

/** What is odd about @p url, or nothing. */
QString oddity(const QUrl& url)
{
    if (url.path(QUrl::FullyDecoded).contains('\\')) {
        return "a \"\\\", which is no \"/\" to a server";
    }
    if (url.hasFragment()) {
        return "a \"#\", and what follows it is never asked for";
    }
    if (!url.userInfo().isEmpty()) {
        return "a user or password, which everybody can read and no download uses";
    }
    return QString();
}

} // namespace

void absoluteUnderBase(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString base = textOf(package, DownloadManager::BASE_URL);
        if (!base.isEmpty() && isAbsolute(textOf(package, DownloadManager::URL))) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The \"url\" is a whole address and \"%1\" is put in front of it: "
                               "the download fails. Give the package an empty \"base-url\" or the "
                               "rest of the address alone.")
                           .arg(base));
        }
    }
}

void baseWithoutSlash(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString base = textOf(package, DownloadManager::BASE_URL);
        const QString url = textOf(package, DownloadManager::URL);
        const bool isJoined = joinsWithoutSlash(base) || url.startsWith('/') || isAbsolute(url);
        if (!base.isEmpty() && !url.isEmpty() && !isJoined) {
            sink.addAt(package, DownloadManager::BASE_URL,
                       QString("\"base-url\" does not end in \"/\", so that the address is \"%1\". "
                               "Nothing is put between the two texts.")
                           .arg(package.info.url.toString()));
        }
    }
}

void doubledSlash(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        // Two addresses in one have their own rule, which says more.
        const bool isTwo = !textOf(package, DownloadManager::BASE_URL).isEmpty() &&
                           isAbsolute(textOf(package, DownloadManager::URL));
        if (package.info.url.path().contains("//") && !isTwo) {
            sink.addAt(package, DownloadManager::URL,
                       QString("The address \"%1\" has \"//\" in its path: many servers do not "
                               "find that file.")
                           .arg(package.info.url.toString()));
        }
    }
}

void oddAddress(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString found = oddity(package.info.url);
        if (!found.isEmpty()) {
            sink.addAt(package, DownloadManager::URL, QString("The address holds %1.").arg(found));
        }
    }
}

void localAddress(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString host = package.info.url.host();
        if (host == "localhost" || host == "0.0.0.0" || QHostAddress(host).isLoopback()) {
            sink.addAt(package, DownloadManager::URL,
                       QString("\"%1\" is each installation's own machine: others cannot download "
                               "from there.")
                           .arg(host));
        }
    }
}

} // namespace vx::rules
