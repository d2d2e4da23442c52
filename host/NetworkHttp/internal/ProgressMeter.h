#pragma once

#include <QElapsedTimer>

namespace vx {

/** Two numbers for a progress bar, both bytes or both the same fraction of them. */
struct Progress
{
    int done;
    int total;
};

/**
 * Fits @p done and @p total, in bytes, into int: where one of them doesn't fit, both are divided by
 * the smallest power of two with which it does. A @p total of 0 means that it is not known.
 */
Progress scaledProgress(qint64 done, qint64 total);

/** Keeps reports of progress down to what an eye can follow. */
class ProgressMeter
{
public:
    /** Milliseconds between two reports. */
    static constexpr int interval = 20;

    /** Whether it is time for a report; if so, the next is due an interval from now. */
    bool takeTurn();

private:
    QElapsedTimer m_sinceReport;
};

} // namespace vx
