#pragma once

#include <QByteArray>
#include <QHash>
#include <QPair>
#include <QStringList>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/internal/read/Archive.h"

namespace vx {

/** A file, folder or link to be made. It knows no path, which would grow with its depth. */
struct PlannedItem
{
    int parent = 0; ///< index of the folder among the planned items
    QByteArray name;
    ArchiveEntry::Kind kind = ArchiveEntry::Folder;
    const ArchiveEntry* entry = nullptr; ///< none of a folder that is needed only
    bool isMade = false;                 ///< the job made it, so that the job may remove it
};

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
    /**
     * Plans to unpack @p entries, all of an archive or some, in the order of their data; to be
     * called once. They must outlive the plan. If @p flat, all files and links go directly into the
     * target folder. Throws IOException, and Canceled once @p canceled is set.
     */
    void add(const std::vector<const ArchiveEntry*>& entries, bool flat,
             const std::atomic<bool>& canceled);

    /** Folders before what is in them; the first is the target folder itself. */
    std::vector<PlannedItem> items = {PlannedItem()};

    /** The planned item of an index, which is never negative. */
    const PlannedItem& item(int index) const { return items[static_cast<size_t>(index)]; }

    /** Bytes of all files together. */
    qint64 totalSize() const { return m_totalSize; }

    /** The index of what is planned in a folder under @p name, or 0 if nothing is. */
    int find(int folder, const QString& name) const;

    /** The path of an item, relative to the target folder and in UTF-8. */
    QByteArray pathOf(int index) const;

private:
    void add(const ArchiveEntry& entry, bool flat);
    int requireFolder(const QStringList& parts, const QString& wantedBy);
    int append(int folder, const QString& name, ArchiveEntry::Kind kind, const ArchiveEntry* entry);

    /** Indices by the folder and the key of the name. */
    QHash<QPair<int, QString>, int> m_nodes;
    int m_folders = 0;
    qint64 m_totalSize = 0;
};

/**
 * Refuses a plan in which a symbolic link may lead out of the target folder. What a link points at
 * may begin with "..", as often as the link lies below the target folder and no oftener; behind
 * that it may only go down. As nothing is planned behind a link, each of them stands where its name
 * says, so that a way through any number of links stays inside, too. Links through links are in
 * order: shared libraries and frameworks are built of them. So are links to nothing.
 *
 * What leads in a circle is refused as well, and what leads through a link that @p target holds
 * already, for nobody knows where that one leads. Throws IOException or Canceled.
 */
void requireLinksInside(const ExtractionPlan& plan, const FileDescriptor& target,
                        const std::atomic<bool>& canceled);

} // namespace vx
