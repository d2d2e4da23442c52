#pragma once

#include <QtGlobal>

#include <optional>
#include <string_view>

namespace vx {

/** What is read of a trusted comment. */
struct TrustedTimes
{
    /** Seconds since 1970. */
    qint64 timestamp = 0;
    std::optional<qint64> expires;
};

/**
 * Reads the fields "timestamp:" and "expires:", which tabs or blanks separate from others.
 *
 * @return nothing if there is no timestamp, or if either field is no number or there twice.
 */
std::optional<TrustedTimes> readTrustedTimes(std::string_view comment);

} // namespace vx
