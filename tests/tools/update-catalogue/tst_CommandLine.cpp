#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/Rule.h"

using vx::test::runWorkbench;
using vx::test::WorkbenchRun;

namespace {

/** The folder in which the examples of the commands are run. */
QString sourceRoot()
{
    return QFileInfo(QFINDTESTDATA("../../../CHANGELOG.md")).absolutePath();
}

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void tellsWhatThereIs();
    void everyCommandHasHelpWithAnExample();
    void misuse_data();
    void misuse();
    void listsTheRules();
    void failsOnWhatIsAskedFor_data();
    void failsOnWhatIsAskedFor();
    void readsStandardInput();
    void asksForSizesThroughTheProxyOfTheEnvironment();
    void readsUrls();
    void unreadable_data();
    void unreadable();
    void coloursOnlyOnATerminal();
    void tellsItsVersion();
    void fullDisksAndOtherPlaces_data();
    void fullDisksAndOtherPlaces();
    void examplesDoSomething();
};

void CommandLineTest::tellsWhatThereIs()
{
    const WorkbenchRun run = runWorkbench({"--help"});
    QCOMPARE(run.exitCode, 0);
    for (const vx::Command& command : vx::allCommands()) {
        QVERIFY(run.output.contains(command.name));
        QVERIFY(run.output.contains(command.summary));
    }
}

void CommandLineTest::everyCommandHasHelpWithAnExample()
{
    QCOMPARE(vx::allCommands().size(), 11);
    for (const vx::Command& command : vx::allCommands()) {
        const WorkbenchRun run = runWorkbench({command.name, "--help"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.output.startsWith("Usage: update-catalogue " + command.name + " [options]"));
        QVERIFY(run.output.contains("Example:\n  update-catalogue " + command.name + ' '));
        QVERIFY(run.output.contains("--json"));
    }
}

void CommandLineTest::misuse_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no such command") << QStringList{"check"};
    QTest::newRow("no such option") << QStringList{"lint", "--frob", "a.xml"};
    QTest::newRow("no catalogue") << QStringList{"lint"};
    QTest::newRow("two catalogues") << QStringList{"lint", "a.xml", "b.xml"};
    QTest::newRow("no such rule") << QStringList{"lint", "--rule", "x", "-"};
    QTest::newRow("no such severity") << QStringList{"lint", "--fail-on", "doom", "-"};
    QTest::newRow("no application") << QStringList{"explain", "-", "--version", "1"};
    QTest::newRow("no version") << QStringList{"explain", "-", "--application", "App"};
    QTest::newRow("no camera") << QStringList{"explain",   "-", "--application", "App",
                                              "--version", "1", "--camera",      "CAM-1"};
    QTest::newRow("nothing to explain") << QStringList{"explain", "--application", "App"};
    QTest::newRow("log without an application") << QStringList{"explain", "-", "--log", "a.log"};
    QTest::newRow("no installations") << QStringList{"matrix", "-"};
    QTest::newRow("one catalogue") << QStringList{"diff", "-", "--installations", "x.csv"};
    QTest::newRow("no such gate") << QStringList{"diff",  "-",         "-",   "--installations",
                                                 "x.csv", "--fail-on", "doom"};
    QTest::newRow("gate of diff") << QStringList{"matrix", "-",         "--installations",
                                                 "x.csv",  "--fail-on", "lost"};
    QTest::newRow("no scenario") << QStringList{"serve", ".", "--scenario", "rain"};
    QTest::newRow("no folder") << QStringList{"hash", "a.xml"};
    QTest::newRow("hash of nothing") << QStringList{"hash", "--files", "."};
    QTest::newRow("hash of an address")
        << QStringList{"hash", "http://h.example/a", "--files", "."};
    QTest::newRow("hash mixed up") << QStringList{"hash", "-", "--files", ".", "--json"};
    QTest::newRow("seal of nothing") << QStringList{"seal"};
    QTest::newRow("seal without a name") << QStringList{"seal", "-"};
    QTest::newRow("seal mixed up") << QStringList{"seal", "a.xml", "--out", "-", "--json"};
    QTest::newRow("unseal of two") << QStringList{"unseal", "a.xml", "b.xml"};
    QTest::newRow("unseal mixed up") << QStringList{"unseal", "a.xml", "--signature", "-"};
    QTest::newRow("no key") << QStringList{"verify", "a.xml"};
    QTest::newRow("verify of nothing") << QStringList{"verify"};
    QTest::newRow("no port") << QStringList{"serve", ".", "--port", "high"};
}

