#include "tools/update-catalogue/report/TwinDetails.h"

#include <QHash>

#include "tools/update-catalogue/ParsedCatalogue.h"

namespace vx {

namespace {

QString dateText(const QDateTime& date)
{
    if (!date.isValid()) {
        return "no date";
    }
    return date.toString(date.time() == QTime(0, 0) ? "yyyy-MM-dd" : "yyyy-MM-dd hh:mm:ss");
}

QString languagesText(const QStringSet& languages)
{
    QStringList words = languages.values();
    words.sort();
    return words.isEmpty() ? QString("no language") : words.join(", ");
}

} // namespace

QStringList twinDetails(const PackageInfoList& catalogue)
{
    QHash<QString, int> bearers;
    for (const PackageInfo& package : catalogue) {
        ++bearers[packageLabel(package)];
    }
    QStringList details;
    for (const PackageInfo& package : catalogue) {
        details.append(bearers.value(packageLabel(package)) == 1
                           ? QString()
                           : dateText(package.date) + ", " + languagesText(package.languages));
    }
    return details;
}

} // namespace vx
