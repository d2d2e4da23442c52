#include "package/PackageInfo.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

#include "host/FileFormatsVeldrix/VeldrixSoftwareVersion.h"

namespace vx {

static_assert(sizeof(PackageInfo::Flags) == 4, "the flags are one 32-bit word");

PackageInfo::PackageInfo(const QString& typeText, const QString& nameText,
                         const QString& releaseText, const QString& statusText,
                         const QDateTime& releaseDate, const QStringSet& platformWords,
                         const QStringSet& languageWords, const QString& fileType,
                         const QString& commentText)
    : type(typeText)
    , name(nameText)
    , publicName(nameText)
    , platforms(platformWords)
    , release(releaseText)
    , publicRelease(releaseText)
    , status(statusText)
    , date(releaseDate)
    , languages(languageWords)
    , packageType(fileType)
    , comment(commentText)
{}

QString PackageInfo::displayName(bool usePublic) const
{
    return usePublic && !publicName.isEmpty() ? publicName : name;
}

QString PackageInfo::displayReleaseVersion(bool usePublic) const
{
    if (usePublic && !publicRelease.isEmpty()) {
        return publicRelease;
    }
    if (!release.isEmpty()) {
        return VeldrixSoftwareVersion::applicationVersion(release, QStringLiteral("?"), 0);
    }
    // Also without usePublic: a package that has only a public release still shows it.
    return publicRelease;
}

QString PackageInfo::timeToString(Qt::DateFormat format) const
{
    if (date.time() == QTime(0, 0, 0, 0)) {
        return date.date().toString(format);
    }
    return date.toString(format);
}

bool PackageInfo::isInstallable() const
{
    return isInstallable(packageType);
}

bool PackageInfo::isInstallable(const QString& suffix)
{
    const char* const installable[] = {"zip", "exe", "msi"};
    return std::any_of(std::begin(installable), std::end(installable),
                       [&suffix](const char* known) {
                           return suffix.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
                       });
}

QString PackageInfo::stringID() const
{
    // Time and size alone are a package's identity; stored histories depend on the leading 1.
    return QStringLiteral("%1-%2-%3").arg(1).arg(date.toString(Qt::ISODate)).arg(fileSize);
}

bool PackageInfo::operator==(const PackageInfo& other) const
{
    return stringID() == other.stringID();
}

QString PackageInfo::fileName() const
{
    return QFileInfo(url.path()).fileName();
}

} // namespace vx
