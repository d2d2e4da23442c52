#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unordered_map>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"

namespace vx {

namespace {

// Those without an entry included: a bound for memory and time.
constexpr int mostFolders = 1000000;

// As many as Linux follows before it speaks of a circle.
constexpr int mostHops = 40;

// Parts of targets to be walked for all links: four for each entry that an archive may hold.
constexpr qint64 mostSteps = 4000000;

void requireAcceptable(const ArchiveEntry& entry)
{
    const bool isFolder = entry.kind == ArchiveEntry::Folder;
    const bool isSpecial = entry.kind == ArchiveEntry::Special;
    const char* flaw = nameFlaw(entry.name);
    flaw = flaw != nullptr               ? flaw
           : isSpecial                   ? "is neither a file nor a folder nor a symbolic link"
           : entry.isEncrypted           ? "is encrypted"
           : !entry.isMethodSupported()  ? "is compressed by a method that is not supported"
           : isFolder && entry.size != 0 ? "is a folder, but has content"
           : entry.size < 0              ? "has an impossible size"
                                         : nullptr;
    if (flaw != nullptr) {
        refuse(entry.name, flaw);
    }
}

/** Where a link leads to, as far as that is planned or on disk already. */
struct End
{
    int folder = 0;         ///< a planned folder
    QByteArray below;       ///< the path from there of what is on disk and not planned
    bool isNowhere = false; ///< the way goes on to what is not there, or is a file
    int hops = 0;           ///< links on the way, itself included; 0 if it was not followed yet
};

/** Follows links as the system would, but on the plan. */
struct LinkWalker
{
    const ExtractionPlan& plan;
    const FileDescriptor& target;
    const std::atomic<bool>& canceled;
    std::unordered_map<int, End> ends = {}; ///< its elements stay in place when others are added
    qint64 steps = 0;

    /** The end of a link that was reached through @p depth others. */
    End endOf(int link, int depth)
    {
        End& known = ends[link];
        if (known.hops == 0) {
            known = follow(link, depth);
        }
        return known;
    }

    End follow(int link, int depth)
    {
        const QString& path = plan.item(link).entry->linkTarget;
        const char* const flaw = pathFlaw(path);
        if (flaw != nullptr) {
            refuseLink(link, QByteArray(", and what it points at ") + flaw);
        }
        End end;
        end.folder = plan.item(link).parent;
        end.hops = 1;
        requireFewHops(link, depth + end.hops);
        bool isGoingUp = true;
        for (const QString& part : nameParts(path)) {
            requireNotCanceled(canceled);
            if (++steps > mostSteps) {
                fail(QStringLiteral("The archive is refused: it takes more than %1 steps to follow "
                                    "its symbolic links.")
                         .arg(mostSteps));
            }
            const bool isUp = part == QLatin1String("..");
            isGoingUp = isGoingUp && isUp;
            if (isUp && (!isGoingUp || end.folder == 0)) {
                refuseLink(link, isGoingUp ? " that leads out of the folder"
                                           : " that leads up again behind a name");
            }
            if (isUp) {
                end.folder = plan.item(end.folder).parent;
            } else if (!end.isNowhere) {
                enter(link, part, depth, end);
            }
        }
        return end;
    }

    [[noreturn]] void refuseLink(int link, const QByteArray& flaw) const
    {
        refuse(QString::fromUtf8(plan.pathOf(link)), ("is a symbolic link" + flaw).constData());
    }

    void requireFewHops(int link, int hops) const
    {
        if (hops > mostHops) {
            refuseLink(link, " that leads in a circle");
        }
    }

