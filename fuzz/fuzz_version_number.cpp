// Takes the first three lines of the input for versions and checks that they are in one order.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/Core/VersionNumber.h"

using vx::VersionNumber;

namespace {

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void checkOne(const std::string& text)
{
    const VersionNumber version(text);
    check(version.toString() == text);
    check(VersionNumber(version.toString()) == version);
    check(!(version < version) && version <= version);
    check(VersionNumber() <= version);
    version.toShortVersion();
}

void checkPair(const VersionNumber& a, const VersionNumber& b)
{
    check(int(a < b) + int(a == b) + int(a > b) == 1);
    check((a <= b) == !(a > b));
    check((a >= b) == !(a < b));
    check((a != b) == !(a == b));
    check((a < b) == (b > a));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    std::array<VersionNumber, 3> versions;
    for (VersionNumber& version : versions) {
        std::string line;
        std::getline(input, line);
        checkOne(line);
        version = VersionNumber(line);
    }
    const auto& [a, b, c] = versions;
    checkPair(a, b);
    checkPair(b, c);
    checkPair(a, c);
    check(!(a <= b && b <= c) || a <= c);
    check(!(a == b && b == c) || a == c);
    return 0;
}
