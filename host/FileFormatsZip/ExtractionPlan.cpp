#include "host/FileFormatsZip/ExtractionPlan.h"

#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

QString keyOf(const QStringList& parts)
{
    return nameKey(parts.join(QLatin1Char('/')));
}

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
    if (!entry.isMethodSupported) {
        refuse(entry.name, QStringLiteral("is compressed by a method that is not supported"));
    }
    if (entry.kind == ArchiveEntry::Folder && entry.size != 0) {
        refuse(entry.name, QStringLiteral("is a folder, but has content"));
    }
    if (entry.size < 0) {
        refuse(entry.name, QStringLiteral("has an impossible size"));
    }
}

} // namespace

ExtractionPlan::ExtractionPlan(const ArchiveIndex& entries, bool flat)
{
    folders.emplace_back();
    for (const ArchiveEntry& entry : entries) {
        requireAcceptable(entry);
        add(entry, flat);
    }
}

ExtractionPlan::Node ExtractionPlan::find(const QStringList& parts) const
{
    return parts.isEmpty() ? Node{Folder, 0} : m_nodes.value(keyOf(parts));
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
    const auto index = static_cast<int>(isLink ? links.size() : files.size());
    occupy(parts + QStringList(name), {isLink ? Link : File, index}, entry.name);
    if (isLink) {
        addLink(entry, folder, name.toUtf8());
    } else {
        addFile(entry, folder, name.toUtf8());
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
    if (folder.isListed) {
        refuse(entry.name, QStringLiteral("is contained twice"));
    }
    folder.isListed = true;
    folder.mode = entry.mode;
    folder.modified = entry.modified;
}

void ExtractionPlan::addFile(const ArchiveEntry& entry, int folder, const QByteArray& name)
{
    PlannedFile file;
    file.record = entry.record;
    file.folder = folder;
    file.name = name;
    file.size = entry.size;
    file.mode = entry.mode;
    file.modified = entry.modified;
    files.push_back(file);
    if (__builtin_add_overflow(m_totalSize, entry.size, &m_totalSize)) {
        refuse(entry.name, QStringLiteral("has an impossible size"));
    }
}

void ExtractionPlan::addLink(const ArchiveEntry& entry, int folder, const QByteArray& name)
{
    PlannedLink link;
    link.folder = folder;
    link.name = name;
    link.target = entry.linkTarget;
    link.modified = entry.modified;
    links.push_back(link);
}

/** The index of the folder made of @p parts, planned with all folders above if need be. */
int ExtractionPlan::requireFolder(const QStringList& parts, const QString& wantedBy)
{
    const Node found = find(parts);
    if (found.kind == Folder) {
        return found.index;
    }
    if (found.kind == Link) {
        refuse(wantedBy, QStringLiteral("lies behind a symbolic link"));
    }
    if (found.kind == File) {
        refuse(wantedBy, QStringLiteral("needs a folder where there is a file"));
    }
    requireFolder(parts.mid(0, parts.size() - 1), wantedBy);
    const auto index = static_cast<int>(folders.size());
    occupy(parts, {Folder, index}, wantedBy);
    PlannedFolder folder;
    folder.path = parts.join(QLatin1Char('/')).toUtf8();
    folders.push_back(folder);
    return index;
}

void ExtractionPlan::occupy(const QStringList& parts, const Node& node, const QString& name)
{
    Node& place = m_nodes[keyOf(parts)];
    if (place.kind == Folder) {
        refuse(name, QStringLiteral("is a file where a folder is needed"));
    }
    if (place.kind != Nothing) {
        refuse(name, QStringLiteral("is contained twice"));
    }
    place = node;
}

} // namespace vx
