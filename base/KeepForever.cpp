#include "base/KeepForever.h"

#include <vector>

namespace vx {

void rememberKept(const void* object)
{
    // Kept itself, so that no destructor at the process's end makes the objects unreachable.
    static auto* const kept = new std::vector<const void*>;
    kept->push_back(object);
}

} // namespace vx
