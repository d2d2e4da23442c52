#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <ctime>
#include <vector>

#include "host/FileFormatsZip/ArchiveEntry.h"

namespace vx {

/** A folder to be there. Paths are relative to the target folder, in UTF-8. */
struct PlannedFolder
{
    QByteArray path;
    bool isListed = false; ///< an entry of its own gives mode and time
    unsigned mode = 0755;
    timespec modified = {};
    bool isMade = false; ///< the job made it, so that the job may remove it
};

/** A file to be written. */
struct PlannedFile
{
    RecordRange record; ///< its place in the directory of the archive
    int folder = 0;     ///< index among the planned folders
    QByteArray name;
    qint64 size = 0;
    unsigned mode = 0;
    timespec modified = {};
    bool isMade = false;
};

/** A symbolic link to be made. */
struct PlannedLink
{
    int folder = 0;
    QByteArray name;
    QString target;
    timespec modified = {};
    bool isMade = false;
};

/**
 * What a job is going to make, decided before anything is written.
 *
 * Everything that the directory of the archive shows to be unacceptable is refused here: names that
 * lead out, two entries of one name, a file where a folder is needed, entries that lie behind a
 * link, special and encrypted entries, unknown methods.
 */
class ExtractionPlan
{
public:
    enum Kind { Nothing, Folder, File, Link };

    /** What is planned at a path, and its index among its kind. */
    struct Node
    {
        Kind kind = Nothing;
        int index = 0;
    };

    /**
     * Plans to unpack @p entries, all of an archive or some.
     *
     * @param flat drops the folders: all files and links go directly into the target folder.
     * @throws IOException
     */
    ExtractionPlan(const ArchiveIndex& entries, bool flat);

    std::vector<PlannedFolder> folders; ///< parents before children; the first is the target itself
    std::vector<PlannedFile> files;     ///< in the order of their data in the archive
    std::vector<PlannedLink> links;

    /** Bytes of all files together. */
    qint64 totalSize() const { return m_totalSize; }

    /** What is planned at the path made of @p parts; of kind Nothing if there is nothing. */
    Node find(const QStringList& parts) const;

private:
    void add(const ArchiveEntry& entry, bool flat);
    void addFolder(const ArchiveEntry& entry, const QStringList& parts);
    void addFile(const ArchiveEntry& entry, int folder, const QByteArray& name);
    void addLink(const ArchiveEntry& entry, int folder, const QByteArray& name);
    int requireFolder(const QStringList& parts, const QString& wantedBy);
    void occupy(const QStringList& parts, const Node& node, const QString& name);

    QHash<QString, Node> m_nodes;
    qint64 m_totalSize = 0;
};

} // namespace vx
