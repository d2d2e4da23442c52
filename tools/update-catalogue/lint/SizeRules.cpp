#include <QRegularExpression>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** No package that a desktop downloads is larger. */
constexpr quintptr largestPackage = quintptr(64) << 30;

const char neverEnds[] = "the download of this package never ends for its users.";

QString sizeText(const CataloguePackage& package)
{
    return package.find(DownloadManager::FILE_SIZE).value.text;
}

/** What the size was most probably meant to be, in bytes; 0 if that cannot be told. */
qulonglong intendedBytes(const QString& text)
{
    static const QRegularExpression form("^\\s*(\\d+(?:[.,]\\d+)?)\\s*([kmg]?)i?b?(?:ytes?)?\\s*$",
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return 0;
    }
    const int power = QString("kmg").indexOf(match.captured(2).toLower()) + 1;
    const double unit = match.captured(2).isEmpty() ? 1.0 : static_cast<double>(1 << (10 * power));
    return static_cast<qulonglong>(match.captured(1).replace(',', '.').toDouble() * unit);
}

QString suggestion(const QString& text)
{
    const qulonglong bytes = intendedBytes(text);
    return bytes == 0 ? QString("Give the size in bytes.")
                      : QString("Give the size in bytes, about %1.").arg(bytes);
}

} // namespace

void noSize(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        if (sizeText(package).trimmed().isEmpty()) {
            sink.addAt(package, DownloadManager::FILE_SIZE,
                       QString("Without a \"%1\" %2 Give the size in bytes.")
                           .arg(DownloadManager::FILE_SIZE, neverEnds));
        }
    }
}

void unreadableSize(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const QString text = sizeText(package);
        if (!text.trimmed().isEmpty() && package.info.fileSize == 0) {
            sink.addAt(package, DownloadManager::FILE_SIZE,
                       QString("The size \"%1\" reads as 0: %2 %3")
                           .arg(text, neverEnds, suggestion(text)));
        }
    }
}

void lostFraction(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    static const QRegularExpression fraction("\\d\\.\\d*[1-9]\\d*\\s*[mk]b$",
                                             QRegularExpression::CaseInsensitiveOption);
    for (const CataloguePackage& package : tree.packages()) {
        const QString text = sizeText(package);
        if (package.info.fileSize != 0 && fraction.match(text).hasMatch()) {
            sink.addAt(package, DownloadManager::FILE_SIZE,
                       QString("The size \"%1\" reads as %2 bytes, the fraction is cut off: a "
                               "truncated download passes as complete. %3")
                           .arg(text)
                           .arg(package.info.fileSize)
                           .arg(suggestion(text)));
        }
    }
}

void implausibleSize(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const CataloguePackage& package : tree.packages()) {
        const quintptr size = package.info.fileSize;
        if (size > largestPackage) {
            sink.addAt(package, DownloadManager::FILE_SIZE,
                       QString("The size \"%1\" is %2 bytes: is the unit right?")
                           .arg(sizeText(package))
                           .arg(size));
        }
    }
}

} // namespace vx::rules
