#pragma once

#include <QCommandLineParser>
#include <QSet>
#include <QString>

namespace vx {

/** What makes a release pipeline stop. */
enum class Alarm {
    Lost,      ///< was offered something, and no longer is
    Replaced,  ///< is offered packages of other names than before
    Downgrade, ///< is offered a lower release than before
    Nothing    ///< an installation is offered nothing at all
};

/** Adds "--fail-on". */
void declareGate(QCommandLineParser& parser);

/** The alarms that "--fail-on" names. @throws CommandFailure with ExitUsage for any other word. */
QSet<int> gateFrom(const QCommandLineParser& parser);

} // namespace vx
