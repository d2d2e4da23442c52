#include <QtXml/QDomDocument>

#include <list>
#include <memory>

#include "download/CatalogueLevel.h"
#include "download/DownloadManager.h"
#include "download/ReadingBudget.h"
#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "package/LogLine.h"

namespace vx {

namespace {

void fillRecord(CatalogueLevel& start, ReadingBudget& budget, PackageInfo& info)
{
    info.type = start.value(TypeField);
    info.name = start.value(NameField);
    info.publicName = start.value(PublicNameField);
    start.addWords(PlatformField, info.platforms);
    info.release = start.value(ReleaseField);
    info.publicRelease = start.value(PublicReleaseField);
    info.status = start.value(StatusField);
    info.date = start.releaseDate();
    // Plain concatenation: catalogues may cut an address in two anywhere.
    const QString address = start.value(BaseUrlField) + start.value(UrlField);
    info.url = QUrl(address);
    start.addWords(LanguageField, info.languages);
    start.addUrls(ReleaseNotesField, info.relNotes);
    start.addUrls(ReadmeField, info.readme);
    const QString fileSize = start.value(FileSizeField);
    info.fileSize = DownloadManager::parseFileSize(fileSize);
    info.packageType = DownloadManager::parsePackageSuffix(info.url.toString());
    info.comment = start.value(CommentField);
    budget.spend(start.value(DateField).size() + address.size() + fileSize.size());
}

void readPackage(const QDomElement& elm, CatalogueLevel* set, ReadingBudget& budget,
                 PackageInfo& info)
{
    CatalogueLevel package(elm, set, budget);
    if (package.file().isNull()) {
        fillRecord(package, budget, info);
    } else {
        CatalogueLevel file(package.file(), &package, budget);
        fillRecord(file, budget, info);
    }
}

// Not inlined: what it needs on the stack would be there once for every set around a package.
Q_NEVER_INLINE void readPackages(const QDomElement& elm, CatalogueLevel& set, ReadingBudget& budget,
                                 PackageInfoList& result)
{
    for (QDomElement package = elm.firstChildElement(DownloadManager::PACKAGE); !package.isNull();
         package = package.nextSiblingElement(DownloadManager::PACKAGE)) {
        result.append(PackageInfo());
        readPackage(package, &set, budget, result.last());
    }
}

// The levels are in a list for the same reason.
void readSet(const QDomElement& elm, std::list<CatalogueLevel>& levels, ReadingBudget& budget,
             PackageInfoList& result)
{
    CatalogueLevel& set = levels.back();
    readPackages(elm, set, budget, result);
    for (QDomElement nested = elm.firstChildElement(DownloadManager::PACKAGE_SET); !nested.isNull();
         nested = nested.nextSiblingElement(DownloadManager::PACKAGE_SET)) {
        levels.emplace_back(nested, &set, budget);
        readSet(nested, levels, budget, result);
        levels.pop_back();
    }
}

void readSetAndItsSurroundings(const QDomElement& elm, ReadingBudget& budget,
                               PackageInfoList& result)
{
    std::list<CatalogueLevel> levels = levelsDownTo(elm, budget);
    if (!levels.empty()) {
        readSet(elm, levels, budget, result);
    }
}

bool isEmptyDocument(QIODevice* device)
{
    return device != nullptr && device->isReadable() && device->peek(1).isEmpty();
}

} // namespace

PackageInfoList DownloadManager::parseXML(QIODevice* device)
{
    if (isEmptyDocument(device)) {
        return {};
    }
    try {
        PackageInfoList packages;
        const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(device, nullptr));
        ReadingBudget budget(ReadingBudget::maximum);
        readSetAndItsSurroundings(document->documentElement(), budget, packages);
        return packages;
    } catch (const ParseException&) {
        // To a caller a broken document is the same as one without packages.
        logLine(2, QStringLiteral("XML parser error"));
        return {};
    }
}

void DownloadManager::parseSet(const QDomElement& elm, PackageInfoList& result)
{
    ReadingBudget budget;
    readSetAndItsSurroundings(elm, budget, result);
}

void DownloadManager::parsePackage(const QDomElement& elm, PackageInfo& info)
{
    ReadingBudget budget;
    std::list<CatalogueLevel> levels = levelsDownTo(elm.parentNode(), budget);
    readPackage(elm, levels.empty() ? nullptr : &levels.back(), budget, info);
}

} // namespace vx
