#pragma once

#include <QDateTime>
#include <QJsonObject>

#include "tools/update-catalogue/explain/CheckLog.h"
#include "tools/update-catalogue/explain/FactList.h"

namespace vx {

/**
 * What the log tells of the last check, for people.
 *
 * @param stored when the last check left, as the user's settings store says; null if there is none
 *     at hand.
 */
FactList logFacts(const CheckLog& log, const QDateTime& stored);

/** The same for programs. */
QJsonObject logToJson(const CheckLog& log, const QDateTime& stored);

/** Whether the last check came to a verdict: something is offered, or nothing. */
bool cameToVerdict(const CheckLog& log);

} // namespace vx
