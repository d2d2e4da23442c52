#pragma once

#include "tests/support/Sanitizers.h"

namespace vx::test {

/**
 * How often a test with random input repeats. A build with sanitizers, where each time takes
 * several times as long, does a part of it, with the same seeds; one without them does all.
 */
constexpr int repeats(int times)
{
    return VX_ADDRESS_SANITIZER || VX_THREAD_SANITIZER ? (times + 3) / 4 : times;
}

} // namespace vx::test
