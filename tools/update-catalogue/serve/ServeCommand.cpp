#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include <csignal>

#include "tools/server/Scenario.h"
#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/Commands.h"

namespace vx {

namespace {

constexpr int logInterval = 50;
volatile std::sig_atomic_t stopWanted = 0;

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("folder", "The folder with catalogue.xml and the packages.");
    parser.addOption({"port", "The port; 0 takes any that is free.", "N", "8080"});
    parser.addOption({"address", "The local address to listen on.", "ADDRESS", "127.0.0.1"});
    parser.addOption({"scenario", "What to play; see --list.", "NAME", "up-to-date"});
    parser.addOption({"list", "List the scenarios."});
}

void printScenarios(Terminal& terminal)
{
    for (const QString& name : scenarioNames()) {
        terminal.line(QString("%1 %2").arg(name, -16).arg(scenarioDescription(name)));
    }
}

quint16 portFrom(const QCommandLineParser& parser)
{
    bool isNumber = false;
    const quint16 port = parser.value("port").toUShort(&isNumber);
    if (!isNumber) {
        throw CommandFailure(ExitUsage, QString("\"%1\" is no port").arg(parser.value("port")));
    }
    return port;
}

void startServer(UpdateServer& server, const QCommandLineParser& parser)
{
    const QString folder = parser.positionalArguments().value(0);
    if (!QFileInfo(folder).isDir()) {
        throw CommandFailure(ExitUnreadable, QString("%1: no such folder").arg(folder));
    }
    const QString scenario = parser.value("scenario");
    if (!applyScenario(server, scenario, folder)) {
        throw CommandFailure(ExitUsage, QString("no scenario \"%1\". Try --list").arg(scenario));
    }
    if (!server.start(parser.value("address"), portFrom(parser))) {
        throw CommandFailure(ExitUnreadable,
                             QString("port %1 of %2 cannot be had")
                                 .arg(parser.value("port"), parser.value("address")));
    }
}

void printNewRequests(const UpdateServer& server, int& printed, Terminal& terminal)
{
    const QList<ServedRequest> requests = server.requests();
    for (; printed < requests.size(); ++printed) {
        const ServedRequest& request = requests.at(printed);
        terminal.line(QString("%1 %2 (host %3)")
                          .arg(QString::fromUtf8(request.method), QString::fromUtf8(request.target),
                               QString::fromUtf8(request.host)));
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.isSet("list")) {
        printScenarios(terminal);
        return ExitFine;
    }
    UpdateServer server;
    startServer(server, parser);
    terminal.line(QString("Serving %1 as \"%2\" at %3")
                      .arg(parser.positionalArguments().first(), parser.value("scenario"),
                           server.url("/catalogue.xml").toString()));
    terminal.line(QString("It is a proxy, too: %1:%2 answers for every host. Ctrl+C ends it.")
                      .arg(parser.value("address"))
                      .arg(server.port()));

    stopWanted = 0;
    std::signal(SIGINT, [](int) { stopWanted = 1; });
    std::signal(SIGTERM, [](int) { stopWanted = 1; });
    int printed = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        printNewRequests(server, printed, terminal);
        if (stopWanted != 0) {
            QCoreApplication::quit();
        }
    });
    timer.start(logInterval);
    QCoreApplication::exec();
    return ExitFine;
}

} // namespace

const Command serveCommand{"serve",
                           "Serves a catalogue and its packages, or plays a fault.",
                           "update-catalogue serve examples/camera_manager --scenario stall-at-99",
                           false,
                           declare,
                           run};

} // namespace vx
