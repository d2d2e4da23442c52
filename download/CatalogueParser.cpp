#include <QtXml/QDomDocument>

#include <memory>

#include "download/CatalogueSet.h"
#include "download/DownloadManager.h"
#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "package/LogLine.h"

namespace vx {

PackageInfoList DownloadManager::parseXML(QIODevice* device)
{
    PackageInfoList packages;
    try {
        const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(device, nullptr));
        parseSet(document->documentElement(), packages);
    } catch (const ParseException&) {
        // To a caller a broken document is the same as one without packages.
        logLine(2, QStringLiteral("XML parser error"));
    }
    return packages;
}

void DownloadManager::parseSet(const QDomElement& elm, PackageInfoList& result)
{
    CatalogueSet set(elm);
    set.visitChildren(PACKAGE, [&result](const QDomElement& package) {
        PackageInfo info;
        parsePackage(package, info);
        result.append(info);
    });
    set.visitChildren(PACKAGE_SET,
                      [&result](const QDomElement& nested) { parseSet(nested, result); });
}

void DownloadManager::parsePackage(const QDomElement& elm, PackageInfo& info)
{
    info.type = findString(elm, TYPE);
    info.name = findString(elm, NAME);
    info.publicName = findString(elm, NAME_PUBLIC);
    findAllStrings(elm, PLATFORM, info.platforms);
    info.release = findString(elm, RELEASE_VERSION);
    info.publicRelease = findString(elm, RELEASE_VERSION_PUBLIC);
    info.status = findString(elm, RELEASE_STATUS);
    info.date = parseReleaseDate(findString(elm, RELEASE_DATE));
    // Plain concatenation: catalogues may split an address anywhere.
    info.url = QUrl(findString(elm, BASE_URL) + findString(elm, URL));
    findAllStrings(elm, LANGUAGE, info.languages);
    findAllTranslatedUrls(elm, RELEASE_NOTES, info.relNotes);
    findAllTranslatedUrls(elm, README, info.readme);
    info.fileSize = parseFileSize(findString(elm, FILE_SIZE));
    info.packageType = parsePackageSuffix(info.url.toString());
    info.comment = findString(elm, COMMENT);
}

} // namespace vx
