#pragma once

#include <atomic>

namespace vx {

class ExtractionPlan;
class TargetFolder;

/**
 * Refuses a plan in which a symbolic link may lead out of the target folder. What a link points at
 * may begin with "..", as often as the link lies below the target folder and no oftener; behind
 * that it may only go down. As nothing is planned behind a link, each of them stands where its name
 * says, so that a way through any number of links stays inside, too. Links through links are in
 * order: shared libraries and frameworks are built of them. So are links to nothing.
 *
 * What leads in a circle is refused as well, and what leads through a link that @p target holds
 * already, for nobody knows where that one leads.
 *
 * @param canceled looked at all the time; once it is true, the function returns.
 * @throws IOException
 */
void requireLinksInside(const ExtractionPlan& plan, const TargetFolder& target,
                        const std::atomic<bool>& canceled);

} // namespace vx
