#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include <csignal>
#include <exception>

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
    parser.addOption({"scenario", "What to play; see --list.", "NAME", "as-it-is"});
    parser.addOption({"list", "List the scenarios."});
}

void printScenarios(Terminal& terminal, bool asJson)
{
    QJsonArray list;
    for (const QString& name : scenarioNames()) {
        const QString description = scenarioDescription(name);
        list.append(QJsonObject{{"scenario", name}, {"description", description}});
        if (!asJson) {
            terminal.line(QString("%1 %2").arg(name, -17).arg(description));
        }
    }
    if (asJson) {
        terminal.json(QJsonDocument(list));
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

void startServer(UpdateServer& server, const QCommandLineParser& parser, const SigningKey& key)
{
    const QString folder = parser.positionalArguments().value(0);
    if (!QFileInfo(folder).isDir()) {
        throw CommandFailure(ExitUnreadable, QString("%1: no such folder").arg(folder));
    }
    const QString scenario = parser.value("scenario");
    if (!applyScenario(server, scenario, folder, key)) {
        throw CommandFailure(ExitUsage, QString("no scenario \"%1\". Try --list").arg(scenario));
    }
    if (!server.start(parser.value("address"), portFrom(parser))) {
        throw CommandFailure(ExitUnreadable,
                             QString("port %1 of %2 cannot be had")
                                 .arg(parser.value("port"), parser.value("address")));
    }
}

void printLine(Terminal& terminal, const QJsonObject& object)
{
    terminal.line(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

/** Tells what is served where, and each request: in sentences, or a JSON object in each line. */
class ServeLog
{
public:
    ServeLog(const UpdateServer& server, Terminal& terminal, bool asJson)
        : m_server(server)
        , m_terminal(terminal)
        , m_asJson(asJson)
    {}

    void printStart(const QString& folder, const QString& scenario, const QString& address,
                    const QString& publicKey)
    {
        const QString catalogue = m_server.url("/catalogue.xml").toString();
        const QString proxy = QString("%1:%2").arg(address).arg(m_server.port());
        if (m_asJson) {
            printLine(m_terminal, {{"folder", folder},
                                   {"scenario", scenario},
                                   {"catalogue", catalogue},
                                   {"proxy", proxy},
                                   {"publicKey", publicKey}});
            return;
        }
        m_terminal.line(QString("Serving %1 as \"%2\" at %3").arg(folder, scenario, catalogue));
        m_terminal.line(
            QString("It is a proxy, too: %1 answers for every host. Ctrl+C ends it.").arg(proxy));
        if (!publicKey.isEmpty()) {
            m_terminal.line("The public key of this run: " + publicKey);
        }
    }

    void printNewRequests()
    {
        const QList<ServedRequest> requests = m_server.requests();
        for (; m_printed < requests.size(); ++m_printed) {
            print(QString::fromUtf8(requests.at(m_printed).method),
                  QString::fromUtf8(requests.at(m_printed).target),
                  QString::fromUtf8(requests.at(m_printed).host));
        }
    }

private:
    void print(const QString& method, const QString& target, const QString& host)
    {
        if (m_asJson) {
            printLine(m_terminal, {{"method", method}, {"target", target}, {"host", host}});
        } else {
            m_terminal.line(QString("%1 %2 (host %3)").arg(method, target, host));
        }
    }

    const UpdateServer& m_server;
    Terminal& m_terminal;
    bool m_asJson;
    int m_printed = 0;
};

/** Serves until a signal comes. @throws CommandFailure if the log cannot be written any more. */
void serveUntilStopped(ServeLog& log)
{
    stopWanted = 0;
    std::signal(SIGINT, [](int) { stopWanted = 1; });
    std::signal(SIGTERM, [](int) { stopWanted = 1; });
    std::exception_ptr failure;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&log, &failure] {
        // No exception may leave through the event loop.
        try {
            log.printNewRequests();
        } catch (const CommandFailure&) {
            failure = std::current_exception();
            stopWanted = 1;
        }
        if (stopWanted != 0) {
            QCoreApplication::quit();
        }
    });
    timer.start(logInterval);
    QCoreApplication::exec();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.isSet("list")) {
        printScenarios(terminal, parser.isSet("json"));
        return ExitFine;
    }
    UpdateServer server;
    const SigningKey key = SigningKey::generate();
    startServer(server, parser, key);
    const QString scenario = parser.value("scenario");
    ServeLog log(server, terminal, parser.isSet("json"));
    log.printStart(parser.positionalArguments().first(), scenario, parser.value("address"),
                   isAboutSignatures(scenario) ? QString(key.publicKey()) : QString());
    serveUntilStopped(log);
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
