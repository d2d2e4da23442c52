#pragma once

#include <QDateTime>
#include <QString>

namespace vx {

/** What becomes of the texts of a catalogue's fields. DownloadManager describes each operation. */
namespace CatalogueFieldParsers {

quintptr parseFileSize(const QString& text);

QDateTime parseReleaseDate(const QString& text);

QString parsePackageSuffix(const QString& name);

} // namespace CatalogueFieldParsers

} // namespace vx
