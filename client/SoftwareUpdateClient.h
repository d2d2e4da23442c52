#pragma once

#include <QNetworkProxy>
#include <QObject>
#include <QSettings>
#include <QString>

#include "SoftwareUpdateClientExport.h"
#include "client/SoftwareUpdateSettings.h"
#include "dialogs/SoftUpIndexList.h"
#include "host/Core/VersionNumber.h"
#include "package/PackageInfo.h"

class QNetworkAccessManager;
class QNetworkReply;
class QProgressDialog;
class QTimer;
class QUrl;
class QWidget;

namespace vx {

class DownloadManager;
class SoftwareUpdateAvailableDialog;
class SoftwareUpdateDialog;
struct SoftwareUpdateDialogSettings;

/**
 * Keeps an application, and the cameras it manages, up to date.
 *
 * The host creates one object, on the thread of its event loop, and from then on drives it through
 * the public slots. The object checks by itself once an hour whether a check is due, fetches the
 * catalogue from the update server, and opens a dialog when the catalogue offers something newer.
 * A check in the background never opens a window for anything else.
 *
 * It keeps no settings in memory: each operation reads them from the application's store and writes
 * them back, so that the store can be changed between any two calls. Failures are shown in the
 * settings dialog if that is open, and are logged; no operation throws.
 *
 * The object has no QObject parent; whoever creates it deletes it. Deleting it stops its timers and
 * nothing else: a request on its way is dropped unheard, and dialogs that are open stay with their
 * parents. Close them first, or let them go with the window they belong to. All of it belongs to
 * the event loop's thread; two objects must not be constructed at once.
 */
class SOFTWAREUPDATECLIENT_EXPORT SoftwareUpdateClient : public QObject
{
    Q_OBJECT

public:
    /**
     * Format of the settings store, QSettings::NativeFormat unless the host assigns another before
     * the first use of the store. The library never assigns it.
     */
    static QSettings::Format sSoftUpQSettingsFormat;

    /** Scope of the settings store, QSettings::UserScope by default. As sSoftUpQSettingsFormat. */
    static QSettings::Scope sSoftUpQSettingsScope;

    /**
     * Completes the stored record, writes it back, and starts the hourly timer if the record asks
     * for checks, which it does on a first run. Nothing is requested before the timer's first tick.
     *
     * @param product name of the product; replaces the stored one.
     * @param version version of the running application; replaces the stored one unless it is
     *        default-constructed.
     * @param serverURL address of the update server; taken only while the store holds none, so that
     *        what the user entered survives.
     * @param parent parent of the dialogs, not of this object; may be null. It is not owned and
     * must outlive this object, or be replaced with setParent() before it goes.
     *
     * The store is that of QCoreApplication's organisation and application names, with "Veldrix"
     * and "softwareUpdate" in place of an empty one: set the names first.
     */
    SoftwareUpdateClient(const QString& product, VersionNumber version, const QString& serverURL,
                         QWidget* parent);

    /** Stops the timers. Requests, dialogs and downloads are left as they are. */
    ~SoftwareUpdateClient() override;

    /**
     * Clears @p record and fills it from the store. A value that is absent or can't be read yields
     * the default that the field's description names.
     */
    void getCurrentSettings(SoftwareUpdateSettings* record);

    /**
     * Writes @p record to the store. Writing adds and replaces, and never removes: a field that its
     * description calls "never written" in its present state leaves the stored value as it was. A
     * store that can't be written is not noticed.
     *
     * A damaged store may hold times of a time zone that does not exist, on which Qt crashes when
     * it writes the file. Wherever one stands in the user's own file, also among the application's
     * keys, a null time replaces it. Values of the system and the organisation are left alone.
     */
    void setCurrentSettings(const SoftwareUpdateSettings* record);

public slots:
    /**
     * Checks now. With the settings dialog open the address is the one shown there, saved or not;
     * otherwise it is the stored one, and nothing happens while the store says not to check. The
     * time is stored as that of the latest check once the request has left, whatever its outcome.
     */
    void checkForUpdate();

    /**
     * Checks after @p millisecondsDelay, or at once if that is below 1. Does nothing while the
     * store says not to check, nor if the settings dialog is open when the time comes: such a check
     * is dropped and not postponed.
     */
    void checkForUpdate(int millisecondsDelay);

    /**
     * For hosts to call once at their start, without which the interval "At application start" has
     * no effect. Does checkForUpdate(int) if that interval is chosen, and nothing with any other.
     *
     * @param msDelay delay in milliseconds.
     */
    void doInitialCheck(int msDelay = 0);

