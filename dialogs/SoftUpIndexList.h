#pragma once

#include <QList>

namespace vx {

/**
 * Rows of the update-available dialog's table, each an index into the client's list of packages.
 *
 * Rows are never sorted and hiding does not renumber them, so that an index stays valid until the
 * table is filled anew. In the order in which the rows were met, which need not be ascending, and
 * without repeats.
 */
typedef QList<int> SoftUpIndexList;

} // namespace vx
