#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vx::fuzz {

/** An entry as the second reader sees it. */
struct SeenEntry
{
    std::string name; ///< as it stands in the directory
    uint64_t offset = 0;
    std::string content;
    bool isContentKnown = false; ///< stored or deflated, complete, and its checksum right
};

/** What the second reader makes of an archive. */
struct SeenArchive
{
    /** Its directory is readable, and without what this reader leaves alone (Zip64). */
    bool isReadable = false;
    /** It is plain and sound in every respect, so that any reader must take it. */
    bool isPlain = false;
    std::vector<SeenEntry> entries; ///< in the order of their data
};

/**
 * Reads an archive in another way than the library does, with zlib, and in no more than it takes to
 * compare the two.
 */
SeenArchive readAgain(std::string_view archive);

} // namespace vx::fuzz
