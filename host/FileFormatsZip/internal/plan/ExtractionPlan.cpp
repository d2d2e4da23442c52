#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"

namespace vx {

namespace {

void requireAcceptable(const ArchiveEntry& entry)
{
    const QString flaw = nameFlaw(entry.name);
    if (!flaw.isEmpty()) {
        refuse(entry.name, flaw);
    }
    if (entry.kind == ArchiveEntry::Special) {
        refuse(entry.name, QStringLiteral("is neither a file nor a folder nor a symbolic link"));
    }
    if (entry.isEncrypted) {
        refuse(entry.name, QStringLiteral("is encrypted"));
    }
    if (!entry.isMethodSupported()) {
        refuse(entry.name, QStringLiteral("is compressed by a method that is not supported"));
    }
    if (entry.kind == ArchiveEntry::Folder && entry.content.size != 0) {
        refuse(entry.name, QStringLiteral("is a folder, but has content"));
    }
    if (entry.content.size < 0) {
        refuse(entry.name, QStringLiteral("has an impossible size"));
    }
}

} // namespace

ExtractionPlan::ExtractionPlan(const EntrySelection& entries, bool flat,
                               const std::atomic<bool>& canceled)
{
    folders.emplace_back();
    // To grow a table of a million entries takes longer than a cancel may.
    m_nodes.reserve(static_cast<int>(entries.size()));
    files.reserve(entries.size());
    for (const ArchiveEntry* const entry : entries) {
        if (canceled) {
            return;
        }
        requireAcceptable(*entry);
        add(*entry, flat);
    }
}

ExtractionPlan::Node ExtractionPlan::find(int folder, const QString& name) const
{
    return m_nodes.value({folder, nameKey(name)});
}

QByteArray ExtractionPlan::pathOf(int folder) const
{
    QByteArray path;
    for (int at = folder; at != 0; at = folders[static_cast<size_t>(at)].parent) {
        const QByteArray& name = folders[static_cast<size_t>(at)].name;
        path = path.isEmpty() ? name : name + '/' + path;
    }
    return path;
}

void ExtractionPlan::add(const ArchiveEntry& entry, bool flat)
{
    QStringList parts = nameParts(entry.name);
    if (entry.kind == ArchiveEntry::Folder) {
        if (!flat) {
            addFolder(entry, parts);
        }
        return;
    }
    if (parts.isEmpty()) {
        refuse(entry.name, QStringLiteral("has an empty name"));
    }
    const QString name = parts.takeLast();
    if (flat) {
        parts.clear();
    }
    const int folder = requireFolder(parts, entry.name);
    const bool isLink = entry.kind == ArchiveEntry::Link;
    std::vector<PlannedItem>& items = isLink ? links : files;
    occupy(folder, name, {isLink ? Link : File, static_cast<int>(items.size())}, entry.name);
    items.push_back({folder, name.toUtf8(), &entry, false});
    if (!isLink && __builtin_add_overflow(m_totalSize, entry.content.size, &m_totalSize)) {
        refuse(entry.name, QStringLiteral("has an impossible size"));
    }
}

void ExtractionPlan::addFolder(const ArchiveEntry& entry, const QStringList& parts)
{
    const int index = requireFolder(parts, entry.name);
    // The target folder is the caller's: its mode and time stay.
    if (index == 0) {
        return;
    }
    PlannedFolder& folder = folders[static_cast<size_t>(index)];
    if (folder.entry != nullptr) {
        refuse(entry.name, QStringLiteral("is contained twice"));
    }
    folder.entry = &entry;
}

/** The index of the folder made of @p parts, planned with all folders above if need be. */
int ExtractionPlan::requireFolder(const QStringList& parts, const QString& wantedBy)
{
    int folder = 0;
    for (const QString& part : parts) {
        folder = requireFolder(folder, part, wantedBy);
    }
    return folder;
}

int ExtractionPlan::requireFolder(int parent, const QString& name, const QString& wantedBy)
{
    const Node found = find(parent, name);
    switch (found.kind) {
    case Folder:
        return found.index;
    case Link:
        refuse(wantedBy, QStringLiteral("lies behind a symbolic link"));
    case File:
        refuse(wantedBy, QStringLiteral("needs a folder where there is a file"));
    case Nothing:
        break;
    }
    return planFolder(parent, name);
}

int ExtractionPlan::planFolder(int parent, const QString& name)
{
    if (folders.size() > mostFolders) {
        fail(QStringLiteral("The archive is refused: it needs more than %1 folders.")
                 .arg(mostFolders));
    }
    const auto index = static_cast<int>(folders.size());
    PlannedFolder folder;
    folder.parent = parent;
    folder.name = name.toUtf8();
    folders.push_back(folder);
    m_nodes.insert({parent, nameKey(name)}, {Folder, index});
    return index;
}

void ExtractionPlan::occupy(int folder, const QString& name, const Node& node,
                            const QString& wantedBy)
{
    Node& place = m_nodes[{folder, nameKey(name)}];
    if (place.kind == Folder) {
        refuse(wantedBy, QStringLiteral("is a file where a folder is needed"));
    }
    if (place.kind != Nothing) {
        refuse(wantedBy, QStringLiteral("is contained twice"));
    }
    place = node;
}

} // namespace vx
