#include <QCoreApplication>

#include "package/PackageInfo.h"

namespace vx {

namespace {

const char* const translationContext = "Download";

QString translated(const QString& text)
{
    const QByteArray source = text.toLatin1();
    const QString translation = QCoreApplication::translate(translationContext, source.constData());
    // Without a translation Qt hands the source back, read as UTF-8, which spoils what is not
    // ASCII.
    return translation == QString::fromUtf8(source) ? text : translation;
}

QStringList gatherTexts(const PackageInfoList& list, QString PackageInfo::*field, bool translate)
{
    QStringSet texts;
    for (const PackageInfo& package : list) {
        const QString& text = package.*field;
        texts.insert(translate ? translated(text) : text);
    }
    return texts.values();
}

// Whether translated or not is decided by appendAll alone, unlike for the single texts.
QStringList gatherWords(const PackageInfoList& list, QStringSet PackageInfo::*field)
{
    QStringSet words;
    for (const PackageInfo& package : list) {
        StringUtils::appendAll(words, package.*field, QLatin1String(translationContext));
    }
    return words.values();
}

} // namespace

QStringList PackageInfo::allTypes(const PackageInfoList& list, bool translated)
{
    return gatherTexts(list, &PackageInfo::type, translated);
}

QStringList PackageInfo::allLanguages(const PackageInfoList& list, bool)
{
    return gatherWords(list, &PackageInfo::languages);
}

QStringList PackageInfo::allPlatforms(const PackageInfoList& list, bool)
{
    return gatherWords(list, &PackageInfo::platforms);
}

QStringList PackageInfo::allReleases(const PackageInfoList& list, bool translated)
{
    return gatherTexts(list, &PackageInfo::release, translated);
}

} // namespace vx
