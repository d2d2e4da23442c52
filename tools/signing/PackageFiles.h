#pragma once

#include <QString>
#include <QUrl>

#include <optional>

#include "tools/signing/PackageFacts.h"

namespace vx {

/** The file of the package at @p address in @p folder, by the last part of the address; empty if
    the folder has no such file. */
QString packageFile(const QUrl& address, const QString& folder);

/** Size and digest of the file at @p path; nothing if it can't be read to its end. */
std::optional<PackageFacts> readPackageFacts(const QString& path);

/**
 * Writes the facts of those files into @p catalogue that @p folder has, as writePackageFacts().
 *
 * @throws ParseException
 */
QByteArray writeFactsOfFolder(const QByteArray& catalogue, const QString& folder);

} // namespace vx
