#include "tools/update-catalogue/explain/CheckLogText.h"

#include <QJsonArray>

#include "tools/update-catalogue/AddressText.h"

namespace vx {

namespace {

/** The store has the time at which a check left, and the log's line is written at once. */
constexpr qint64 sameCheck = 60; // seconds

QString outcomeName(LoggedCheck::Outcome outcome)
{
    switch (outcome) {
    case LoggedCheck::Available:
        return "update-available";
    case LoggedCheck::UpToDate:
        return "up-to-date";
    case LoggedCheck::NoPackage:
        return "no-package";
    case LoggedCheck::Refused:
        return "refused";
    case LoggedCheck::Failed:
        return "failed";
    case LoggedCheck::TimedOut:
        return "timed-out";
    case LoggedCheck::Unfinished:
        break;
    }
    return "unfinished";
}

QString sentenceOf(LoggedCheck::Outcome outcome)
{
    switch (outcome) {
    case LoggedCheck::Available:
        return "an update was available, and the dialog opened";
    case LoggedCheck::UpToDate:
        return "up to date: the catalogue held packages, and none that is offered to this "
               "installation";
    case LoggedCheck::NoPackage:
        return "no package was read; the user reads \"No update available!\"";
    case LoggedCheck::Refused:
        return "the catalogue was refused, as signatures are required";
    case LoggedCheck::Failed:
        return "the request failed, and counts as a check";
    case LoggedCheck::TimedOut:
        return "no whole answer came within 15 s, and that counts as a check";
    case LoggedCheck::Unfinished:
        break;
    }
    return "none: the log ends, or another check begins, before there is an answer";
}

QStringList addressesOf(const LoggedCheck& check)
{
    QStringList addresses;
    for (const QString& address : check.addresses) {
        addresses.append(withoutPassword(address));
    }
    return addresses;
}

QString startText(const LoggedCheck& check)
{
    const QString by =
        check.schedule.isEmpty() ? QString() : ", by the " + check.schedule + " schedule";
    return check.time.isEmpty() ? QString("in line %1%2").arg(check.line).arg(by)
                                : QString("%1 (line %2)%3").arg(check.time).arg(check.line).arg(by);
}

QDateTime timeOf(const LoggedCheck& check)
{
    return QDateTime::fromString(QString(check.time).replace(' ', 'T').left(19), Qt::ISODate);
}

/** What may lead somebody astray who reads the rest. */
QStringList remarksOn(const CheckLog& log, const QDateTime& stored)
{
    QStringList remarks;
    const QDateTime logged = timeOf(log.last);
    if (stored.isValid() && logged.isValid() && logged.secsTo(stored) > sameCheck) {
        remarks.append("the store knows of a later check, which this log does not tell of");
    }
    if (!log.tellsCourse) {
        remarks.append("the log holds failures alone, so that later checks may have gone well; "
                       "Log::setLogLevel(1) lets it tell of every check");
    }
    if (!log.heldBack.isEmpty()) {
        remarks.append(QString("a check was due (%1) and was not made, as checks are switched off")
                           .arg(log.heldBack));
    }
    return remarks;
}

} // namespace

FactList logFacts(const CheckLog& log, const QDateTime& stored)
{
    FactList facts;
    if (log.checks == 0) {
        facts.append({"last check", QString("none in this log")});
    } else {
        facts.append({"last check", startText(log.last)});
        const QStringList addresses = addressesOf(log.last);
        if (!addresses.isEmpty()) {
            facts.append({"asked", addresses.join(", redirected to ")});
        }
        facts.append({"outcome", sentenceOf(log.last.outcome)});
        for (const QString& reason : log.last.reasons) {
            facts.append({"reason", reason});
        }
    }
    for (const QString& remark : remarksOn(log, stored)) {
        facts.append({"note", remark});
    }
    return facts;
}

QJsonObject logToJson(const CheckLog& log, const QDateTime& stored)
{
    QJsonObject object{{"file", log.path},
                       {"checks", log.checks},
                       {"notes", QJsonArray::fromStringList(remarksOn(log, stored))}};
    if (log.checks > 0) {
        object.insert("lastCheck",
                      QJsonObject{{"line", log.last.line},
                                  {"time", log.last.time},
                                  {"schedule", log.last.schedule},
                                  {"asked", QJsonArray::fromStringList(addressesOf(log.last))},
                                  {"outcome", outcomeName(log.last.outcome)},
                                  {"message", sentenceOf(log.last.outcome)},
                                  {"reasons", QJsonArray::fromStringList(log.last.reasons)}});
    }
    return object;
}

bool cameToVerdict(const CheckLog& log)
{
    return log.checks > 0 && (log.last.outcome == LoggedCheck::Available ||
                              log.last.outcome == LoggedCheck::UpToDate);
}

} // namespace vx
