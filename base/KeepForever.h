#pragma once

namespace vx {

/** Does what keepForever() does, for an object of any type. */
void rememberKept(const void* object);

/**
 * Returns @p object, which from now on nobody deletes, on purpose.
 *
 * Such objects stay reachable until the process ends, so that a leak checker, that of a host
 * included, reports what was lost by mistake and nothing else. Only for the event loop's thread.
 */
template <typename Object>
Object* keepForever(Object* object)
{
    rememberKept(object);
    return object;
}

} // namespace vx
