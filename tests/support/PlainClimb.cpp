#include "tests/support/PlainClimb.h"

#include <QBuffer>
#include <QDebug>
#include <QScopedPointer>
#include <QtXml/QDomDocument>

#include "download/DownloadManager.h"
#include "host/CoreQt/ParseException.h"
#include "host/CoreQt/QtVersions.h"
#include "host/FileFormatsXml/XmlUtils.h"

namespace vx::test {

namespace {

QVector<QDomElement> childrenNamed(const QDomNode& node, const QString& name)
{
    QVector<QDomElement> found;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement() && child.nodeName() == name) {
            found.append(child.toElement());
        }
    }
    return found;
}

QDomNode searchStart(const QDomNode& node)
{
    const QVector<QDomElement> files = childrenNamed(node, "file");
    return files.isEmpty() ? node : QDomNode(files.first());
}

/** Calls @p visit with each level from the search start of @p node on, until it returns true. */
template <typename Visit>
void climb(const QDomNode& node, Visit visit)
{
    QDomNode level = searchStart(node);
    while (!level.isNull() && !visit(level)) {
        level = level.parentNode();
    }
}

bool hasAttribute(const QDomNode& node, const QString& name)
{
    return node.attributes().contains(name);
}

QString attribute(const QDomNode& node, const QString& name)
{
    return node.attributes().namedItem(name).nodeValue();
}

void insertUrl(UrlMap& urls, const QString& language, const QString& address)
{
    insertMulti(urls, language.isEmpty() ? QString("en") : language, QUrl(address));
}

template <typename T>
QString compare(const char* field, const T& actual, const T& expected)
{
    if (actual == expected) {
        return {};
    }
    QString text;
    QDebug(&text) << field << "is" << actual << "and should be" << expected;
    return text;
}

} // namespace

QString PlainClimb::findString(const QDomNode& elm, const QString& tagname)
{
    QString value;
    climb(elm, [&](const QDomNode& level) {
        const QVector<QDomElement> elements = childrenNamed(level, tagname);
        if (!elements.isEmpty()) {
            value = elements.first().text();
            return true;
        }
        value = attribute(level, tagname);
        return hasAttribute(level, tagname);
    });
    return value;
}

int PlainClimb::findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result)
{
    QStringList texts;
    climb(elm, [&](const QDomNode& level) {
        for (const QDomElement& element : childrenNamed(level, tagname)) {
            texts.append(element.text());
        }
        if (hasAttribute(level, tagname)) {
            texts.append(attribute(level, tagname));
        }
        return false;
    });
    for (const QString& text : qAsConst(texts)) {
        result += StringUtils::splitStringSet(text, StringUtils::splitWords, skipEmptyParts);
    }
    return texts.size();
}

int PlainClimb::findAllTranslatedUrls(const QDomNode& elm, const QString& tagname, UrlMap& result)
{
    int count = 0;
    climb(elm, [&](const QDomNode& level) {
        for (const QDomElement& element : childrenNamed(level, tagname)) {
            insertUrl(result, findString(element, "language"), findString(element, "url"));
            ++count;
        }
        if (hasAttribute(level, tagname)) {
            insertUrl(result, findString(level, "language"), attribute(level, tagname));
            ++count;
        }
        return false;
    });
    return count;
}

void PlainClimb::parsePackage(const QDomElement& elm, PackageInfo& info)
{
    info.type = findString(elm, "type");
    info.name = findString(elm, "name");
    info.publicName = findString(elm, "public-name");
    findAllStrings(elm, "platform", info.platforms);
    info.release = findString(elm, "release");
    info.publicRelease = findString(elm, "public-release");
    info.status = findString(elm, "status");
    info.date = DownloadManager::parseReleaseDate(findString(elm, "release-date"));
    info.url = QUrl(findString(elm, "base-url") + findString(elm, "url"));
    findAllStrings(elm, "language", info.languages);
    findAllTranslatedUrls(elm, "release-notes", info.relNotes);
    findAllTranslatedUrls(elm, "readme", info.readme);
    info.fileSize = DownloadManager::parseFileSize(findString(elm, "file-size"));
    info.packageType = DownloadManager::parsePackageSuffix(info.url.toString());
    info.comment = findString(elm, "comment");
}

void PlainClimb::parseSet(const QDomElement& elm, PackageInfoList& result)
{
    for (const QDomElement& package : childrenNamed(elm, "package")) {
        PackageInfo info;
        parsePackage(package, info);
        result.append(info);
    }
    for (const QDomElement& nested : childrenNamed(elm, "package-set")) {
        parseSet(nested, result);
    }
}

PackageInfoList PlainClimb::parse(const QByteArray& document)
{
    QBuffer device;
    device.setData(document);
    device.open(QIODevice::ReadOnly);
    PackageInfoList packages;
    try {
        const QScopedPointer<QDomDocument> tree(XmlUtils::parseXml(&device, nullptr));
        parseSet(tree->documentElement(), packages);
    } catch (const ParseException&) {
        packages.clear();
    }
    return packages;
}

QString difference(const PackageInfo& a, const PackageInfo& e)
{
    const QStringList differences = {
        compare("type", a.type, e.type),
        compare("name", a.name, e.name),
        compare("publicName", a.publicName, e.publicName),
        compare("platforms", a.platforms, e.platforms),
        compare("url", a.url, e.url),
        compare("release", a.release, e.release),
        compare("publicRelease", a.publicRelease, e.publicRelease),
        compare("status", a.status, e.status),
        compare("date", a.date, e.date),
        compare("fileSize", a.fileSize, e.fileSize),
        compare("languages", a.languages, e.languages),
        compare("relNotes keys", a.relNotes.keys(), e.relNotes.keys()),
        compare("relNotes values", a.relNotes.values(), e.relNotes.values()),
        compare("readme keys", a.readme.keys(), e.readme.keys()),
        compare("readme values", a.readme.values(), e.readme.values()),
        compare("known", bool(a.flags.known), bool(e.flags.known)),
        compare("superseded", bool(a.flags.superseded), bool(e.flags.superseded)),
        compare("localFile", a.localFile, e.localFile),
        compare("confirmInstall", a.confirmInstall, e.confirmInstall),
        compare("packageType", a.packageType, e.packageType),
        compare("comment", a.comment, e.comment),
    };
    return differences.join(QString());
}

QString difference(const PackageInfoList& actual, const PackageInfoList& expected)
{
    if (actual.size() != expected.size()) {
        return compare("number of packages", actual.size(), expected.size());
    }
    for (int i = 0; i < actual.size(); ++i) {
        const QString found = difference(actual.at(i), expected.at(i));
        if (!found.isEmpty()) {
            return QString("package %1: %2").arg(i).arg(found);
        }
    }
    return {};
}

} // namespace vx::test
