#pragma once

#include <QtXml/QDomElement>

#include "package/PackageInfo.h"

class QIODevice;

namespace vx {

class PackageDigests;

/** From a document to records. DownloadManager describes each operation. */
namespace CatalogueParser {

/**
 * @param digests gets what the catalogue says of the packages' files, by the packages'
 *     addresses; null if nobody wants to know. It may hold some packages of a document that is
 *     refused halfway.
 */
PackageInfoList parseXML(QIODevice* device, PackageDigests* digests = nullptr);

void parseSet(const QDomElement& elm, PackageInfoList& result);

void parsePackage(const QDomElement& elm, PackageInfo& info);

} // namespace CatalogueParser

} // namespace vx
