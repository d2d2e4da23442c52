#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QHash>
#include <QIODevice>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QtXml/QDomElement>
#include <QtXml/QDomNode>

#include "SoftwareUpdateClientExport.h"
#include "download/PendingInstall.h"
#include "host/NetworkHttp/HttpClient.h"
#include "host/NetworkHttp/HttpHost.h"
#include "host/NetworkHttp/RequestData.h"
#include "package/PackageInfo.h"

namespace vx {

class Unzipper;

/**
 * The engine: queries an update server, reads its catalogue, selects packages, downloads, unpacks
 * and launches them.
 *
 * Everything runs on the event-loop thread of the object. Queries and downloads return at once and
 * end in signals; one HTTP client serves both, and nothing prevents a second request while one
 * runs. The static operations keep no state and may be called anywhere.
 *
 * The object stores nothing by itself (see storeHistory()). It may be destroyed at any time, also
 * by a slot of any of its signals; what is running then ends unheard, without downloadAborted().
 *
 * It stays outside of UpdateTrust: its queries, downloads and launching operations verify no
 * signature and no digest, also where a host requires them of the client.
 */
class SOFTWAREUPDATECLIENT_EXPORT DownloadManager : public QObject
{
    Q_OBJECT

public:
    /**
     * What travels with a query or a package download, in the userData of the client's request: the
     * query's filter, or the package being downloaded. The result slot deletes it.
     */
    struct RequestData : PackageInfo
    {
        /** The object to call when a query ends. Not read for downloads. */
        QObject* callbackReceiver = nullptr;
        /** The method to call on it, or null for no callback. Not read for downloads. */
        const char* callbackSlot = nullptr;
    };

protected:
    /** Performs all requests, one after the other set to the host of each. */
    HttpClient httpClient;
    /** The update server and its proxy; what server() returns. */
    HttpHost serverHost;
    /** URL path of the server. Kept up to date and read by nothing: queries have an empty path. */
    QString serverPath;
    /** When the last answer to a query arrived; null until then. */
    QDateTime lastCheck;
    /** What isRegularCheck() returns. */
    bool regularCheck = false;
    /** The raw text of the last answer, or of the file that loadHistory() read. */
    QByteArray lastCatalogue;
    /** PackageInfo::stringID of each package seen, with the time of its first sight. */
    QHash<QString, QDateTime> updateHistory;
    /** The last "set-cookie" header of an answer. Stored, and never sent back or read. */
    QString serverCookie;
    /** The unpacking job, or null. Never deleted and never null again once it is set. */
    Unzipper* unzipper = nullptr;
    /** What installLater() was given. */
    PendingInstall pendingInstall;

public:
    /** Queries @p host. @p path is remembered and not used. Regular checks are on. */
    DownloadManager(const HttpHost& host, const QString& path);

    /** Queries the server at @p url; see setServer(). Regular checks are on. */
    explicit DownloadManager(const QUrl& url);

    /**
     * Queries the server that loadHistory() finds in @p settings.
     *
     * @param catalogueFile path of the stored catalogue; empty for none.
     */
    DownloadManager(QSettings& settings, const QString& catalogueFile);

    /** Has no server, and never raises downloadStarted() or downloadProgress(). */
    DownloadManager();

    ~DownloadManager() override;

    /** The update server with its proxy preference and proxy. */
    const HttpHost& server() const;
    /** The same, for changes, which the next query follows. */
    HttpHost& server();

    /** Sets the update server, and the proxy preference back to 2. The next query follows. */
    void setServer(const QUrl& url);

    /**
     * Sets the proxy and remembers it in HttpAccessHistory::proxies, unless @p preference is 0 or
     * the address is empty.
     *
     * @param address host and port; the port is 80 if no port is given.
     */
    void setProxy(HttpHost::ProxyPreference preference, const QString& address);

    /** The address that a query asks. */
    QUrl queryUrl() const;

    /** Whether the package of installPackage() is on disk and exactly as large as it should be. */
    bool hasInstallPackage() const;

    /** The package that waits to be installed; empty until installLater(). */
    const PackageInfo& installPackage() const;
    /** The same, for changes. */
    PackageInfo& installPackage();

