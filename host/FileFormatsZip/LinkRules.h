#pragma once

#include <QStringList>

#include <functional>

namespace vx {

class ExtractionPlan;

/**
 * Refuses a plan in which a symbolic link leads, by itself or through other links, out of the
 * target folder or nowhere but in a circle. Links through links that stay inside are in order:
 * shared libraries and frameworks are built of them. So are links to nothing.
 *
 * @param isLinkOnDisk tells of a path that the plan does not know, as its parts, whether the target
 *        folder holds a link there already. A planned link must not lead through such a one.
 * @throws IOException
 */
void requireLinksInside(const ExtractionPlan& plan,
                        const std::function<bool(const QStringList&)>& isLinkOnDisk);

} // namespace vx
