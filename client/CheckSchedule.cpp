#include "client/SoftwareUpdateClient.h"

#include "base/LogLine.h"

namespace vx {

namespace {

enum Interval { AtApplicationStart = 0, Daily = 1, Weekly = 2, Monthly = 3 };

/** When the next check is due, or an empty log text if @p interval never makes one due. */
struct Schedule
{
    QDateTime due;
    QString firedText;
};

Schedule scheduleAfter(const QDateTime& lastCheck, int interval)
{
    const QString operation = QStringLiteral("SoftwareUpdateClient::queryLastUpdate() -> ");
    switch (interval) {
    case Daily:
        return {lastCheck.addDays(1), operation + QStringLiteral("daily update fired")};
    case Weekly:
        return {lastCheck.addDays(7), operation + QStringLiteral("weekly update fired")};
    case Monthly:
        return {lastCheck.addMonths(1), operation + QStringLiteral("monthly update fired")};
    default:
        return {};
    }
}

} // namespace

void SoftwareUpdateClient::queryLastUpdate(int delay)
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    if (updateDialog || record.updateInterval == AtApplicationStart) {
        return;
    }
    const Schedule schedule = scheduleAfter(record.lastCheck, record.updateInterval);
    // A client that never checked has no time, which sorts before any other.
    if (schedule.firedText.isEmpty() || !(schedule.due < QDateTime::currentDateTime())) {
        return;
    }
    checkForUpdate(delay);
    // Said even if the check was refused: the line tells that the schedule was due.
    logLine(1, schedule.firedText);
}

void SoftwareUpdateClient::doInitialCheck(int msDelay)
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    if (record.doUpdateCheck && record.updateInterval == AtApplicationStart) {
        checkForUpdate(msDelay);
    }
}

} // namespace vx
