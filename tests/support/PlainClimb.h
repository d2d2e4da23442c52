#pragma once

#include <QtXml/QDomElement>

#include "package/PackageInfo.h"

namespace vx::test {

/**
 * The definition of what a catalogue means, written down as plainly as it can be and as slowly as
 * that is: every field of every package is looked for in every child of every level.
 */
namespace PlainClimb {

QString findString(const QDomNode& elm, const QString& tagname);
int findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result);
int findAllTranslatedUrls(const QDomNode& elm, const QString& tagname, UrlMap& result);
void parsePackage(const QDomElement& elm, PackageInfo& info);
void parseSet(const QDomElement& elm, PackageInfoList& result);

/** Reads a document; one that XmlUtils refuses has no packages. */
PackageInfoList parse(const QByteArray& document);

} // namespace PlainClimb

/** Which field differs first, with both values; empty if all eighteen are the same. */
QString difference(const PackageInfo& actual, const PackageInfo& expected);
QString difference(const PackageInfoList& actual, const PackageInfoList& expected);

} // namespace vx::test
