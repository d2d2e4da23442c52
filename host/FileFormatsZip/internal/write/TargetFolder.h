#pragma once

#include <QByteArray>
#include <QString>

#include <ctime>

#include "host/FileFormatsZip/internal/FileDescriptor.h"

namespace vx {

/**
 * The folder that a job unpacks into. All paths are relative to it and in UTF-8. What is written
 * goes by a FolderCursor, so that nothing outside can be reached whatever the folder holds or comes
 * to hold.
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

    /** What stands at a path. */
    enum Found { Nothing, Link, Other };
    Found find(const QByteArray& path) const;

    /** The folder itself, open. */
    const FileDescriptor& root() const { return m_root; }

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
