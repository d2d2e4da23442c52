// The operations that need no engine, and the names in a catalogue, as hosts know them. What they
// do lies below internal/.

#include "download/DownloadManager.h"
#include "download/internal/CandidateSelection.h"
#include "download/internal/catalogue/CatalogueFieldParsers.h"
#include "download/internal/catalogue/CatalogueParser.h"
#include "download/internal/catalogue/CatalogueSearch.h"
#include "download/internal/catalogue/CatalogueTags.h"

namespace vx {

const QString DownloadManager::DOCUMENT_TAG = CatalogueTag::DOCUMENT_TAG;
const QString DownloadManager::PACKAGE_SET = CatalogueTag::PACKAGE_SET;
const QString DownloadManager::PACKAGE = CatalogueTag::PACKAGE;
const QString DownloadManager::FILE = CatalogueTag::FILE;
const QString DownloadManager::TYPE = CatalogueTag::TYPE;
const QString DownloadManager::NAME = CatalogueTag::NAME;
const QString DownloadManager::NAME_PUBLIC = CatalogueTag::NAME_PUBLIC;
const QString DownloadManager::RELEASE_NOTES = CatalogueTag::RELEASE_NOTES;
const QString DownloadManager::README = CatalogueTag::README;
const QString DownloadManager::LANGUAGE = CatalogueTag::LANGUAGE;
const QString DownloadManager::RELEASE_VERSION = CatalogueTag::RELEASE_VERSION;
const QString DownloadManager::RELEASE_VERSION_PUBLIC = CatalogueTag::RELEASE_VERSION_PUBLIC;
const QString DownloadManager::RELEASE_STATUS = CatalogueTag::RELEASE_STATUS;
const QString DownloadManager::RELEASE_DATE = CatalogueTag::RELEASE_DATE;
const QString DownloadManager::URL = CatalogueTag::URL;
const QString DownloadManager::BASE_URL = CatalogueTag::BASE_URL;
const QString DownloadManager::FILE_SIZE = CatalogueTag::FILE_SIZE;
const QString DownloadManager::PLATFORM = CatalogueTag::PLATFORM;
const QString DownloadManager::COMMENT = CatalogueTag::COMMENT;

PackageInfoList DownloadManager::parseXML(QIODevice* device)
{
    return CatalogueParser::parseXML(device);
}

void DownloadManager::parseSet(const QDomElement& elm, PackageInfoList& result)
{
    CatalogueParser::parseSet(elm, result);
}

void DownloadManager::parsePackage(const QDomElement& elm, PackageInfo& info)
{
    CatalogueParser::parsePackage(elm, info);
}

QDomNode DownloadManager::startSearchAt(const QDomNode& elm)
{
    return CatalogueSearch::startSearchAt(elm);
}

QString DownloadManager::findString(const QDomNode& elm, const QString& tagname)
{
    return CatalogueSearch::findString(elm, tagname);
}

int DownloadManager::findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result)
{
    return CatalogueSearch::findAllStrings(elm, tagname, result);
}

int DownloadManager::findAllTranslatedUrls(const QDomNode& elm, const QString& tagname,
                                           UrlMap& result)
{
    return CatalogueSearch::findAllTranslatedUrls(elm, tagname, result);
}

quintptr DownloadManager::parseFileSize(const QString& text)
{
    return CatalogueFieldParsers::parseFileSize(text);
}

QDateTime DownloadManager::parseReleaseDate(const QString& text)
{
    return CatalogueFieldParsers::parseReleaseDate(text);
}

QString DownloadManager::parsePackageSuffix(const QString& name)
{
    return CatalogueFieldParsers::parsePackageSuffix(name);
}

PackageInfoList DownloadManager::findPackageCandidates(PackageInfoList& allPackages,
                                                       const PackageInfo& filter,
                                                       const QString& categoryTag,
                                                       const QStringList& allowedFileTypes)
{
    return CandidateSelection::findPackageCandidates(allPackages, filter, categoryTag,
                                                     allowedFileTypes);
}

void DownloadManager::eliminateDuplicatePackages(PackageInfoList& list)
{
    CandidateSelection::eliminateDuplicatePackages(list);
}

int DownloadManager::countNew(const PackageInfoList& list)
{
    return CandidateSelection::countNew(list);
}

} // namespace vx
