#pragma once

#include <string>

#include "host/Core/CoreExport.h"

namespace vx {

/**
 * The version of a program or of a firmware, read from text and compared by value.
 *
 * A readable text is, between optional white space,
 *
 *     number *( "." number ) [ word ]      number: one or more digits
 *
 * as in "4.10", "2.1b3" or "2.0-beta.2". There may be any number of numbers, of any size; what
 * follows the last of them is the word. Values are ordered like this:
 *
 * - The default value, which a text that is empty or only whitespace has as well, is lowest: no
 * version is known.
 * - Then follow the texts that cannot be read, among themselves by character code.
 * - Then follow the readable ones, number by number. A missing number counts as 0, so that "2",
 *   "2.0" and "2.00" are equal.
 * - With equal numbers, a word marks a preliminary version, which is below the one without a word.
 *   Words are compared from their beginning, runs of digits as numbers and all else by character
 *   code; a word is below another that it begins.
 *
 * Nothing here throws on a text that cannot be read.
 */
class VX_CORE_EXPORT VersionNumber
{
public:
    /** The default value: no version is known. It differs from that of "0". */
    VersionNumber() = default;

    /** Reads @p text; one that cannot be read yields a value below all that can. */
    VersionNumber(const std::string& text);

    VersionNumber(const VersionNumber&) = default;
    VersionNumber(VersionNumber&&) = default;
    VersionNumber& operator=(const VersionNumber&) = default;
    VersionNumber& operator=(VersionNumber&&) = default;

    // Callers built against another implementation reach these three by their place in the table of
    // virtual operations: their order is part of the interface, and new ones go to the end.
    virtual bool operator!=(const VersionNumber& other) const;
    virtual bool operator>(const VersionNumber& other) const;
    virtual bool operator<=(const VersionNumber& other) const;
    virtual ~VersionNumber();

    bool operator==(const VersionNumber& other) const { return !(*this != other); }
    bool operator<(const VersionNumber& other) const { return other > *this; }
    bool operator>=(const VersionNumber& other) const { return other <= *this; }

    /** The text that the value was read from; reading it again yields an equal value. */
    std::string toString() const;

    /**
     * The version for display: the first three numbers as they are written, and the word. Left out
     * are any further numbers and the white space around. A text that cannot be read is given as it
     * stands.
     */
    std::string toShortVersion() const;

private:
    std::string m_text;
};

} // namespace vx
