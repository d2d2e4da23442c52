#pragma once

#include <QIODevice>
#include <QRegExp>
#include <QStringList>

#include <memory>

#include "host/FileFormatsZip/ZipDevice.h"

namespace vx {

/**
 * Reads a ZIP archive, synchronously: every operation returns when it is done. Stored and deflated
 * entries, Zip64 and archives with something in front of them (self-extracting ones) are read.
 * Names are taken as UTF-8 if they are valid UTF-8 and as code page 437 otherwise, whatever the
 * locale of the process.
 */
class VX_FILEFORMATSZIP_EXPORT ZipReader : public ZipDevice
{
    Q_OBJECT

public:
    /** A reader of the archive at @p path. Nothing is opened yet. */
    ZipReader(const QString& path, QObject* parent);
    ~ZipReader() override;

    /**
     * Opens the archive and reads its directory. Any @p mode but QIODevice::ReadOnly fails. Throws
     * nothing: a caller need not look at the result, for extractFiles() throws the reason.
     */
    bool open(QIODevice::OpenMode mode);

    /** Whether the archive was opened and its directory is sound. */
    bool isOpen() const;

    /**
     * The names of the entries in which @p pattern occurs, in the order of their data in the
     * archive; all for an empty pattern, and none if the reader is not open. Folders end in "/".
     */
    QStringList fileList(const QRegExp& pattern) const;

    /**
     * Unpacks entries into a folder.
     *
     * Permission bits (except setuid, setgid and sticky), symbolic links, empty folders and
     * modification times are kept. Nothing is written outside @p targetFolder, and nothing that is
     * there already is changed: an entry that would do either makes the call fail, before anything
     * is written where the directory of the archive shows it. The same goes for entries that are
     * encrypted, damaged, or neither file, folder nor symbolic link.
     *
     * When the user cancels the attached dialog, the call returns within 100 ms, throws nothing,
     * and leaves what it has unpacked so far, an unfinished file included; see wasCanceled().
     *
     * A dialog's events may destroy the reader: the work then ends as if it was cancelled, and the
     * call throws.
     *
     * @param names        entries as fileList() gives them. An unknown name is a failure.
     * @param targetFolder created if it does not exist; the folder above it must exist.
     * @param flat         puts every file directly into @p targetFolder, and makes no folders.
     * @throws IOException whose message names the reason in plain words. What the call has unpacked
     *                     is removed again; what was in the folder before stays.
     */
    void extractFiles(const QStringList& names, const QString& targetFolder, bool flat);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vx
