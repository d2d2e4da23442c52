#pragma once

#include <atomic>

namespace vx {

class ExtractionPlan;
class TargetFolder;

/**
 * Refuses a plan in which a symbolic link leads, by itself or through other links, out of the
 * target folder or nowhere but in a circle. Links through links that stay inside are in order:
 * shared libraries and frameworks are built of them. So are links to nothing. But no planned link
 * may lead through a link that @p target holds already.
 *
 * @param canceled looked at all the time; once it is true, the function returns.
 * @throws IOException
 */
void requireLinksInside(const ExtractionPlan& plan, const TargetFolder& target,
                        const std::atomic<bool>& canceled);

} // namespace vx
