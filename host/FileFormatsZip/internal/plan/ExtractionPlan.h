#pragma once

#include <QByteArray>
#include <QHash>
#include <QPair>
#include <QString>
#include <QStringList>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/internal/read/ArchiveEntry.h"

namespace vx {

/** A folder to be there. It knows its parent and not its path, which would grow with its depth. */
struct PlannedFolder
{
    int parent = 0; ///< index among the planned folders
    QByteArray name;
    const ArchiveEntry* entry = nullptr; ///< gives mode and time; none if it is needed only
    bool isMade = false;                 ///< the job made it, so that the job may remove it
    bool isShut = false;                 ///< it has its final mode, which may keep its owner out
};

/** A file to be written, or a symbolic link to be made. */
struct PlannedItem
{
    int folder = 0; ///< index among the planned folders
    QByteArray name;
    const ArchiveEntry* entry = nullptr;
    bool isMade = false;
};

/** Entries of an archive. */
using EntrySelection = std::vector<const ArchiveEntry*>;

/**
 * What a job is going to make, decided before anything is written.
 *
 * Everything that the directory of the archive shows to be unacceptable is refused here: names that
 * lead out, two entries of one name, a file where a folder is needed, entries that lie behind a
 * link, special and encrypted entries, unknown methods. Names are in UTF-8.
 */
class ExtractionPlan
{
public:
    enum Kind { Nothing, Folder, File, Link };

    /** Folders to be planned, those without an entry included: a bound for memory and time. */
    static constexpr size_t mostFolders = 1000000;

    /** What is planned under a name, and its index among its kind. */
    struct Node
    {
        Kind kind = Nothing;
        int index = 0;
    };

    /**
     * Plans to unpack @p entries, all of an archive or some, in the order of their data. They must
     * outlive the plan.
     *
     * @param flat     drops the folders: all files and links go directly into the target folder.
     * @param canceled looked at between entries; once it is true, the plan stays incomplete.
     * @throws IOException
     */
    ExtractionPlan(const EntrySelection& entries, bool flat, const std::atomic<bool>& canceled);

    std::vector<PlannedFolder> folders; ///< parents before children; the first is the target itself
    std::vector<PlannedItem> files;     ///< in the order of their data in the archive
    std::vector<PlannedItem> links;

    /** Bytes of all files together. */
    qint64 totalSize() const { return m_totalSize; }

    /** What is planned in a folder under @p name; of kind Nothing if there is nothing. */
    Node find(int folder, const QString& name) const;

    /** The path of a folder, relative to the target folder and in UTF-8. */
    QByteArray pathOf(int folder) const;

private:
    void add(const ArchiveEntry& entry, bool flat);
    void addFolder(const ArchiveEntry& entry, const QStringList& parts);
    int requireFolder(const QStringList& parts, const QString& wantedBy);
    int requireFolder(int parent, const QString& name, const QString& wantedBy);
    int planFolder(int parent, const QString& name);
    void occupy(int folder, const QString& name, const Node& node, const QString& wantedBy);

    /** By the folder that they are in and the key of their name. */
    QHash<QPair<int, QString>, Node> m_nodes;
    qint64 m_totalSize = 0;
};

} // namespace vx