void CommandLineTest::misuse()
{
    QFETCH(QStringList, arguments);

    const WorkbenchRun run = runWorkbench(arguments);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.errors.startsWith("update-catalogue: "));
    QCOMPARE(run.output, QString());
}

void CommandLineTest::readsStandardInput()
{
    const WorkbenchRun run = runWorkbench({"lint", "-", "--rule", "no-package"}, "<a/>");
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.startsWith("standard input:1:1: error: "));
}

void CommandLineTest::listsTheRules()
{
    const WorkbenchRun run = runWorkbench({"lint", "--list"});
    QCOMPARE(run.exitCode, 0);
    for (const vx::Rule& rule : vx::allRules()) {
        QVERIFY(run.output.contains(rule.name));
        QVERIFY(run.output.contains(rule.description));
    }
    const QJsonArray list = runWorkbench({"lint", "--list", "--json"}).json().array();
    QCOMPARE(list.size(), vx::allRules().size());
    QCOMPARE(list[0]["rule"].toString(), vx::allRules().first().name);
    QCOMPARE(list[0]["severity"].toString(), QString("error"));
    QCOMPARE(list[0]["description"].toString(), vx::allRules().first().description);
}

void CommandLineTest::failsOnWhatIsAskedFor_data()
{
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("failOn");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("note") << "not-installable" << QString() << 0;
    QTest::newRow("note, on note") << "not-installable"
                                   << "note" << 1;
    QTest::newRow("warning") << "suspicious-suffix" << QString() << 1;
    QTest::newRow("warning, on note") << "suspicious-suffix"
                                      << "note" << 1;
    QTest::newRow("warning, on error") << "suspicious-suffix"
                                       << "error" << 0;
    QTest::newRow("error, on error") << "no-platform"
                                     << "error" << 1;
}

void CommandLineTest::failsOnWhatIsAskedFor()
{
    QFETCH(QString, rule);
    QFETCH(QString, failOn);
    QFETCH(int, exitCode);
    const QByteArray catalogue = "<a><package url=\"http://h.example.com/a.dmg\"/>"
                                 "<package url=\"http://h.example.com/a.b.c\"/></a>";
    QStringList arguments{"lint", "-", "--rule", rule};
    if (!failOn.isEmpty()) {
        arguments << "--fail-on" << failOn;
    }
    const WorkbenchRun run = runWorkbench(arguments, catalogue);
    QVERIFY2(run.output.contains('[' + rule + ']'), qPrintable(run.output));
    QCOMPARE(run.exitCode, exitCode);
}

void CommandLineTest::asksForSizesThroughTheProxyOfTheEnvironment()
{
    vx::UpdateServer server;
    QVERIFY(server.start());
    qputenv("http_proxy", server.url().toString().toLatin1());
    const WorkbenchRun run =
        runWorkbench({"lint", "-", "--check-urls", "--rule", "size-mismatch", "--json"},
                     vx::test::sampleCatalogue());
    qunsetenv("http_proxy");
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.json()["findings"][0]["message"].toString().contains("not to be had"));
    QCOMPARE(server.requests().first().host, QByteArray("h.example.com:80"));
}

void CommandLineTest::readsUrls()
{
    vx::UpdateServer server;
    vx::ServedReply redirect;
    redirect.status = 302;
    redirect.headers.append(qMakePair(QByteArray("Location"), QByteArray("/catalogue.xml")));
    vx::ServedReply reply;
    reply.body = "<a/>";
    server.setReply("/old.xml", redirect);
    server.setReply("/catalogue.xml", reply);
    QVERIFY(server.start());

    const QString url = server.url("/old.xml").toString();
    const WorkbenchRun run = runWorkbench({"lint", "--json", "--rule", "no-package", url});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.json()["catalogue"].toString(), url);
    QCOMPARE(run.json()["findings"][0]["rule"].toString(), QString("no-package"));
    QCOMPARE(server.requests().first().headers.value("content-type"), QByteArray("text/xml"));
}

