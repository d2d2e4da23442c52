#pragma once

#include <QObject>
#include <QString>

#include <memory>

#include "host/FileFormatsZip/FileFormatsZipExport.h"

namespace vx {

/**
 * Unpacks a whole ZIP archive in the background and reports once.
 *
 * The job starts by itself, on threads of its own, when control is back in the event loop of the
 * thread that made the object; so connections made after the constructor miss nothing. It reports
 * on that thread by exactly one of its two signals. Its rules for what it writes are those of
 * ZipReader::extractFiles().
 *
 * The object may be destroyed at any time. A running job is then cancelled, what it has unpacked is
 * removed, and nothing is reported. The destructor waits for that for 30 ms at most; what takes
 * longer goes on behind it. The end of the application cancels in the same way, and waits.
 */
class VX_FILEFORMATSZIP_EXPORT Unzipper : public QObject
{
    Q_OBJECT

public:
    /**
     * A job that unpacks the archive at @p zipFile, which is read when the job starts, and not
     * changed. @p targetFolder and @p flat are those of ZipReader::extractFiles().
     */
    Unzipper(const QString& zipFile, const QString& targetFolder, bool flat);
    ~Unzipper() override;

    /**
     * Deletes the archive from disk. Meant for the receiver of unzippingDone(); a running job is
     * not disturbed where an open file stays readable. False if there was nothing to delete, too.
     */
    bool removeZipFile();

signals:
    /** Everything is unpacked. @p path is the target folder, as it was given. */
    void unzippingDone(const QString& path);

    /** The same failed, and what had been unpacked is removed. @p reason is text for the user. */
    void unzippingFailed(const QString& reason);

private slots:
    void start();
    void report();
    void stop();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vx
