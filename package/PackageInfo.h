#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QUrl>

#include "SoftwareUpdateClientExport.h"
#include "host/CoreQt/QtVersions.h"
#include "host/CoreQt/StringUtils.h"

namespace vx {

class PackageInfo;

/** Packages in the order in which the catalogue lists them. */
using PackageInfoList = QList<PackageInfo>;

/**
 * URLs by language. A language may hold several, filled with multi-inserts; a lookup returns the
 * one that was inserted last.
 */
using UrlMap = MultiValueMap<QString, QUrl>;

/** The first test of PackageInfo::filterPackageCandidate that a package did not pass. */
enum class CandidateRefusal {
    None,      ///< every test passed: the package is a candidate
    Name,      ///< the filter names another package
    Release,   ///< not strictly newer than the filter's release
    Status,    ///< another status word than the filter's
    Platforms, ///< no platform word of filter and package begins with one of the other
    FileType   ///< the package type is not among the allowed ones
};

/**
 * One package that an update server offers, or the filter of a query.
 *
 * A plain value with public fields. In a filter an empty string, a null time or an empty set means
 * that the field is not tested; whether a string is null or only empty makes no difference
 * anywhere. Nothing here fails or reports anything: absent data yields empty strings, a null time
 * or 0.
 *
 * Records own nothing by pointer and take no locks. They cross threads by copy; both this type and
 * PackageInfoList are registered meta-types, "vx::PackageInfo" and "vx::PackageInfoList", from the
 * moment the library is loaded.
 */
class SOFTWAREUPDATECLIENT_EXPORT PackageInfo
{
public:
    /** One word of one-bit flags. All are clear in a new record. */
    struct Flags
    {
        /** The package was seen before, in an earlier answer of the server. */
        quint32 known : 1;
        /** Cleared where a best match is found, and set by nothing in the library. */
        quint32 superseded : 1;
        /** Always zero. */
        quint32 reserved : 30;
    };

    /**
     * Makes a record from the values that a query can ask for; every other field starts empty.
     *
     * @param name becomes publicName, too.
     * @param release becomes publicRelease, too. Nothing keeps either pair equal afterwards.
     */
    PackageInfo(const QString& type = QString(), const QString& name = QString(),
                const QString& release = QString(), const QString& status = QString(),
                const QDateTime& date = QDateTime(), const QStringSet& platforms = QStringSet(),
                const QStringSet& languages = QStringSet(), const QString& packageType = QString(),
                const QString& comment = QString());

    /** Kind of package, such as "Application" or "Camera Firmware". */
    QString type;
    /** Internal name, compared exactly. */
    QString name;
    /** Name for users; empty when the catalogue has none. */
    QString publicName;
    /** Platform words, for firmware the names of cameras. */
    QStringSet platforms;
    /** Where the package file is downloaded from, complete. */
    QUrl url;
    /** Internal release, which VersionNumber reads. */
    QString release;
    /** Release for users; empty when the catalogue has none. */
    QString publicRelease;
    /** Status word, such as "STABLE" or "BETA". */
    QString status;
    /** Time of the release, in local time; midnight when the catalogue has a date alone. */
    QDateTime date;
    /** Size of the package file in bytes, 0 when unknown. */
    quintptr fileSize = 0;
    /** Language words. */
    QStringSet languages;
    /** Addresses of release notes by language. */
    UrlMap relNotes;
    /** Addresses of readme files by language. */
    UrlMap readme;
    /** What the library notes about the package. */
    Flags flags{};
    /** Path of the package file on the local disk, once there is one. */
    QString localFile;
    /** The flag given to DownloadManager::installLater, stored for the host application. */
    bool confirmInstall = false;
    /** Package file type, such as "zip" or "tar.gz"; see DownloadManager::parsePackageSuffix. */
    QString packageType;
    /** Free text for the user. */
    QString comment;

    /** The name to show: publicName if @p usePublic and there is one, else name. */
    QString displayName(bool usePublic) const;

    /**
     * The release to show: publicRelease if @p usePublic and there is one, else the formatted
     * release, else publicRelease, whatever @p usePublic says.
     */
    QString displayReleaseVersion(bool usePublic) const;