    /**
     * Reads server, flags, catalogue file and history from the group "Download" of @p settings.
     * Items first seen more than two years ago are dropped. What is already in memory stays.
     *
     * @param catalogueFile path of the stored catalogue; an empty or missing one is not read.
     */
    void loadHistory(QSettings& settings, const QString& catalogueFile);

    /**
     * Writes what loadHistory() reads. The group of @p settings is afterwards what it was.
     *
     * @param catalogueFile path to store the catalogue at; nothing is written if either is empty.
     */
    void storeHistory(QSettings& settings, const QString& catalogueFile);

signals:
    /** A query brought @p allPackages, the whole catalogue in its order, known ones marked. */
    void packageFound(const PackageInfoList& allPackages);
    /** A query brought no package, or nothing that could be read. */
    void noPackageFound();
    /** A query starts at the server @p url. */
    void queryStarted(const QString& url);
    /** A query has ended, after its other signals. */
    void queryFinished();
    /** The transfer of @p pack into @p fileName begins. */
    void downloadStarted(const PackageInfo& pack, const QString& fileName);
    /** @p bytes of @p totalBytes are here, as the client counts them. */
    void downloadProgress(int bytes, int totalBytes);
    /** @p pack, its localFile set, is in @p fileName. Followed by downloadSuccess(). */
    void downloadSuccess(const PackageInfo& pack, const QString& fileName);
    /** The download has ended well. */
    void downloadSuccess();
    /** @p fileName came out shorter than @p pack says. Followed by downloadFailure(int). */
    void downloadFailure(const PackageInfo& pack, const QString& fileName);
    /** The download ended short, with this HTTP status, which may be 200. */
    void downloadFailure(int httpStatusCode);
    /** abortDownload() was called, whether or not anything was running. */
    void downloadAborted();
    /** The release notes at @p url; an empty @p text if there were none to be had. */
    void releaseNotesDownloaded(const QUrl& url, const QString& text);
    /** The archive is unpacked to the path given. */
    void unzippingDone(const QString& path);

public slots:
    /**
     * Asks the server for its catalogue; the arguments become the fields of a filter.
     *
     * The whole catalogue is delivered, whatever the filter says.
     */
    void queryUpdate(const QString& filterTypes = QString(), const QString& filterNames = QString(),
                     const QString& filterReleaseVersion = QString(),
                     const QString& filterReleaseStatus = QString(),
                     const QDateTime& filterTime = QDateTime(),
                     const QStringSet& filterPlatform = QStringSet(),
                     const QStringSet& filterLanguages = QStringSet(),
                     QObject* callbackReceiver = nullptr, const char* callbackSlot = nullptr);
    /**
     * Asks the server for its catalogue. Answered by packageFound() or noPackageFound(), then
     * queryFinished(), then the callback.
     *
     * @param callbackReceiver the object to call through the event loop. If it is destroyed before,
     * there is no callback.
     * @param callbackSlot a method that takes a PackageInfoList; null for no callback. The text
     * must outlive the query.
     */
    void queryUpdate(const PackageInfo& filter, QObject* callbackReceiver = nullptr,
                     const char* callbackSlot = nullptr);
    /** The packages of the last catalogue; the filter made of the arguments is ignored. */
    PackageInfoList recentPackages(const QString& filterTypes = QString(),
                                   const QString& filterNames = QString(),
                                   const QString& filterReleaseVersion = QString(),
                                   const QString& filterReleaseStatus = QString(),
                                   const QDateTime& filterTime = QDateTime(),
                                   const QStringSet& filterPlatform = QStringSet(),
                                   const QStringSet& filterLanguages = QStringSet()) const;
    /** The packages of the last catalogue, in its order, all known. @p filter is ignored. */
    PackageInfoList recentPackages(const PackageInfo& filter) const;
    /** queryUpdate() for the type "system". @p filterLanguages goes into the filter's platforms. */
    void queryCameraFirmwareUpdate(const QString& filterVersion = QString(),
                                   const QString& filterRelease = QString(),
                                   const QStringSet& filterLanguages = QStringSet());
    /** Whether a query or a download is running. */
    bool isQueryBusy() const;
    /** The flag that setRegularCheck() keeps. Nothing here acts on it. */
    bool isRegularCheck() const;
    /** Stores the flag and returns the previous one. */
    bool setRegularCheck(bool value);
    /**
     * Fetches @p pack into @p fileName, from port 80 of the host of its URL.
     *
     * Success is a file of at least PackageInfo::fileSize bytes. With a fileSize of 0 nothing is
     * reported.
     */
    void startDownload(const PackageInfo& pack, const QString& fileName);
    /** Fetches the text at @p url; ends in releaseNotesDownloaded(). */
    void downloadReleaseNotes(const QUrl& url);
    /** Remembers @p info, with this flag in it, for a later installation. */
    void installLater(const PackageInfo& info, bool confirmInstall);
    /** Remembers these four for a later installation; other fields of the package stay. */
    void installLater(const QString& packageFile, const QString& updaterExe,
                      const QString& targetFolder, const QString& applicationExe = QString());
    /** Starts unpacking @p packageFile into a new temporary folder, once in the object's life. */
    void unzipPackage(const QString& packageFile);
    /** The job has unpacked to the path given: deletes the archive and raises unzippingDone(). */
    void unzippingFinished(const QString& path);
    /** The job failed: shows the reason in a modal message box. */
    void unzippingFailed(const QString& reason);
    /** Cancels whatever is running and raises downloadAborted(). */
    void abortDownload();
    /**
     * Replaces the running process with the update helper at @p updateApplicationPath, which is
     * told the other three. Returns only if that fails.
     */
    static void startUpdate(const QString& updateApplicationPath, const QString& installationPath,
                            const QString& tempApplicationPath, const QString& newApplication);
    /**
     * Runs @p installerFile if its name ends in "zip".
     *
     * @throws ExceptionQt for every other file, IOException if unpacking fails.
     */
    void runInstaller(const QString& installerFile);

protected slots:
    /** Takes the answer to a query: delivers it, keeps its text and raises queryFinished(). */
    void queryResult(RequestPtr resp);
    /**
     * Parses @p input, marks what is known, and delivers the packages to callback and signals.
     *
     * @param data the query's filter and callback; null for neither. It stays the caller's.
     */
    void queryResult(QIODevice* input, RequestData* data);
    /** Raises downloadStarted() if @p resp is a package download. */
    void downloadStarting(RequestPtr resp);
    /** Judges a finished download by the size of its file, and frees file and record. */
    void downloadResult(RequestPtr resp);
    /** Hands on the text of release notes, empty unless the status is 200. */
    void releaseNotesResult(RequestPtr resp);
    /** Unpacks @p installerFile over a folder that the user picks. @throws IOException. */
    void runZipInstaller(const QString& installerFile);
    /**
     * The main program below @p dir as a relative path; empty if there is none.
     *
     * The largest executable file of a folder, or else that of its first folder which has any.
     * Hidden ones count; links to folders are followed, but not out of @p dir.
     */
    QString findDefaultExecutable(const QDir& dir);
    /**
     * Reads the packages of the set @p elm, then those of its nested sets, each in document order.
     *
     * @param elm any element of any document; its tree is as before when the call returns, and must
     *        not be touched by anyone else meanwhile.
     * @param result is appended to.
     */
    static void parseSet(const QDomElement& elm, PackageInfoList& result);
    /** Fills @p info from the package @p elm and everything that encloses it. */
    static void parsePackage(const QDomElement& elm, PackageInfo& info);
    /**
     * The value of @p tagname nearest to @p elm on the way from startSearchAt() to the root; at one
     * level an element goes before an attribute. An empty value ends the search, too.
     */
    static QString findString(const QDomNode& elm, const QString& tagname);
    /**
     * Adds to @p result the words of every @p tagname on the way from startSearchAt() to the root.
     *
     * @return how many elements and attributes were read.
     */
    static int findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result);
    /**
     * Adds to @p result the URL of every @p tagname on the way from startSearchAt() to the root,
     * under its language, "en" if none is given anywhere.
     *
     * @return how many elements and attributes were read.
     */
    static int findAllTranslatedUrls(const QDomNode& elm, const QString& tagname, UrlMap& result);
    /**
     * One best package of @p allPackages per type and platform, in no particular order.
     *
     * Best is what PackageInfo::isBetterMatch says, by text, so that the order of the input decides
     * between packages that beat each other. Only packages that pass matchesFilter() take part.
     */
    PackageInfoList findBestMatches(const PackageInfoList& allPackages,
                                    const PackageInfo& filter) const;

public:
    /** Address of the default update server, used where stored settings name none. */
    static const QString UPDATE_URL;

