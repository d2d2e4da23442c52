// Lets libFuzzer change archives as archives: a change of a content, a name or a field is followed
// by the repair of what depends on it, so that most inputs get past the first checks.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>
#include <zlib.h>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

struct Member
{
    std::string header; ///< 30 bytes, in front of the data
    std::string record; ///< 46 bytes, in the directory
    std::string name;
    std::string recordName;
    std::string extra;
    std::string recordExtra;
    std::string packed;
};

using Members = std::vector<Member>;

// Of the deflater, as zlib.h explains them: a window of 4 KiB, blocks of up to 1,023 symbols.
constexpr int windowBits = -12;
constexpr int memoryLevel = 4;

uint32_t get(std::string_view bytes, size_t at, size_t size)
{
    uint32_t value = 0;
    for (size_t i = size; i-- > 0;) {
        value = value << 8 | (at + i < bytes.size() ? static_cast<uint8_t>(bytes[at + i]) : 0U);
    }
    return value;
}

void put(std::string& bytes, size_t at, uint32_t value, size_t size)
{
    for (size_t i = 0; i < size && at + i < bytes.size(); ++i) {
        bytes[at + i] = static_cast<char>(value >> (8 * i));
    }
}

std::string inflated(std::string_view packed)
{
    // One stream and one buffer for all inputs: to make them takes longer than to use them.
    static char content[1 << 16];
    static z_stream stream = {};
    static const int ready = inflateInit2(&stream, -MAX_WBITS);
    if (ready != Z_OK || inflateReset(&stream) != Z_OK) {
        return {};
    }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(content);
    stream.avail_out = sizeof(content);
    inflate(&stream, Z_FINISH);
    return {content, sizeof(content) - stream.avail_out};
}

std::string deflated(std::string_view content, unsigned way)
{
    // Small tables, which are quickly emptied, do for small contents, and make more blocks of them.
    static z_stream stream = {};
    static const int ready =
        deflateInit2(&stream, 6, Z_DEFLATED, windowBits, memoryLevel, Z_DEFAULT_STRATEGY);
    if (ready != Z_OK || deflateReset(&stream) != Z_OK) {
        return {};
    }
    std::string packed(deflateBound(&stream, content.size()), '\0');
    deflateParams(&stream, static_cast<int>(way % 10), static_cast<int>(way / 10 % 5));
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(packed.size() - stream.avail_out);
    return packed;
}

Members parse(std::string_view archive)
{
    Members members;
    const size_t end = archive.rfind("PK\5\6");
    size_t at = end == std::string_view::npos ? archive.size() : get(archive, end + 16, 4);
    while (at + 46 <= archive.size() && archive.compare(at, 4, "PK\1\2") == 0) {
        Member member;
        member.record = archive.substr(at, 46);
        const size_t nameSize = get(member.record, 28, 2);
        const size_t extraSize = get(member.record, 30, 2);
        member.recordName = archive.substr(at + 46, nameSize);
        member.recordExtra =
            archive.substr(std::min(at + 46 + nameSize, archive.size()), extraSize);
        at += 46 + nameSize + extraSize + get(member.record, 32, 2);
        const size_t offset = get(member.record, 42, 4);
        if (offset + 30 > archive.size()) {
            continue;
        }
        member.header = archive.substr(offset, 30);
        const size_t nameAt = offset + 30;
        const size_t extraAt = std::min(nameAt + get(member.header, 26, 2), archive.size());
        const size_t dataAt = std::min(extraAt + get(member.header, 28, 2), archive.size());
        member.name = archive.substr(nameAt, extraAt - nameAt);
        member.extra = archive.substr(extraAt, dataAt - extraAt);
        member.packed = archive.substr(dataAt, get(member.record, 20, 4));
        members.push_back(member);
    }
    return members;
}