    /** The release time as text, without the time of day if that is exactly midnight. */
    QString timeToString(Qt::DateFormat format) const;

    /** Whether packageType is one of the three that isInstallable(const QString&) knows. */
    bool isInstallable() const;

    /**
     * Whether @p suffix is "zip", "exe" or "msi", ignoring case.
     *
     * Unrelated to the package types that SoftwareUpdateClient installs.
     */
    static bool isInstallable(const QString& suffix);

    /**
     * The identity of the package, the key of the update history: "1-", the ISO form of date, "-"
     * and fileSize. Name, type and release are no part of it.
     */
    QString stringID() const;

    /** Whether both have the same stringID(), even when every other field differs. */
    bool operator==(const PackageInfo& other) const;

    /** The file name in url, without a query; empty when the path ends in a slash. */
    QString fileName() const;

    /** Always true: each argument is searched in itself. The record is not looked at. */
    bool matchesPackage(const QString& first, const QString& second) const;

    /**
     * The ordering filter: tests release, status, date and languages by plain text and time order.
     *
     * The release must sort above the filter's, as text, so that "9.0" is above "10.0"; the status
     * must not sort above the filter's; the date must not be earlier. A package that shares a
     * language with the filter is refused, one that shares none passes.
     */
    bool matchesFilter(const PackageInfo& filter) const;

    /**
     * The strict filter: whether candidateRefusal() finds nothing against the package.
     *
     * It tests other fields than matchesFilter() and by other rules; the two are kept apart.
     */
    bool filterPackageCandidate(const PackageInfo& filter,
                                const QStringList& allowedFileTypes) const;

    /**
     * Names the first test that refuses the package, in the order of CandidateRefusal.
     *
     * @param filter name and status must be equal, the release strictly older as VersionNumber, and
     *        StringUtils::intersectsOnBeginning must hold for its platforms and the package's.
     * Type, date and languages are not looked at.
     * @param allowedFileTypes must contain packageType, case-sensitively; empty allows every type.
     *
     * For many packages and one filter CandidateMatcher answers the same, faster.
     */
    CandidateRefusal candidateRefusal(const PackageInfo& filter,
                                      const QStringList& allowedFileTypes) const;

    /** Plain text order of two releases: below, equal to or above zero. "10.0" is below "9.0". */
    static int compareVersion(const QString& a, const QString& b);

    /** The opposite order of compareVersion(), for lists with the newest first. */
    static int compareRelease(const QString& a, const QString& b);

    /**
     * Whether this package beats @p other: by a release that sorts above, or else by a status that
     * sorts below, or else by a later date.
     *
     * Three alternatives and no ranking: of two packages each can beat the other.
     */
    bool isBetterMatch(const PackageInfo& other) const;

    /**
     * The URL for @p language, else for its first two characters, else the same for
     * @p fallbackLanguage, else the first of the map, else an empty one.
     */
    static QUrl translatedUrl(const UrlMap& urls, const QString& language,
                              const QString& fallbackLanguage);

    /** translatedUrl() among the release notes. */
    QUrl releaseNotesUrl(const QString& language, const QString& fallbackLanguage) const;

    /** translatedUrl() among the readme files. */
    QUrl readmeUrl(const QString& language, const QString& fallbackLanguage) const;

    /**
     * Every type in @p list once, in no particular order.
     *
     * @param translated translates each in the context "Download", for which the host application
     *        may install a translator.
     */
    static QStringList allTypes(const PackageInfoList& list, bool translated);

    /** Every language word in @p list once, in no particular order. @p translated is ignored. */
    static QStringList allLanguages(const PackageInfoList& list, bool translated);

    /** Every platform word in @p list once, in no particular order. @p translated is ignored. */
    static QStringList allPlatforms(const PackageInfoList& list, bool translated);

    /** Every release in @p list once, as allTypes() returns the types. */
    static QStringList allReleases(const PackageInfoList& list, bool translated);
};

} // namespace vx

Q_DECLARE_METATYPE(vx::PackageInfo)
// In full, because a list would otherwise register itself as "QList<vx::PackageInfo>".
Q_DECLARE_METATYPE(vx::PackageInfoList)