    /** @name Names in the catalogue
     * All but the first four may be written as an element or as an attribute. @{ */
    static const QString DOCUMENT_TAG;           ///< the root; a root of any name is read
    static const QString PACKAGE_SET;            ///< groups packages, nests
    static const QString PACKAGE;                ///< one package
    static const QString FILE;                   ///< where the search for a package's fields begins
    static const QString TYPE;                   ///< PackageInfo::type
    static const QString NAME;                   ///< PackageInfo::name
    static const QString NAME_PUBLIC;            ///< PackageInfo::publicName
    static const QString RELEASE_NOTES;          ///< PackageInfo::relNotes
    static const QString README;                 ///< PackageInfo::readme
    static const QString LANGUAGE;               ///< PackageInfo::languages, language of a URL
    static const QString RELEASE_VERSION;        ///< PackageInfo::release
    static const QString RELEASE_VERSION_PUBLIC; ///< PackageInfo::publicRelease
    static const QString RELEASE_STATUS;         ///< PackageInfo::status
    static const QString RELEASE_DATE;           ///< PackageInfo::date
    static const QString URL;                    ///< PackageInfo::url behind BASE_URL, or a URL
    static const QString BASE_URL;               ///< PackageInfo::url in front of URL
    static const QString FILE_SIZE;              ///< PackageInfo::fileSize
    static const QString PLATFORM;               ///< PackageInfo::platforms
    static const QString COMMENT;                ///< PackageInfo::comment
    /** @} */

