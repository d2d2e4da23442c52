#include "tools/update-catalogue/lint/PlatformWords.h"

#include <QHash>

#include <algorithm>

#include "download/DownloadManager.h"
#include "host/CoreQt/StringUtils.h"

namespace vx {

PlatformWords platformWords(const CatalogueTree& tree)
{
    QHash<QString, int> packages;
    for (const CataloguePackage& package : tree.packages()) {
        for (const QString& word : package.info.platforms) {
            ++packages[word];
        }
    }
    PlatformWords words;
    QStringSet seen;
    for (const auto& level : tree.levels()) {
        for (const FieldValue& value : level->fields.value(DownloadManager::PLATFORM)) {
            const QStringList list = splitText(value.text, StringUtils::splitWords, skipEmptyParts);
            for (const QString& word : list) {
                if (packages.contains(word) && !seen.contains(word)) {
                    seen.insert(word);
                    const int order = static_cast<int>(words.size());
                    words.append({word, value.position, packages.value(word), order});
                }
            }
        }
    }
    return words;
}

bool fits(const QString& word, const QStringList& platforms)
{
    return StringUtils::intersectsOnBeginning(QStringSet(platforms.begin(), platforms.end()),
                                              {word});
}

} // namespace vx