std::string write(Members& members)
{
    std::string archive;
    for (Member& member : members) {
        put(member.record, 42, static_cast<uint32_t>(archive.size()), 4);
        put(member.header, 26, static_cast<uint32_t>(member.name.size()), 2);
        put(member.header, 28, static_cast<uint32_t>(member.extra.size()), 2);
        archive += member.header + member.name + member.extra + member.packed;
    }
    const size_t begin = archive.size();
    for (Member& member : members) {
        put(member.record, 28, static_cast<uint32_t>(member.recordName.size()), 2);
        put(member.record, 30, static_cast<uint32_t>(member.recordExtra.size()), 2);
        put(member.record, 32, 0, 2);
        archive += member.record + member.recordName + member.recordExtra;
    }
    std::string end("PK\5\6\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 22);
    put(end, 8, static_cast<uint32_t>(members.size()), 2);
    put(end, 10, static_cast<uint32_t>(members.size()), 2);
    put(end, 12, static_cast<uint32_t>(archive.size() - begin), 4);
    put(end, 16, static_cast<uint32_t>(begin), 4);
    return archive + end;
}

class Mutator
{
public:
    explicit Mutator(unsigned seed)
        : m_random(seed)
    {}

    void change(Members& members)
    {
        Member& member = members[below(members.size())];
        switch (below(9)) {
        case 0:
        case 1:
            setContent(member, mutated(contentOf(member), 4096));
            break;
        case 2:
            member.name = member.recordName = mutated(member.name, 300);
            break;
        case 3:
            member.extra = mutated(member.extra, 200);
            member.recordExtra = below(2) == 0 ? member.extra : member.recordExtra;
            break;
        case 4:
            changeField(member);
            break;
        case 5:
            member.packed = mutated(member.packed, 4096);
            setSize(member, 18, 20, member.packed.size());
            break;
        case 6:
            setKind(member);
            break;
        case 7:
            members.push_back(Member(member));
            members.back().name += 'x';
            members.back().recordName = members.back().name;
            break;
        default:
            std::swap(member, members[below(members.size())]);
            if (members.size() > 1 && below(3) == 0) {
                members.pop_back();
            }
        }
    }

    size_t below(size_t bound) { return m_random() % bound; }

private:
    static std::string contentOf(const Member& member)
    {
        return get(member.header, 8, 2) == 8 ? inflated(member.packed) : member.packed;
    }

    static std::string mutated(std::string bytes, size_t most)
    {
        const size_t size = std::min(bytes.size(), most);
        bytes.resize(most);
        bytes.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(bytes.data()), size, most));
        return bytes;
    }

    static void setSize(Member& member, size_t inHeader, size_t inRecord, size_t size)
    {
        put(member.header, inHeader, static_cast<uint32_t>(size), 4);
        put(member.record, inRecord, static_cast<uint32_t>(size), 4);
    }

    void setContent(Member& member, const std::string& content)
    {
        const bool isStored = below(3) == 0;
        member.packed = isStored ? content : deflated(content, static_cast<unsigned>(below(50)));
        put(member.header, 8, isStored ? 0 : 8, 2);
        put(member.record, 10, isStored ? 0 : 8, 2);
        setSize(member, 18, 20, member.packed.size());
        setSize(member, 22, 24, content.size());
        setSize(member, 14, 16,
                crc32(0, reinterpret_cast<const Bytef*>(content.data()),
                      static_cast<uInt>(content.size())));
    }

    void changeField(Member& member)
    {
        constexpr uint32_t values[] = {0,      1,      2,      8,          12,        0xFF,
                                       0x7FFF, 0xFFFF, 0x8000, 0x7FFFFFFF, 0xFFFFFFFF};
        const bool isInHeader = below(2) == 0;
        std::string& bytes = isInHeader ? member.header : member.record;
        const size_t size = size_t(1) << below(3);
        const size_t at = 4 + below(bytes.size() - 4 - size);
        put(bytes, at,
            below(2) == 0 ? values[below(std::size(values))]
                          : get(bytes, at, size) ^ (1U << below(8 * size)),
            size);
    }

    void setKind(Member& member)
    {
        constexpr uint32_t types[] = {0100000, 0040000, 0120000, 0010000, 0, 0140000};
        member.record[5] = static_cast<char>(below(4) == 0 ? below(20) : 3);
        put(member.record, 38,
            (types[below(std::size(types))] | static_cast<uint32_t>(below(010000))) << 16 |
                (below(8) == 0 ? static_cast<uint32_t>(below(64)) : 0U),
            4);
    }

    std::minstd_rand m_random;
};

size_t give(const std::string& bytes, uint8_t* data, size_t maxSize)
{
    if (bytes.size() > maxSize) {
        return 0;
    }
    std::memcpy(data, bytes.data(), bytes.size());
    return bytes.size();
}

std::string_view viewOf(const uint8_t* data, size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed)
{
    Mutator mutator(seed);
    Members members = parse(viewOf(data, size));
    // The ends of archives, and what is in front and behind, get their share of plain changes.
    if (members.empty() || members.size() > 64 || mutator.below(16) == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    for (size_t times = 1 + mutator.below(3); times > 0; --times) {
        mutator.change(members);
    }
    const size_t given = give(write(members), data, maxSize);
    return given > 0 ? given : LLVMFuzzerMutate(data, size, maxSize);
}

extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t* first, size_t firstSize,
                                            const uint8_t* second, size_t secondSize, uint8_t* out,
                                            size_t maxSize, unsigned seed)
{
    Mutator mutator(seed);
    Members members = parse(viewOf(first, firstSize));
    for (const Member& member : parse(viewOf(second, secondSize))) {
        if (mutator.below(2) == 0) {
            const size_t at = mutator.below(members.size() + 1);
            members.insert(members.begin() + static_cast<std::ptrdiff_t>(at), member);
        }
    }
    return give(write(members), out, maxSize);
}
