#include "tools/update-catalogue/lint/Languages.h"

#include <QLocale>
#include <QRegularExpression>

namespace vx {

bool isSystemLanguage(const QString& word)
{
    // "C" is the name of the locale without a language, and what unknown words come out as.
    const QString known = QLocale(word).name().section('_', 0, 0);
    return known == word && word != "C";
}

bool isNotesLanguage(const QString& language)
{
    static const QRegularExpression country("^[a-z]{2,3}_[A-Z]{2}$");
    return isSystemLanguage(language) ||
           (country.match(language).hasMatch() && isSystemLanguage(language.section('_', 0, 0)));
}

} // namespace vx
