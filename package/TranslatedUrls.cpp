#include "package/PackageInfo.h"

namespace vx {

QUrl PackageInfo::translatedUrl(const UrlMap& urls, const QString& language,
                                const QString& fallbackLanguage)
{
    // "de_CH" finds "de".
    for (const QString& key :
         {language, language.left(2), fallbackLanguage, fallbackLanguage.left(2)}) {
        const auto found = urls.constFind(key);
        if (found != urls.constEnd()) {
            return *found;
        }
    }
    return urls.isEmpty() ? QUrl() : urls.first();
}

QUrl PackageInfo::releaseNotesUrl(const QString& language, const QString& fallbackLanguage) const
{
    return translatedUrl(relNotes, language, fallbackLanguage);
}

QUrl PackageInfo::readmeUrl(const QString& language, const QString& fallbackLanguage) const
{
    return translatedUrl(readme, language, fallbackLanguage);
}

} // namespace vx
