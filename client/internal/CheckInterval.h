#pragma once

#include <QDateTime>

namespace vx {

/** What SoftwareUpdateSettings::updateInterval says. */
enum CheckInterval { AtApplicationStart = 0, Daily = 1, Weekly = 2, Monthly = 3 };

/**
 * The time after which the hourly tick finds a check due; null if @p interval makes none due. If
 * there is no @p lastCheck it is in the past.
 */
QDateTime checkDueAfter(const QDateTime& lastCheck, int interval);

} // namespace vx
