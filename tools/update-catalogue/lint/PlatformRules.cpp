#include <QRegularExpression>

#include <algorithm>

#include "download/DownloadManager.h"
#include "host/CoreQt/StringUtils.h"
#include "tools/update-catalogue/Spelling.h"
#include "tools/update-catalogue/lint/PlatformWords.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** The platform of the application that @p word probably means, although it fits none. */
QString misspeltPlatform(const QString& word, const QStringList& platforms)
{
    for (const QString& platform : platforms) {
        // "mac" and "MAC" mean all that begin with "Mac".
        const QString beginning = platform.left(word.size());
        if (differInStyle(word, platform) || differByASlip(word, platform) ||
            differInStyle(word, beginning)) {
            return differInStyle(word, beginning) ? beginning : platform;
        }
    }
    return QString();
}

/** The word of the catalogue that @p word was probably meant to be. */
QString commonerSpelling(const PlatformWord& word, const PlatformWords& words)
{
    for (const PlatformWord& other : words) {
        const bool isCommoner = other.packages > word.packages ||
                                (other.packages == word.packages && other.order < word.order);
        if (isCommoner &&
            (differInStyle(word.text, other.text) || differByASlip(word.text, other.text))) {
            return other.text;
        }
    }
    return QString();
}

} // namespace

void noPlatform(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (package.info.platforms.isEmpty()) {
            sink.addAt(package, DownloadManager::PLATFORM,
                       "Without a \"platform\" this package is offered to nobody. Name the "
                       "platforms or cameras that it is for.");
        }
    }
}

void platformSpelling(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    const PlatformWords words = platformWords(tree);
    for (const PlatformWord& word : words) {
        if (fits(word.text, options.platforms)) {
            continue;
        }
        QString meant = misspeltPlatform(word.text, options.platforms);
        if (meant.isEmpty()) {
            meant = commonerSpelling(word, words);
        }
        if (!meant.isEmpty()) {
            sink.add(word.position,
                     QString("The platform \"%1\" looks like \"%2\" and is another one: those who "
                             "have a \"%2\" are not offered what stands here.")
                         .arg(word.text, meant));
        }
    }
}

void platformBeginsOther(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    const PlatformWords words = platformWords(tree);
    for (const PlatformWord& word : words) {
        for (const PlatformWord& other : words) {
            if (word.text == other.text || !other.text.startsWith(word.text) ||
                fits(word.text, options.platforms)) {
                continue;
            }
            sink.add(word.position,
                     QString("The platform \"%1\" is the beginning of \"%2\" in line %3, so that "
                             "each is offered what is for the other.")
                         .arg(word.text, other.text)
                         .arg(other.position.line));
            break;
        }
    }
}

void blankInPlatform(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    static const QRegularExpression split("(?:^|[\\s,;])([^\\s,;0-9]+) ([0-9]+)(?=$|[\\s,;])");
    for (const auto& level : tree.levels()) {
        for (const FieldValue& value : level->fields.value(DownloadManager::PLATFORM)) {
            const QRegularExpressionMatch match = split.match(value.text);
            if (match.hasMatch()) {
                sink.add(value.position,
                         QString("A blank separates words: \"%1 %2\" is the two platforms \"%1\" "
                                 "and \"%2\". A package cannot name a platform with a blank; what "
                                 "comes before it is the nearest that fits.")
                             .arg(match.captured(1), match.captured(2)));
            }
        }
    }
}

} // namespace vx::rules
