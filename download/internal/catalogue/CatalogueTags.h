#pragma once

#include <QString>

#include "trust/internal/PackageDigests.h"

namespace vx {

/**
 * The names in a catalogue. DownloadManager says what each holds, and gives hosts the same ones.
 *
 * Static objects of a file that includes this are created after them.
 */
namespace CatalogueTag {

inline const QString DOCUMENT_TAG = QStringLiteral("softwareList");
inline const QString PACKAGE_SET = QStringLiteral("package-set");
inline const QString PACKAGE = QStringLiteral("package");
inline const QString FILE = QStringLiteral("file");
inline const QString TYPE = QStringLiteral("type");
inline const QString NAME = QStringLiteral("name");
inline const QString NAME_PUBLIC = QStringLiteral("public-name");
inline const QString RELEASE_NOTES = QStringLiteral("release-notes");
inline const QString README = QStringLiteral("readme");
inline const QString LANGUAGE = QStringLiteral("language");
inline const QString RELEASE_VERSION = QStringLiteral("release");
inline const QString RELEASE_VERSION_PUBLIC = QStringLiteral("public-release");
inline const QString RELEASE_STATUS = QStringLiteral("status");
inline const QString RELEASE_DATE = QStringLiteral("release-date");
inline const QString URL = QStringLiteral("url");
inline const QString BASE_URL = QStringLiteral("base-url");
inline const QString FILE_SIZE = QStringLiteral("file-size");
inline const QString PLATFORM = QStringLiteral("platform");
inline const QString COMMENT = QStringLiteral("comment");

/** What the file of a package must be where signatures are required. Hosts are given no name. */
inline const QString DIGEST = QLatin1String(packageDigestTag);

} // namespace CatalogueTag

} // namespace vx