    /**
     * Opens the settings dialog without waiting for it. If it is already open it is filled anew
     * from the store, changes not yet applied are lost, and the arguments are ignored.
     *
     * @param flags window flags of the dialog; none set means those of setWindowFlags().
     * @param modal whether the dialog blocks the windows behind it.
     */
    void queryForUpdate(Qt::WindowFlags flags = Qt::WindowFlags(), bool modal = true);

    /** Starts the hourly timer. Not stored, so the store may still refuse the check itself. */
    void enableSoftwareUpdate();

    /** Stops the hourly timer. Not stored: the next object follows the store again. */
    void disableSoftwareUpdate();

    /** Stores the version of the running application. A default-constructed one changes nothing. */
    void setVersionNumber(const VersionNumber& version);

    /**
     * Stores the cameras whose firmware later checks look for. An empty list changes nothing: the
     * cameras stored before stay in force, since writing never removes.
     */
    void setCurrentCameraVersions(const SoftUpCurrentCameraVersions& list);

    /** Sets the parent of dialogs yet to open; null for none. Not owned, and not a QObject parent.
     */
    void setParent(QWidget* parent);

    /** Sets the window flags of dialogs and message boxes yet to open. */
    void setWindowFlags(Qt::WindowFlags flags);

private slots:
    void updateAvailable();
    void doBackgroundCheck();
    void applyDialogSettings(const SoftwareUpdateDialogSettings& dialogSettings);
    void downloadUrls(SoftUpIndexList itemIndexes);
    void downloadReleaseNotes(SoftUpIndexList itemIndexes);
    void downloadProgress(int value, int total);
    void downloadError(int httpStatusCode);
    void installPackage(int itemIndex);
    QList<int> determineForeignLanguageRows(const PackageInfoList& list);
    void downloadFinished();
    void abortDownload();
    void evaluateServerResponse(QNetworkReply* reply);
    void requestTimeout();
    void requestError(const QString& errorText);
    void queryLastUpdate(int delay = 0);
    void deleteUpdateDialog();
    void deleteUpdateAvailableDialog();
    void deleteNetworkmanager();
    void deleteProgressDialog();
    void startZipInstall();
    void unzippedMPKGPackage(const QString& unzippedFilePath);
    void manageUpdateAvailableDialog(SoftUpIndexList indexList);
    void showHideForeignLanguageItems(bool state);
    void setUpdateAvailableNull(QObject* obj = nullptr);
    void setUpdateDialogNull(QObject* obj = nullptr);
    void openSettingsDialogFromUpdateAvailableDialog();

protected:
    /**
     * Reads a catalogue and leaves in the package list what concerns this installation: first the
     * application's candidates, then those of the cameras.
     *
     * @return 1 if there was no package in the reply at all, which the user has then been told;
     *         otherwise 0.
     */
    int parseServerResponse(QNetworkReply* reply);

    /** Requests @p url as it stands and starts the 15000 ms within which it must finish. */
    void performUpdateCheck(const QUrl& url);

    /** The node database's global proxy, or explicitly none. The system's own is never used. */
    QNetworkProxy networkProxy();

    /** Ends a check that found nothing newer. */
    void productUpToDate();

    /** The status to require of packages: none (empty) if @p flag is set, otherwise "STABLE". */
    QString transformReleaseStatus(bool flag) const;

    /** Starts the downloaded file as a program of its own. */
    void installEXEPackage();
    /** Unpacks the downloaded file and opens each installer bundle found in it. */
    void installMPKGPackage();
    /** Unpacks the downloaded file and offers to restart through the update helper. */
    void installZIPPackage();
    /** Only logs. */
    void installMSIPackage();
    /** Only logs. */
    void installDEBPackage();
    /** Only logs. */
    void installRPKPackage();
    /** Only logs. */
    void installTARGZPackage();

private:
    QWidget* parentWidget;
    QNetworkAccessManager* networkManager;
    QTimer* requestTimer;
    QTimer* checkTimer;
    PackageInfoList packageList;
    SoftUpIndexList installIndexes;
    SoftwareUpdateDialog* updateDialog;
    SoftwareUpdateAvailableDialog* updateAvailableDialog;
    QProgressDialog* progressDialog;
    QString downloadFilePath;
    // Never assigned: the update helper is given an empty folder and finds out for itself.
    QString unzipTargetPath;
    Qt::WindowFlags windowFlags;
    DownloadManager* unzipManager;
    // Part of the object's layout; no operation reads or writes them.
    QString spareTextA;
    QString spareTextB;
};

} // namespace vx
