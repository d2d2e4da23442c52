#pragma once

namespace vx::test {

/**
 * Makes this thread subject to the permissions of files and folders, even if it runs as root.
 * There is no way back.
 *
 * @return whether it is.
 */
bool submitToFileRights();

} // namespace vx::test
