#pragma once

#include <QtGlobal>

#include <limits>

namespace vx {

/**
 * Bounds what a catalogue can make of little text by inheritance.
 *
 * What stands once on a set is read for every package in it. Some kilobytes of words or addresses
 * above thousands of empty packages would fill the memory, and stop the application that checks for
 * updates.
 */
class ReadingBudget
{
public:
    /** What the packages of one catalogue may take together, in characters. */
    static constexpr qint64 maximum = 80LL * 1024 * 1024;

    /** @param limit what may be spent; without one as much as there is. */
    explicit ReadingBudget(qint64 limit = std::numeric_limits<qint64>::max())
        : m_limit(limit)
    {}

    /** What one word or URL in a record counts, whatever its length: the record's own overhead. */
    static constexpr qint64 entry = 16;

    /** Notes that so much more was read. @throws ParseException when it is more than the limit. */
    void spend(qint64 characters);

private:
    qint64 m_limit;
    qint64 m_spent = 0;
};

} // namespace vx
