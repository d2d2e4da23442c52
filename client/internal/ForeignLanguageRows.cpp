#include "client/internal/ForeignLanguageRows.h"

#include <QLocale>

#include "client/SoftwareUpdateClient.h"
#include "client/SoftwareUpdateConstants.h"

namespace vx {

namespace {

bool suits(const QStringSet& languages, const QString& systemLanguage)
{
    // On an English system firmware must come in German as well, and English alone is foreign. No
    // other language has such a rule, and none is to be added.
    if (systemLanguage == QLatin1String("en")) {
        return languages.contains(QStringLiteral("de")) && languages.contains(QStringLiteral("en"));
    }
    return languages.contains(systemLanguage);
}

} // namespace

QList<int> foreignLanguageRows(const PackageInfoList& list, const QString& systemLanguage)
{
    QList<int> foreignRows;
    bool ownLanguageFound = false;
    for (int row = 0; row < list.size(); ++row) {
        if (list.at(row).type != sSoftUpCameraUpdateTag) {
            continue;
        }
        if (suits(list.at(row).languages, systemLanguage)) {
            ownLanguageFound = true;
        } else {
            foreignRows.append(row);
        }
    }
    // Where nothing suits the user, hiding would leave nothing to choose from.
    return ownLanguageFound ? foreignRows : QList<int>();
}

QList<int> SoftwareUpdateClient::determineForeignLanguageRows(const PackageInfoList& list)
{
    return foreignLanguageRows(list, QLocale::system().name().section(QLatin1Char('_'), 0, 0));
}

} // namespace vx
