#include "download/DownloadManager.h"

namespace vx {

// A name reserved for examples, so that an application that sets no server asks nobody's.
const QString DownloadManager::UPDATE_URL = QStringLiteral("http://update.example.com");

const QString DownloadManager::DOCUMENT_TAG = QStringLiteral("softwareList");
const QString DownloadManager::PACKAGE_SET = QStringLiteral("package-set");
const QString DownloadManager::PACKAGE = QStringLiteral("package");
const QString DownloadManager::FILE = QStringLiteral("file");
const QString DownloadManager::TYPE = QStringLiteral("type");
const QString DownloadManager::NAME = QStringLiteral("name");
const QString DownloadManager::NAME_PUBLIC = QStringLiteral("public-name");
const QString DownloadManager::RELEASE_NOTES = QStringLiteral("release-notes");
const QString DownloadManager::README = QStringLiteral("readme");
const QString DownloadManager::LANGUAGE = QStringLiteral("language");
const QString DownloadManager::RELEASE_VERSION = QStringLiteral("release");
const QString DownloadManager::RELEASE_VERSION_PUBLIC = QStringLiteral("public-release");
const QString DownloadManager::RELEASE_STATUS = QStringLiteral("status");
const QString DownloadManager::RELEASE_DATE = QStringLiteral("release-date");
const QString DownloadManager::URL = QStringLiteral("url");
const QString DownloadManager::BASE_URL = QStringLiteral("base-url");
const QString DownloadManager::FILE_SIZE = QStringLiteral("file-size");
const QString DownloadManager::PLATFORM = QStringLiteral("platform");
const QString DownloadManager::COMMENT = QStringLiteral("comment");

} // namespace vx
