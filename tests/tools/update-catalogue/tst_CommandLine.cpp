#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/Rule.h"

using vx::test::runWorkbench;
using vx::test::WorkbenchRun;

class tst_CommandLine : public QObject
{
    Q_OBJECT

private slots:
    void tellsWhatThereIs();
    void everyCommandHasHelpWithAnExample();
    void misuse_data();
    void misuse();
    void listsTheRules();
    void readsStandardInput();
    void asksForSizesThroughTheProxyOfTheEnvironment();
    void readsUrls();
    void unreadable_data();
    void unreadable();
    void coloursOnlyOnATerminal();
};

void tst_CommandLine::tellsWhatThereIs()
{
    const WorkbenchRun run = runWorkbench({"--help"});
    QCOMPARE(run.exitCode, 0);
    for (const vx::Command& command : vx::allCommands()) {
        QVERIFY(run.output.contains(command.name));
        QVERIFY(run.output.contains(command.summary));
    }
}

void tst_CommandLine::everyCommandHasHelpWithAnExample()
{
    QCOMPARE(vx::allCommands().size(), 7);
    for (const vx::Command& command : vx::allCommands()) {
        const WorkbenchRun run = runWorkbench({command.name, "--help"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.output.startsWith("Usage: update-catalogue " + command.name + " [options]"));
        QVERIFY(run.output.contains("Example:\n  update-catalogue " + command.name + ' '));
        QVERIFY(run.output.contains("--json"));
    }
}

void tst_CommandLine::misuse_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no such command") << QStringList{"check"};
    QTest::newRow("no such option") << QStringList{"lint", "--frob", "a.xml"};
    QTest::newRow("no catalogue") << QStringList{"lint"};
    QTest::newRow("two catalogues") << QStringList{"lint", "a.xml", "b.xml"};
    QTest::newRow("no such rule") << QStringList{"lint", "--rule", "x", "-"};
    QTest::newRow("no application") << QStringList{"explain", "-", "--version", "1"};
    QTest::newRow("no version") << QStringList{"explain", "-", "--application", "App"};
    QTest::newRow("no camera") << QStringList{"explain",   "-", "--application", "App",
                                              "--version", "1", "--camera",      "CAM-1"};
    QTest::newRow("no installations") << QStringList{"matrix", "-"};
    QTest::newRow("one catalogue") << QStringList{"diff", "-", "--installations", "x.csv"};
    QTest::newRow("no such gate") << QStringList{"diff",  "-",         "-",   "--installations",
                                                 "x.csv", "--fail-on", "doom"};
    QTest::newRow("gate of diff") << QStringList{"matrix", "-",         "--installations",
                                                 "x.csv",  "--fail-on", "lost"};
    QTest::newRow("no scenario") << QStringList{"serve", ".", "--scenario", "rain"};
    QTest::newRow("no port") << QStringList{"serve", ".", "--port", "high"};
}

void tst_CommandLine::misuse()
{
    QFETCH(QStringList, arguments);

    const WorkbenchRun run = runWorkbench(arguments);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.errors.startsWith("update-catalogue: "));
    QCOMPARE(run.output, QString());
}

void tst_CommandLine::readsStandardInput()
{
    const WorkbenchRun run = runWorkbench({"lint", "-", "--rule", "no-package"}, "<a/>");
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.startsWith("standard input:1:1: error: "));
}

void tst_CommandLine::listsTheRules()
{
    const WorkbenchRun run = runWorkbench({"lint", "--list"});
    QCOMPARE(run.exitCode, 0);
    for (const vx::Rule& rule : vx::allRules()) {
        QVERIFY(run.output.contains(rule.name));
        QVERIFY(run.output.contains(rule.description));
    }
}

void tst_CommandLine::asksForSizesThroughTheProxyOfTheEnvironment()
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
    QCOMPARE(server.requests().first().host, QByteArray("h.example:80"));
}

void tst_CommandLine::readsUrls()
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

void tst_CommandLine::unreadable_data()
{
    QTest::addColumn<QStringList>("arguments");

    const QStringList app{"--application", "App", "--version", "1"};
    QTest::newRow("no such file") << QStringList{"lint", "missing.xml"};
    QTest::newRow("folder") << QStringList{"lint", "."};
    QTest::newRow("refused") << QStringList{"lint", "http://127.0.0.1:1/"};
    QTest::newRow("no XML") << (QStringList{"explain", "-"} + app);
    QTest::newRow("no installations") << QStringList{"matrix", "-", "--installations", "none.csv"};
    QTest::newRow("no folder") << QStringList{"serve", "missing"};
}

void tst_CommandLine::unreadable()
{
    QFETCH(QStringList, arguments);

    const WorkbenchRun run = runWorkbench(arguments, "no XML");
    QCOMPARE(run.exitCode, 3);
    QVERIFY(run.errors.startsWith("update-catalogue: "));
}

void tst_CommandLine::coloursOnlyOnATerminal()
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

VX_TEST_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
