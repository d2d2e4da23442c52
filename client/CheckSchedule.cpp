#include "client/SoftwareUpdateClient.h"

#include "base/LogLine.h"
#include "client/internal/CheckInterval.h"

namespace vx {

namespace {

/** Empty if @p interval never makes a check due. */
QString firedText(int interval)
{
    const QString operation = QStringLiteral("SoftwareUpdateClient::queryLastUpdate() -> ");
    switch (interval) {
    case Daily:
        return operation + QStringLiteral("daily update fired");
    case Weekly:
        return operation + QStringLiteral("weekly update fired");
    case Monthly:
        return operation + QStringLiteral("monthly update fired");
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
    const QString fired = firedText(record.updateInterval);
    const QDateTime due = checkDueAfter(record.lastCheck, record.updateInterval);
    // A client that never checked has no time, which sorts before any other.
    if (fired.isEmpty() || !(due < QDateTime::currentDateTime())) {
        return;
    }
    checkForUpdate(delay);
    // Said even if the check was refused: the line tells that the schedule was due.
    logLine(1, fired);
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
