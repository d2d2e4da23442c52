#include "host/Core/VersionNumber.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace vx {

namespace {

using std::string_view;

constexpr int shownNumbers = 3;

// Not std::isdigit, which asks the locale and takes no negative characters.
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

string_view trimmed(string_view text)
{
    constexpr const char* whiteSpace = " \t\n\v\f\r";
    const size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

size_t endOfDigits(string_view text, size_t from)
{
    while (from < text.size() && isDigit(text[from])) {
        ++from;
    }
    return from;
}

/** Where the leading dotted numbers of @p text end, or the first @p most of them; 0 without any. */
size_t endOfNumbers(string_view text, int most)
{
    size_t end = endOfDigits(text, 0);
    for (int count = 1; end > 0 && count < most; ++count) {
        const size_t next = end + 1;
        if (next >= text.size() || text[end] != '.' || !isDigit(text[next])) {
            break;
        }
        end = endOfDigits(text, next);
    }
    return end;
}

/** A version text taken apart. Without numbers it cannot be read, and all of it is the word. */
struct Parts
{
    string_view numbers;
    string_view word;
};

Parts partsOf(string_view text)
{
    text = trimmed(text);
    const size_t end = endOfNumbers(text, std::numeric_limits<int>::max());
    return {text.substr(0, end), text.substr(end)};
}

int rank(const Parts& parts)
{
    if (parts.numbers.empty()) {
        return parts.word.empty() ? 0 : 1;
    }
    return 2;
}

/** Takes the digits at the beginning of @p text away and returns them without leading zeros. */
string_view takeDigits(string_view& text)
{
    string_view digits = text.substr(0, endOfDigits(text, 0));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

/** Compares digits as numbers, of any size; no digits at all count as 0. */
int compareDigits(string_view a, string_view b)
{
    return a.size() != b.size() ? (a.size() < b.size() ? -1 : 1) : a.compare(b);
}

int compareNumbers(string_view a, string_view b)
{
    while (!a.empty() || !b.empty()) {
        const int order = compareDigits(takeDigits(a), takeDigits(b));
        if (order != 0) {
            return order;
        }
        a.remove_prefix(std::min<size_t>(1, a.size()));
        b.remove_prefix(std::min<size_t>(1, b.size()));
    }
    return 0;
}

/** Compares what words begin with, a number or a character, and takes it away from both. */
int compareNextPart(string_view& a, string_view& b)
{
    if (isDigit(a.front()) && isDigit(b.front())) {
        return compareDigits(takeDigits(a), takeDigits(b));
    }
    const int order = a.substr(0, 1).compare(b.substr(0, 1));
    a.remove_prefix(1);
    b.remove_prefix(1);
    return order;
}

int compareWords(string_view a, string_view b)
{
    if (a.empty() || b.empty()) {
        return static_cast<int>(a.empty()) - static_cast<int>(b.empty());
    }
    while (!a.empty() && !b.empty()) {
        const int order = compareNextPart(a, b);
        if (order != 0) {
            return order;
        }
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

/** Below, equal to or above 0 as @p left is below, equal to or above @p right. */
int compare(const std::string& left, const std::string& right)
{
    const Parts a = partsOf(left);
    const Parts b = partsOf(right);
    if (rank(a) != rank(b)) {
        return rank(a) - rank(b);
    }
    if (a.numbers.empty()) {
        return a.word.compare(b.word);
    }
    const int order = compareNumbers(a.numbers, b.numbers);
    return order != 0 ? order : compareWords(a.word, b.word);
}

} // namespace

VersionNumber::VersionNumber(const std::string& text)
    : m_text(text)
{}

VersionNumber::~VersionNumber() = default;

bool VersionNumber::operator!=(const VersionNumber& other) const
{
    return compare(m_text, other.m_text) != 0;
}

bool VersionNumber::operator>(const VersionNumber& other) const
{
    return compare(m_text, other.m_text) > 0;
}

bool VersionNumber::operator<=(const VersionNumber& other) const
{
    return compare(m_text, other.m_text) <= 0;
}

std::string VersionNumber::toString() const
{
    return m_text;
}

std::string VersionNumber::toShortVersion() const
{
    const Parts parts = partsOf(m_text);
    if (parts.numbers.empty()) {
        return m_text;
    }
    std::string shown(parts.numbers.substr(0, endOfNumbers(parts.numbers, shownNumbers)));
    return shown.append(parts.word);
}

} // namespace vx
