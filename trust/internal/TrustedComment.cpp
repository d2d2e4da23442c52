#include "trust/internal/TrustedComment.h"

#include <charconv>

namespace vx {

namespace {

constexpr std::string_view separators = " \t";

/** Digits alone: no sign, no blank, and no more than fit. */
std::optional<qint64> readSeconds(std::string_view text)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    qint64 seconds = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), seconds);
    return result.ec == std::errc() ? std::optional<qint64>(seconds) : std::nullopt;
}

/** Reads @p field into @p value if it has that name. False if it can't be read or was read before.
 */
bool take(std::string_view field, std::string_view name, std::optional<qint64>& value)
{
    if (field.substr(0, name.size()) != name) {
        return true;
    }
    if (value) {
        return false;
    }
    value = readSeconds(field.substr(name.size()));
    return value.has_value();
}

} // namespace

std::optional<TrustedTimes> readTrustedTimes(std::string_view comment)
{
    std::optional<qint64> timestamp;
    std::optional<qint64> expires;
    std::size_t begin = comment.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = comment.find_first_of(separators, begin);
        const std::string_view field = comment.substr(begin, end - begin);
        if (!take(field, "timestamp:", timestamp) || !take(field, "expires:", expires)) {
            return std::nullopt;
        }
        begin = comment.find_first_not_of(separators, end);
    }
    if (!timestamp) {
        return std::nullopt;
    }
    return TrustedTimes{*timestamp, expires};
}

} // namespace vx
