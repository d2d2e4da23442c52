#include "fuzz/zip/SecondReader.h"

#include <algorithm>
#include <set>
#include <zlib.h>

namespace vx::fuzz {

namespace {

constexpr size_t endSize = 22;
constexpr size_t recordSize = 46;
constexpr size_t headerSize = 30;
constexpr uint32_t mostContent = 1 << 16;

/** A little-endian number of some bytes; what lies outside reads as zeros. */
uint64_t get(std::string_view bytes, size_t at, size_t size)
{
    uint64_t value = 0;
    for (size_t i = size; i-- > 0;) {
        value = value << 8 | (at + i < bytes.size() ? static_cast<uint8_t>(bytes[at + i]) : 0U);
    }
    return value;
}

bool startsWith(std::string_view bytes, size_t at, std::string_view what)
{
    return at <= bytes.size() && bytes.compare(at, what.size(), what) == 0;
}

/** The end record: the last whose comment fills the file exactly, or else the last. */
size_t findEnd(std::string_view archive)
{
    constexpr size_t none = std::string_view::npos;
    if (archive.size() < endSize) {
        return none;
    }
    const size_t lowest = archive.size() > endSize + 0xFFFF ? archive.size() - endSize - 0xFFFF : 0;
    size_t last = none;
    size_t at = archive.rfind("PK\5\6", archive.size() - endSize);
    while (at != none && at >= lowest) {
        if (at + endSize + get(archive, at + 20, 2) == archive.size()) {
            return at;
        }
        last = last == none ? at : last;
        at = at > 0 ? archive.rfind("PK\5\6", at - 1) : none;
    }
    return last;
}

bool inflateAll(std::string_view packed, size_t size, std::string& content)
{
    // One stream for all inputs: to make it takes longer than to inflate most contents.
    static z_stream stream = {};
    static const bool isReady = inflateInit2(&stream, -MAX_WBITS) == Z_OK;
    if (!isReady || inflateReset(&stream) != Z_OK) {
        return false;
    }
    // One byte more, so that a stream with more than it should have doesn't seem to end in time.
    content.resize(size + 1);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    const int result = inflate(&stream, Z_FINISH);
    const bool isExact = result == Z_STREAM_END && stream.avail_in == 0 && stream.avail_out == 1;
    content.resize(size);
    return isExact;
}

struct Record
{
    std::string_view bytes;
    std::string_view header; ///< the archive from the header of the entry on
    uint64_t field(size_t at, size_t size) const { return get(bytes, at, size); }
};

void readContent(const Record& record, uint64_t room, SeenEntry& entry)
{
    const uint64_t packedSize = record.field(20, 4);
    const uint64_t size = record.field(24, 4);
    const size_t dataAt = headerSize + get(record.header, 26, 2) + get(record.header, 28, 2);
    if (size > mostContent || dataAt > room || packedSize > room - dataAt) {
        return;
    }
    const std::string_view packed = record.header.substr(dataAt, packedSize);
    const uint64_t method = get(record.header, 8, 2) & 0xFF;
    if (method == 8 && packedSize > 0) {
        entry.isContentKnown = inflateAll(packed, size, entry.content);
    } else if ((method == 0 || method == 8) && packedSize == size) {
        entry.content = packed;
        entry.isContentKnown = true;
    }
    const auto* const bytes = reinterpret_cast<const Bytef*>(entry.content.data());
    entry.isContentKnown =
        entry.isContentKnown &&
        ::crc32(0, bytes, static_cast<uInt>(entry.content.size())) == record.field(16, 4);
}

bool isPlainName(std::string_view name)
{
    return !name.empty() && name.size() < 40 &&
           std::all_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

/** Whether header and record are those of a plain file and say the same. */
bool isPlain(const Record& record, const SeenEntry& entry)
{
    const auto same = [&](size_t inHeader, size_t inRecord, size_t size) {
        return get(record.header, inHeader, size) == record.field(inRecord, size);
    };
    const uint64_t method = record.field(10, 2);
    const uint64_t size = record.field(24, 4);
    return isPlainName(entry.name) && startsWith(record.header, 0, "PK\3\4") &&
           startsWith(record.header, headerSize, entry.name) && same(6, 8, 2) && same(8, 10, 2) &&
           same(14, 16, 4) && same(18, 20, 4) && same(22, 24, 4) && same(26, 28, 2) &&
           get(record.header, 28, 2) == 0 && record.field(30, 2) == 0 && record.field(5, 1) == 3 &&
           record.field(40, 2) >> 12 == 8 && (record.field(8, 2) & ~0x0806U) == 0 &&
           (method == 8 || (method == 0 && record.field(20, 4) == size)) && entry.isContentKnown;
}

} // namespace

SeenArchive readAgain(std::string_view archive)
{
    SeenArchive seen;
    const size_t end = findEnd(archive);
    if (end == std::string_view::npos || (end >= 20 && startsWith(archive, end - 20, "PK\6\7"))) {
        return seen;
    }
    const uint64_t length = get(archive, end + 12, 4);
    const uint64_t offset = get(archive, end + 16, 4);
    if (length > end || offset > end - length) {
        return seen;
    }
    const uint64_t begin = end - length - offset;
    seen.isPlain = begin == 0 && end + endSize == archive.size() && get(archive, end + 20, 2) == 0;
    std::set<std::string> names;
    uint64_t dataEnd = 0;
    for (size_t at = end - length; at < end;) {
        const Record header = {archive.substr(at), {}};
        const size_t nameSize = header.field(28, 2);
        const size_t size = recordSize + nameSize + header.field(30, 2) + header.field(32, 2);
        if (!startsWith(archive, at, "PK\1\2") || size > end - at) {
            return {};
        }
        Record record = {archive.substr(at, size), {}};
        SeenEntry entry;
        entry.name = record.bytes.substr(recordSize, nameSize);
        entry.offset = record.field(42, 4);
        if (entry.offset == 0xFFFFFFFF || record.field(20, 4) == 0xFFFFFFFF ||
            record.field(24, 4) == 0xFFFFFFFF) {
            return {};
        }
        const uint64_t room =
            end - length > begin + entry.offset ? end - length - begin - entry.offset : 0;
        record.header = room > 0 ? archive.substr(begin + entry.offset) : std::string_view();
        readContent(record, room, entry);
        seen.isPlain = seen.isPlain && isPlain(record, entry) && names.insert(entry.name).second &&
                       entry.offset >= dataEnd;
        dataEnd = entry.offset + headerSize + nameSize + record.field(20, 4);
        seen.entries.push_back(std::move(entry));
        at += size;
    }
    seen.isPlain = seen.isPlain && seen.entries.size() == get(archive, end + 10, 2);
    std::stable_sort(seen.entries.begin(), seen.entries.end(),
                     [](const SeenEntry& a, const SeenEntry& b) { return a.offset < b.offset; });
    seen.isReadable = true;
    return seen;
}

} // namespace vx::fuzz
