#pragma once

#include <QCommandLineParser>
#include <QList>
#include <QString>

#include "host/CoreQt/ExceptionQt.h"
#include "tools/update-catalogue/Terminal.h"

namespace vx {

/** What the program's exit code says; scripts rely on the numbers. */
enum ExitCode {
    ExitFine = 0,     ///< done, nothing to complain of
    ExitFindings = 1, ///< done, and there is something to look at
    ExitUsage = 2,    ///< the command line is not understood
    ExitUnreadable =
        3 ///< a catalogue, a list of installations or an output can't be read or written
};

/** Ends a command early. The message goes to standard error. */
class CommandFailure : public ExceptionQt
{
public:
    CommandFailure(ExitCode code, const QString& message)
        : ExceptionQt(message)
        , exitCode(code)
    {}

    ExitCode exitCode;
};

/** One command of the program, such as "lint". */
struct Command
{
    /** The word on the command line. */
    QString name;
    /** One line for the list of commands. */
    QString summary;
    /** A complete command line that works on the sample catalogue, shown by --help. */
    QString example;
    /** Whether the command shows widgets; it then runs on the offscreen platform. */
    bool needsWidgets;
    /** Adds the command's options and arguments. "--json" and "--help" are there already. */
    void (*declare)(QCommandLineParser& parser);
    /** Does the work. @throws CommandFailure */
    ExitCode (*run)(const QCommandLineParser& parser, Terminal& terminal);
};

/** Which release of the program this is, such as "1.0.0". */
QString programVersion();

/** Every command, in the order in which the help lists them. */
const QList<Command>& allCommands();

/** The command named @p name, or null. */
const Command* findCommand(const QString& name);

/**
 * Runs the program with @p arguments (the program's own name first) and reports failures on
 * standard error. A QCoreApplication, or for needsWidgets a QApplication, must exist.
 */
ExitCode runCommandLine(const QStringList& arguments, Terminal& terminal);

} // namespace vx
