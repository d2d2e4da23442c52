#pragma once

#include <QByteArrayList>
#include <QMap>
#include <QStringList>

namespace vx::test {

/** What became of a child process. */
struct ChildEnd
{
    /** Its exit code, or -1 if a signal or the time limit ended it. */
    int exitCode = -1;
    /** The signal that ended it, or 0. */
    int signal = 0;
    /** What it wrote to either stream. */
    QByteArray output;
    /** The arguments of the program that took its place; empty if none did. */
    QByteArrayList arguments;
};

/** Puts a program that reports its arguments at @p path. */
void installArgumentWriter(const QString& path);

/**
 * Runs @p program in @p folder until it ends.
 *
 * @param variables added to its environment.
 */
ChildEnd runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                    const QMap<QString, QString>& variables = {});

/**
 * Runs this test program again as a child, to see what becomes of a process that is replaced.
 *
 * @param arguments what childArguments() returns in the child.
 */
ChildEnd runChild(const QStringList& arguments, const QString& folder,
                  const QMap<QString, QString>& variables = {});

/** Whether @p argv asks for the child's part, which is then what main() has to do. */
bool isChild(int argc, char** argv);

/** The arguments that runChild() gave. Needs an application object. */
QStringList childArguments();

} // namespace vx::test