    /** Goes on from @p end by one part of what @p link points at. */
    void enter(int link, const QString& part, int depth, End& end)
    {
        const int next = end.below.isEmpty() ? plan.find(end.folder, part) : 0;
        if (next != 0 && plan.item(next).kind == ArchiveEntry::Folder) {
            end.folder = next;
            return;
        }
        if (next != 0 && plan.item(next).kind == ArchiveEntry::Link) {
            const int hops = end.hops;
            end = endOf(next, depth + hops);
            end.hops += hops;
            requireFewHops(link, depth + end.hops);
            return;
        }
        const QByteArray folder = plan.pathOf(end.folder);
        end.below += (end.below.isEmpty() ? "" : "/") + part.toUtf8();
        const QByteArray path = folder.isEmpty() ? end.below : folder + '/' + end.below;
        struct stat status = {};
        end.isNowhere =
            ::fstatat(target.get(), path.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0;
        if (!end.isNowhere && S_ISLNK(status.st_mode)) {
            refuseLink(link, " that leads through an existing one");
        }
    }
};

} // namespace

void ExtractionPlan::add(const std::vector<const ArchiveEntry*>& entries, bool flat,
                         const std::atomic<bool>& canceled)
{
    // To grow a table of a million entries takes longer than a cancel may.
    m_nodes.reserve(static_cast<int>(entries.size()));
    items.reserve(entries.size() + 1);
    for (const ArchiveEntry* const entry : entries) {
        requireNotCanceled(canceled);
        requireAcceptable(*entry);
        add(*entry, flat);
    }
}

int ExtractionPlan::find(int folder, const QString& name) const
{
    return m_nodes.value({folder, nameKey(name)}, 0);
}

QByteArray ExtractionPlan::pathOf(int index) const
{
    QByteArray path = item(index).name;
    for (int at = item(index).parent; at != 0; at = item(at).parent) {
        path.prepend('/').prepend(item(at).name);
    }
    return path;
}

void ExtractionPlan::add(const ArchiveEntry& entry, bool flat)
{
    QStringList parts = nameParts(entry.name);
    if (entry.kind == ArchiveEntry::Folder) {
        const int index = flat ? 0 : requireFolder(parts, entry.name);
        if (item(index).entry != nullptr) {
            refuse(entry.name, "is contained twice");
        }
        // The target folder is the caller's: its mode and time stay.
        items[static_cast<size_t>(index)].entry = index != 0 ? &entry : nullptr;
        return;
    }
    if (parts.isEmpty()) {
        refuse(entry.name, "has an empty name");
    }
    const QString name = parts.takeLast();
    const int folder = flat ? 0 : requireFolder(parts, entry.name);
    const int there = find(folder, name);
    if (there != 0) {
        refuse(entry.name, item(there).kind == ArchiveEntry::Folder
                               ? "is a file where a folder is needed"
                               : "is contained twice");
    }
    append(folder, name, entry.kind, &entry);
    if (entry.kind == ArchiveEntry::File &&
        __builtin_add_overflow(m_totalSize, entry.size, &m_totalSize)) {
        refuse(entry.name, "has an impossible size");
    }
}

/** The index of the folder made of @p parts, planned with all folders above if need be. */
int ExtractionPlan::requireFolder(const QStringList& parts, const QString& wantedBy)
{
    int folder = 0;
    for (const QString& part : parts) {
        int next = find(folder, part);
        if (next == 0) {
            if (++m_folders > mostFolders) {
                fail(QStringLiteral("The archive is refused: it needs more than %1 folders.")
                         .arg(mostFolders));
            }
            next = append(folder, part, ArchiveEntry::Folder, nullptr);
        }
        if (item(next).kind != ArchiveEntry::Folder) {
            refuse(wantedBy, item(next).kind == ArchiveEntry::Link
                                 ? "lies behind a symbolic link"
                                 : "needs a folder where there is a file");
        }
        folder = next;
    }
    return folder;
}

int ExtractionPlan::append(int folder, const QString& name, ArchiveEntry::Kind kind,
                           const ArchiveEntry* entry)
{
    const auto index = static_cast<int>(items.size());
    items.push_back({folder, name.toUtf8(), kind, entry, false});
    m_nodes.insert({folder, nameKey(name)}, index);
    return index;
}

void requireLinksInside(const ExtractionPlan& plan, const FileDescriptor& target,
                        const std::atomic<bool>& canceled)
{
    LinkWalker walker = {plan, target, canceled};
    for (size_t i = 0; i < plan.items.size(); ++i) {
        if (plan.items[i].kind == ArchiveEntry::Link) {
            requireNotCanceled(canceled);
            walker.endOf(static_cast<int>(i), 0);
        }
    }
}

} // namespace vx