void CommandLineTest::unreadable_data()
{
    QTest::addColumn<QStringList>("arguments");

    const QStringList app{"--application", "App", "--version", "1"};
    QTest::newRow("no such file") << QStringList{"lint", "missing.xml"};
    QTest::newRow("folder") << QStringList{"lint", "."};
    QTest::newRow("refused") << QStringList{"lint", "http://127.0.0.1:1/"};
    QTest::newRow("no XML") << (QStringList{"explain", "-"} + app);
    QTest::newRow("no installations") << QStringList{"matrix", "-", "--installations", "none.csv"};
    QTest::newRow("no store") << QStringList{"explain", "--store", "missing.conf"};
    QTest::newRow("folder for a store") << QStringList{"explain", "--store", "."};
    QTest::newRow("device for a store") << QStringList{"explain", "--store", "/dev/zero"};
    QTest::newRow("no log") << QStringList{"explain", "--log", "missing.log"};
    QTest::newRow("folder for a log") << QStringList{"explain", "--log", "."};
    QTest::newRow("device for a log") << QStringList{"explain", "--log", "/dev/zero"};
    QTest::newRow("no folder") << QStringList{"serve", "missing"};
    QTest::newRow("no XML to hash") << QStringList{"hash", "-", "--files", "."};
    QTest::newRow("no folder of files") << QStringList{"hash", "-", "--files", "missing"};
    QTest::newRow("no signature") << QStringList{"seal", "-", "--signature", "missing"};
    QTest::newRow("no key") << QStringList{"verify", "-", "--key", "missing"};
    QTest::newRow("folder for a key") << QStringList{"verify", "-", "--key", "."};
}

void CommandLineTest::unreadable()
{
    QFETCH(QStringList, arguments);

    const WorkbenchRun run = runWorkbench(arguments, "no XML");
    QCOMPARE(run.exitCode, 3);
    QVERIFY(run.errors.startsWith("update-catalogue: "));
}

void CommandLineTest::coloursOnlyOnATerminal()
{
    const QByteArray catalogue = vx::test::sampleCatalogue();
    QVERIFY(!runWorkbench({"lint", "-"}, catalogue).output.contains("\033["));

    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    QTemporaryDir folder;
    const QString file = vx::test::writeFile(folder.path(), "c.xml", catalogue);
    process.start("script",
                  {"--quiet", "--command", QString("%1 lint %2").arg(UPDATE_CATALOGUE, file),
                   folder.filePath("typescript")});
    QVERIFY(process.waitForFinished(60000));
    QVERIFY(process.readAllStandardOutput().contains("\033["));
}

void CommandLineTest::tellsItsVersion()
{
    const WorkbenchRun run = runWorkbench({"--version"});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(
        QRegularExpression("^update-catalogue \\d+\\.\\d+\\.\\d+\n$").match(run.output).hasMatch());
}

void CommandLineTest::fullDisksAndOtherPlaces_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("message");

    const QString files = "examples/camera_manager/catalogue.xml --installations "
                          "examples/camera_manager/field.csv";
    const QString full = "standard output: No space left on device";
    QTest::newRow("matrix") << "matrix " + files + " >/dev/full" << full;
    QTest::newRow("matrix as JSON") << "matrix --json " + files + " >/dev/full" << full;
    QTest::newRow("lint as JSON") << "lint --list --json >/dev/full" << full;
    QTest::newRow("help") << "--help >/dev/full" << full;
    QTest::newRow("report") << "report " + files + " --out /dev/full"
                            << "/dev/full: is no regular file";
    QTest::newRow("report into a folder") << "report " + files + " --out docs"
                                          << "docs: is no";
    QTest::newRow("report into no folder") << "report " + files + " --out none/report.html"
                                           << "none: no such folder";
    QTest::newRow("files in no folder") << "lint examples/camera_manager/catalogue.xml --files none"
                                        << "none: no such folder";
}

void CommandLineTest::fullDisksAndOtherPlaces()
{
    QFETCH(QString, command);
    QFETCH(QString, message);

    QProcess shell;
    shell.setWorkingDirectory(sourceRoot());
    shell.start("sh", {"-c", QString("exec '%1' %2").arg(UPDATE_CATALOGUE, command)});
    QVERIFY(shell.waitForFinished(60000));
    QCOMPARE(shell.exitCode(), 3);
    const QString errors = QString::fromUtf8(shell.readAllStandardError());
    QVERIFY2(errors.startsWith("update-catalogue: " + message), qPrintable(errors));
    QCOMPARE(errors.count('\n'), 1);
    QVERIFY(!QFileInfo("/dev/full").isFile());
}

void CommandLineTest::examplesDoSomething()
{
    const vx::Command* explain = vx::findCommand("explain");
    QProcess shell;
    shell.setWorkingDirectory(sourceRoot());
    QString example = explain->example;
    example.replace("update-catalogue ", QString("'%1' ").arg(UPDATE_CATALOGUE));
    shell.start("sh", {"-c", example});
    QVERIFY(shell.waitForFinished(60000));
    QCOMPARE(shell.exitCode(), 0);
    QVERIFY(shell.readAllStandardOutput().contains("  offered "));
}

VX_TEST_MAIN(CommandLineTest)
#include "tst_CommandLine.moc"
