#pragma once

#include <string>

#include "base/ReleaseNumber.h"

namespace vx {

/**
 * Whether @p text is a version number. Texts that are none sort below all that are, and among
 * themselves by character.
 */
inline bool isReadableVersion(const QString& text)
{
    const VersionNumber greatestUnreadable(
        std::string(static_cast<size_t>(text.size()) + 1, '\xff'));
    return releaseNumber(text) > greatestUnreadable;
}

} // namespace vx
