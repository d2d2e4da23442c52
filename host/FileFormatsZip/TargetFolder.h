#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ctime>

#include "host/FileFormatsZip/FileDescriptor.h"

namespace vx {

/**
 * The folder that a job unpacks into. All paths are relative to it, in UTF-8, and are walked part
 * by part without ever following a symbolic link, so that nothing outside can be reached whatever
 * the folder holds or comes to hold. libarchive's own writer is not used: it changes the umask of
 * the whole process while other threads run, and keeps no account of what it made.
 *
 * Any number of threads may use one object at once.
 */
class TargetFolder
{
public:
    /** Opens @p path, and makes it first if it isn't there. Throws IOException. */
    explicit TargetFolder(const QString& path);

    /** Removes the folder itself, if this object made it and it is empty. */
    void removeIfMade();

    /** Bytes that an ordinary user may still write; the largest number if that is unknown. */
    qint64 freeBytes() const;

    /** Whether a symbolic link stands at the path made of @p parts. */
    bool isLink(const QStringList& parts) const;

    /** Opens the folder at @p path; the empty path is the target itself. Invalid on failure. */
    FileDescriptor openFolder(const QByteArray& path) const;

    /** The same, but throws IOException on failure. */
    FileDescriptor requireFolder(const QByteArray& path) const;

    /** Makes a folder. Gives false if there is one already. Throws IOException. */
    bool makeFolder(const QByteArray& path);

    /** Removes an empty folder. A folder that isn't empty stays. */
    void removeFolder(const QByteArray& path);

private:
    QString m_path;
    bool m_isMade = false;
    FileDescriptor m_root;
};

/**
 * Sets mode and modification time of what @p descriptor has open. Throws IOException if the mode
 * can't be set; a file system that keeps no times is put up with.
 */
void setAttributes(const FileDescriptor& descriptor, unsigned mode, const timespec& modified,
                   const QByteArray& name);

} // namespace vx
