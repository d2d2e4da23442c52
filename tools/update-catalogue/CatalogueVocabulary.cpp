#include "tools/update-catalogue/CatalogueVocabulary.h"

#include "download/DownloadManager.h"
#include "tools/update-catalogue/Spelling.h"
#include "trust/internal/PackageDigests.h"

namespace vx {

namespace {

QStringList knownNames()
{
    return singleFields() + wordFields() + urlFields() + packageFields() +
           QStringList{DownloadManager::PACKAGE_SET, DownloadManager::PACKAGE,
                       DownloadManager::FILE};
}

} // namespace

const QStringList& singleFields()
{
    static const QStringList fields{DownloadManager::TYPE,
                                    DownloadManager::NAME,
                                    DownloadManager::NAME_PUBLIC,
                                    DownloadManager::RELEASE_VERSION,
                                    DownloadManager::RELEASE_VERSION_PUBLIC,
                                    DownloadManager::RELEASE_STATUS,
                                    DownloadManager::RELEASE_DATE,
                                    DownloadManager::BASE_URL,
                                    DownloadManager::URL,
                                    DownloadManager::FILE_SIZE,
                                    DownloadManager::COMMENT};
    return fields;
}

const QStringList& wordFields()
{
    static const QStringList fields{DownloadManager::PLATFORM, DownloadManager::LANGUAGE};
    return fields;
}

const QStringList& urlFields()
{
    static const QStringList fields{DownloadManager::RELEASE_NOTES, DownloadManager::README};
    return fields;
}

const QStringList& packageFields()
{
    static const QStringList fields{packageDigestTag};
    return fields;
}

bool isField(const QString& name)
{
    return singleFields().contains(name) || wordFields().contains(name) ||
           urlFields().contains(name);
}

QString nearestKnownName(const QString& name)
{
    const QString plain = withoutStyle(name);
    QString nearest;
    int smallest = 1 + static_cast<int>(plain.size()) / 3;
    for (const QString& known : knownNames()) {
        const int distance = editDistance(plain, withoutStyle(known));
        if (distance < smallest) {
            smallest = distance;
            nearest = known;
        }
    }
    return nearest;
}

} // namespace vx
