#pragma once

#include <QString>
#include <QUrl>
#include <QtXml/QDomNode>

#include <optional>

#include "package/PackageInfo.h"

namespace vx {

/**
 * The search for a field on the way from a node to the root, one climb for each. DownloadManager
 * describes the first four operations; CatalogueLevel gives the same answers for many packages.
 */
namespace CatalogueSearch {

QDomNode startSearchAt(const QDomNode& elm);

QString findString(const QDomNode& elm, const QString& tagname);

int findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result);

int findAllTranslatedUrls(const QDomNode& elm, const QString& tagname, UrlMap& result);

/** The value of @p tagname that stands at one level, element before attribute. */
std::optional<QString> valueAt(const QDomNode& level, const QString& tagname);

/** Adds the URL at @p address under @p language, or "en" if that is empty. */
void insertTranslatedUrl(UrlMap& urls, const QString& language, const QUrl& address);

} // namespace CatalogueSearch

} // namespace vx
