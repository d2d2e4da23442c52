#include "tools/update-catalogue/Command.h"

#include <QTextStream>

namespace vx {

namespace {

const char programName[] = "update-catalogue";

void printOverview(Terminal& terminal)
{
    terminal.line("Tells what an update catalogue does before it is published.");
    terminal.line();
    terminal.line(QString("Usage: %1 COMMAND [OPTION]... CATALOGUE").arg(programName));
    terminal.line("A catalogue is a file, an http or https URL, or - for standard input.");
    terminal.line();
    for (const Command& command : allCommands()) {
        terminal.line(QString("  %1 %2").arg(command.name, -8).arg(command.summary));
    }
    terminal.line();
    terminal.line(
        QString("%1 COMMAND --help tells more, %1 --version which one this is.").arg(programName));
    terminal.line("Exit code: 0 fine, 1 findings, 2 usage, 3 unreadable.");
}

void printHelp(const Command& command, const QCommandLineParser& parser, Terminal& terminal)
{
    QString help = parser.helpText();
    // Qt writes the path that the program was started by, and does not know the command.
    const QString usage = QString("Usage: %1 %2").arg(programName, command.name);
    help.replace(0, help.indexOf(" [options]"), usage);
    terminal.line(help);
    terminal.line("Example:");
    terminal.line("  " + command.example);
}

void reportFailure(const QString& message)
{
    QTextStream(stderr) << programName << ": " << message << '\n';
}

ExitCode run(const Command& command, const QStringList& arguments, Terminal& terminal)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary);
    parser.addOption({{"h", "help"}, "Show this help."});
    parser.addOption({"json", "Print JSON."});
    command.declare(parser);
    const bool understood = parser.parse(arguments);
    if (parser.isSet("help")) {
        printHelp(command, parser, terminal);
        return ExitFine;
    }
    if (!understood) {
        throw CommandFailure(ExitUsage, parser.errorText());
    }
    return command.run(parser, terminal);
}

} // namespace

QString programVersion()
{
    return VX_VERSION;
}

const Command* findCommand(const QString& name)
{
    for (const Command& command : allCommands()) {
        if (command.name == name) {
            return &command;
        }
    }
    return nullptr;
}

namespace {

ExitCode runNamed(const QStringList& arguments, Terminal& terminal)
{
    const QString name = arguments.value(1);
    if (name == "--help" || name == "-h" || name == "help") {
        printOverview(terminal);
        return ExitFine;
    }
    if (name == "--version") {
        terminal.line(QString("%1 %2").arg(programName, programVersion()));
        return ExitFine;
    }
    const Command* command = findCommand(name);
    if (command == nullptr) {
        throw CommandFailure(ExitUsage, name.isEmpty()
                                            ? QString("which command? Try --help")
                                            : QString("no command \"%1\". Try --help").arg(name));
    }
    QStringList rest = arguments;
    rest.removeAt(1);
    return run(*command, rest, terminal);
}

} // namespace

ExitCode runCommandLine(const QStringList& arguments, Terminal& terminal)
{
    try {
        return runNamed(arguments, terminal);
    } catch (const CommandFailure& failure) {
        reportFailure(failure.message());
        return failure.exitCode;
    }
}

} // namespace vx
