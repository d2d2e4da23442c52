#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

#include "package/PackageInfo.h"
#include "trust/internal/PackageDigests.h"

class QProgressDialog;

namespace vx {

class DownloadManager;

/** A file that is what the user confirmed, of the type that it had then. */
struct VerifiedPackage
{
    QString path;
    QString packageType;
};

/**
 * What a client has to remember where signatures are required: a child that it gets when it is
 * first needed, and that goes with it.
 */
class ClientTrust : public QObject
{
    Q_OBJECT

public:
    /** Given a file that was refused and the reason for the user. */
    using Refusal = std::function<void(const QString& path, const QString& reason)>;

    /** The one of @p client, which is made if need be. */
    static ClientTrust& of(QObject* client);

    /** The rows on offer are from now on those of a catalogue that nobody verified. */
    static void forgetOffered(const QObject& client);

    /** The rows on offer are from now on those of a catalogue that says this of its packages. */
    void setOffered(const PackageDigests& offered) { m_offered = offered; }

    /**
     * The user has confirmed that @p package is to be installed from the file @p path. What the
     * catalogue on offer says of it counts, whatever later checks bring.
     */
    void confirm(const QString& path, const PackageInfo& package);

    /** Listens which file @p manager downloads, and keeps @p dialog open for the verification. */
    void follow(DownloadManager* manager, QProgressDialog* dialog);

    /**
     * Finds out whether the file whose download has ended is what the user confirmed, and calls
     * the client's downloadFinished() again if so.
     *
     * @param latestPath the file, if its download was not followed.
     * @param dialog shows the progress and may cancel it; may be null.
     * @param refuse called if it is not, at once or from the event loop. A file is never executed
     *     or opened without one of the two.
     */
    void verify(const QString& latestPath, QProgressDialog* dialog, const Refusal& refuse);

    /** The verified file for which downloadFinished() is being called again, if it is. */
    std::optional<VerifiedPackage> takeVerified();

public slots:
    /** The download of the file @p path is complete. */
    void noteDownloaded(const PackageInfo& package, const QString& path);

private:
    struct Confirmed
    {
        PackageDigest digest;
        QString packageType;
    };

    explicit ClientTrust(QObject* client);
    void goOn(const VerifiedPackage& package);

    PackageDigests m_offered;
    QHash<QString, Confirmed> m_confirmed;
    QString m_downloadedFile;
    std::optional<VerifiedPackage> m_verified;
};

} // namespace vx