    /** Meta-type ids of PackageInfo and PackageInfoList, registered when the library is loaded. */
    static const int qMetaTypes[2];

    /**
     * Reads a whole catalogue.
     *
     * @param device open for reading; it stays the caller's.
     * @return the packages of each set before those of its nested sets; empty, with one log line at
     *         level 2, if the document cannot be parsed.
     */
    static PackageInfoList parseXML(QIODevice* device);

    /** Where the search for fields begins: the first FILE element of @p elm, or else @p elm. */
    static QDomNode startSearchAt(const QDomNode& elm);

    /**
     * Reads a size in bytes: a number alone, or one followed by "MB" or "kB" in any case, which are
     * 1048576 and 1024 bytes. Fractions of a unit are cut off before it is applied, and what then
     * does not fit into the result loses its highest bits.
     *
     * @return 0 for what is no number, is negative or has a number too large for the type.
     */
    static quintptr parseFileSize(const QString& text);

    /**
     * Reads "yyyy-MM-dd hh:mm:ss" or "yyyy-MM-dd", in local time.
     *
     * @return an invalid time for any other text.
     */
    static QDateTime parseReleaseDate(const QString& text);

    /**
     * The package type in the URL @p name: what follows its last dot, except for "mpkg" of
     * ".mpkg.zip", "tar.gz" and "tar.bz2". Case matters, and a query is not cut off.
     *
     * A result shorter than 3 or longer than 7 characters is logged, and returned nevertheless.
     */
    static QString parsePackageSuffix(const QString& name);

    /**
     * The packages of the newest release among those that pass the filter.
     *
     * @param allPackages is changed: every package that passes, of the newest release or not, gets
     *        @p categoryTag as its type.
     * @param filter see PackageInfo::filterPackageCandidate.
     * @param allowedFileTypes package types to accept; empty accepts all.
     * @return copies in list order. Releases count as the same only if their texts are equal.
     */
    static PackageInfoList findPackageCandidates(PackageInfoList& allPackages,
                                                 const PackageInfo& filter,
                                                 const QString& categoryTag,
                                                 const QStringList& allowedFileTypes);

    /** Removes every package that equals an earlier one, by PackageInfo::operator==. */
    static void eliminateDuplicatePackages(PackageInfoList& list);

    /** How many packages of @p list are not known. */
    static int countNew(const PackageInfoList& list);
};

} // namespace vx
