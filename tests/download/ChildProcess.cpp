#include "tests/download/ChildProcess.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

namespace vx::test {

namespace {

const char childMark[] = "--child";

QByteArrayList readArguments(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArrayList arguments = file.readAll().split('\0');
    arguments.removeLast(); // what follows the last null character
    return arguments;
}

} // namespace

void installArgumentWriter(const QString& path)
{
    QVERIFY(QFile::copy(QStringLiteral(VX_ARGUMENT_WRITER), path));
}

ChildEnd runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                    const QMap<QString, QString>& variables)
{
    const QTemporaryDir report;
    const QString argumentsFile = report.filePath(QStringLiteral("arguments"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VX_ARGUMENTS_FILE"), argumentsFile);
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable) {
        environment.insert(variable.key(), variable.value());
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(60000);
    ChildEnd end;
    end.output = process.readAll();
    if (ended && process.exitStatus() == QProcess::NormalExit) {
        end.exitCode = process.exitCode();
    } else if (ended) {
        end.signal = process.exitCode();
    }
    end.arguments = readArguments(argumentsFile);
    return end;
}

ChildEnd runChild(const QStringList& arguments, const QString& folder,
                  const QMap<QString, QString>& variables)
{
    return runProgram(QCoreApplication::applicationFilePath(),
                      QStringList(QLatin1String(childMark)) + arguments, folder, variables);
}

bool isChild(int argc, char** argv)
{
    return argc > 1 && std::strcmp(argv[1], childMark) == 0;
}

QStringList childArguments()
{
    return QCoreApplication::arguments().mid(2);
}

} // namespace vx::test
