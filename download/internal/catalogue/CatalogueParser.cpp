#include "download/internal/catalogue/CatalogueParser.h"

#include <QIODevice>
#include <QtXml/QDomDocument>

#include <list>
#include <memory>

#include "base/LogLine.h"
#include "download/internal/catalogue/CatalogueFieldParsers.h"
#include "download/internal/catalogue/CatalogueLevel.h"
#include "download/internal/catalogue/CatalogueTags.h"
#include "download/internal/catalogue/ReadingBudget.h"
#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "trust/internal/PackageDigests.h"

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
    info.fileSize = CatalogueFieldParsers::parseFileSize(fileSize);
    info.packageType = CatalogueFieldParsers::parsePackageSuffix(info.url.toString());
    info.comment = start.value(CommentField);
    budget.spend(start.value(DateField).size() + address.size() + fileSize.size());
}

/** Where the packages of a document go. */
struct Destination
{
    PackageInfoList& packages;
    /** Null if nobody wants them. */
    PackageDigests* digests;
};

void readPackage(const QDomElement& elm, CatalogueLevel* set, ReadingBudget& budget,
                 PackageInfo& info, PackageDigests* digests)
{
    CatalogueLevel package(elm, set, budget);
    std::optional<QString> digest;
    if (package.file().isNull()) {
        fillRecord(package, budget, info);
    } else {
        CatalogueLevel file(package.file(), &package, budget);
        fillRecord(file, budget, info);
        digest = file.ownDigest();
    }
    if (digests != nullptr) {
        digests->add(info.url, digest ? digest : package.ownDigest());
    }
}

// Not inlined, so that its local variables are not part of the stack frame of the function that
// calls itself for each level of nested sets.
Q_NEVER_INLINE void readPackages(const QDomElement& elm, CatalogueLevel& set, ReadingBudget& budget,
                                 const Destination& destination)
{
    for (QDomElement package = elm.firstChildElement(CatalogueTag::PACKAGE); !package.isNull();
         package = package.nextSiblingElement(CatalogueTag::PACKAGE)) {
        destination.packages.append(PackageInfo());
        readPackage(package, &set, budget, destination.packages.last(), destination.digests);
    }
}

// The levels are in a list for the same reason.
void readSet(const QDomElement& elm, std::list<CatalogueLevel>& levels, ReadingBudget& budget,
             const Destination& destination)
{
    CatalogueLevel& set = levels.back();
    readPackages(elm, set, budget, destination);
    for (QDomElement nested = elm.firstChildElement(CatalogueTag::PACKAGE_SET); !nested.isNull();
         nested = nested.nextSiblingElement(CatalogueTag::PACKAGE_SET)) {
        levels.emplace_back(nested, &set, budget);
        readSet(nested, levels, budget, destination);
        levels.pop_back();
    }
}

void readSetAndItsSurroundings(const QDomElement& elm, ReadingBudget& budget,
                               const Destination& destination)
{
    std::list<CatalogueLevel> levels = levelsDownTo(elm, budget);
    if (!levels.empty()) {
        readSet(elm, levels, budget, destination);
    }
}

bool isEmptyDocument(QIODevice* device)
{
    return device != nullptr && device->isReadable() && device->peek(1).isEmpty();
}

} // namespace

PackageInfoList CatalogueParser::parseXML(QIODevice* device, PackageDigests* digests)
{
    if (isEmptyDocument(device)) {
        return {};
    }
    try {
        PackageInfoList packages;
        const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(device, nullptr));
        ReadingBudget budget(ReadingBudget::maximum);
        readSetAndItsSurroundings(document->documentElement(), budget, {packages, digests});
        return packages;
    } catch (const ParseException&) {
        // To a caller a broken document is the same as one without packages.
        logLine(2, QStringLiteral("XML parser error"));
        return {};
    }
}

void CatalogueParser::parseSet(const QDomElement& elm, PackageInfoList& result)
{
    ReadingBudget budget;
    readSetAndItsSurroundings(elm, budget, {result, nullptr});
}

void CatalogueParser::parsePackage(const QDomElement& elm, PackageInfo& info)
{
    ReadingBudget budget;
    std::list<CatalogueLevel> levels = levelsDownTo(elm.parentNode(), budget);
    readPackage(elm, levels.empty() ? nullptr : &levels.back(), budget, info, nullptr);
}

} // namespace vx
