#pragma once

#include <QString>
#include <QStringList>

namespace vx {

/** One check, as far as the library's log tells of it. */
struct LoggedCheck
{
    enum Outcome {
        Unfinished, ///< the log ends, or the next check begins, before there is an answer
        Available,  ///< something was offered
        UpToDate,   ///< packages were read, and none was offered
        NoPackage,  ///< no package was read
        Refused,    ///< signatures are required, and the catalogue was refused
        Failed,     ///< the request ended with an error
        TimedOut    ///< no whole answer came in time
    };

    /** Where it begins in the log; counts from 1. */
    int line = 0;
    /** When it began, as the log writes it; empty if the line has no time. */
    QString time;
    /** "daily", "weekly" or "monthly" if the schedule started it; empty if somebody did. */
    QString schedule;
    /** What was asked, and where redirects led from there; empty if the log holds failures only. */
    QStringList addresses;
    Outcome outcome = Unfinished;
    /** Why, in the log's own sentences. */
    QStringList reasons;
};

/** What a log tells of checks. */
struct CheckLog
{
    QString path;
    int checks = 0;
    /** The last check; nothing is in it if there is none. */
    LoggedCheck last;
    /** Whether the log holds the normal course of events, and not failures alone. */
    bool tellsCourse = false;
    /** When a check was due last and none was made, because checks are switched off. */
    QString heldBack;
};

/**
 * Looks for the checks of the update client in the log at @p path. Lines that others wrote into it,
 * and a prefix of any form, are passed over.
 *
 * @throws CommandFailure with ExitUnreadable if it can't be read, or holds no line of the client.
 */
CheckLog readCheckLog(const QString& path);

} // namespace vx
