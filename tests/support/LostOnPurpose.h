#pragma once

#include "tests/support/Sanitizers.h"

#if VX_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace vx::test {

/** What this thread allocates while the object lives may be lost: the leak check overlooks it. */
class LostOnPurpose
{
public:
#if VX_ADDRESS_SANITIZER
    LostOnPurpose()
    {
        __lsan_disable();
    }
    ~LostOnPurpose()
    {
        __lsan_enable();
    }
#else
    LostOnPurpose() {} // written out, so that no object counts as unused
#endif
    LostOnPurpose(const LostOnPurpose&) = delete;
    LostOnPurpose& operator=(const LostOnPurpose&) = delete;
};

} // namespace vx::test
