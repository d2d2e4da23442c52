#include "tools/update-catalogue/CatalogueVocabulary.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "download/DownloadManager.h"

namespace vx {

namespace {

/** How many letters have to be put in, taken out or exchanged to make one text of the other. */
int editDistance(const QString& a, const QString& b)
{
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        int diagonal = row[0]++;
        for (int j = 0; j < b.size(); ++j) {
            const auto at = static_cast<size_t>(j);
            const int exchanged = diagonal + (letter == b.at(j) ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({exchanged, row[at] + 1, row[at + 1] + 1});
        }
    }
    return row.back();
}

QStringList knownNames()
{
    return singleFields() + wordFields() + urlFields() +
           QStringList{DownloadManager::PACKAGE_SET, DownloadManager::PACKAGE,
                       DownloadManager::FILE};
}

/** "releaseDate", "release_date" and "Release-Date" all mean "release-date". */
QString withoutStyle(const QString& name)
{
    return name.toLower().remove('-').remove('_').remove('.');
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
