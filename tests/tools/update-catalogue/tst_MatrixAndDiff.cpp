#include <QtTest>

#include <QJsonArray>
#include <QJsonObject>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

const QByteArray field = "name,version,platforms,cameras,beta,count\r\n"
                         "App,1.0,Mac64,CAM-1=4.0;CAM-2=1,,10\r\n"
                         "App,1.0,,\"CAM-1=4.2\",yes,2\n"
                         "\n"
                         "App,9,,,,5\n";

} // namespace

class MatrixAndDiffTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void countsWhoIsOfferedWhat();
    void matrixGate();
    void brokenLists_data();
    void brokenLists();
    void tellsWhatChanges_data();
    void tellsWhatChanges();
    void manyInstallations();

private:
    QString path(const QString& name, const QByteArray& content)
    {
        return writeFile(m_folder->path(), name, content);
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void MatrixAndDiffTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

void MatrixAndDiffTest::countsWhoIsOfferedWhat()
{
    const WorkbenchRun run = runWorkbench(
        {"matrix", "--json", "-", "--installations", path("f.csv", field)}, sampleCatalogue());
    QCOMPARE(run.exitCode, 0);
    const QJsonDocument found = run.json();
    QCOMPARE(found["installations"].toInt(), 17);
    QCOMPARE(found["withoutOffer"].toInt(), 5);

    QMap<QString, int> counts;
    for (const QJsonValue& target : found["targets"].toArray()) {
        for (const QJsonValue& offer : target["offers"].toArray()) {
            counts.insert(target["target"].toString() + ": " + offer["offer"].toString(),
                          offer["count"].toInt());
        }
    }
    const QMap<QString, int> expected{
        {"Application App: ", 5},
        {"Application App: App 2.0 (mpkg)", 10},
        {"Application App: App 3.0b1 (dmg)", 2},
        {"Camera CAM-1: Firmware 4.2 (bin), Firmware twin 4.2 (bin), Firmware fr 4.2 (bin)", 10},
        {"Camera CAM-1: ", 2},
        {"Camera CAM-2: ", 10}};
    QCOMPARE(counts, expected);
}

void MatrixAndDiffTest::matrixGate()
{
    const QStringList arguments{"matrix",    "-",      "--installations", path("f.csv", field),
                                "--fail-on", "nothing"};
    QCOMPARE(runWorkbench(arguments, sampleCatalogue()).exitCode, 1);
    QFile::remove(m_folder->filePath("f.csv"));
    path("f.csv", "version,name\n1.0,App\n");
    QCOMPARE(runWorkbench(arguments, sampleCatalogue()).exitCode, 0);
}

void MatrixAndDiffTest::brokenLists_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("exitCode");

    const auto row = [](const char* name, const char* list, const char* message, int exitCode) {
        QTest::newRow(name) << QByteArray(list) << QString(message) << exitCode;
    };
    row("empty", "", ":1:1: ", 3);
    row("unknown column", "name,version,colour\n", ":1:14: no column is called \"colour\"", 3);
    row("no version", "name\nApp\n", ":1:1: the column \"version\" is missing", 3);
    row("cells", "name,version\nApp,1\nApp\n", ":3:1: 1 cells", 3);
    row("camera", "name,version,cameras\nApp,1,CAM\n", ":2:7: \"CAM\"", 3);
    row("count", "name,version,count\nApp,1,many\n", ":2:7: \"many\"", 3);
    row("lines in quotes", "name,version,label\nApp,1,\"a\n\"\"b\"\"\"\nApp\n", ":4:1: 1 cells", 3);
    row("beta", "name,version,beta\nApp,1,maybe\n", ":2:7: \"maybe\" says neither yes nor no", 2);
    row("version", "name,version\nApp,new\n", ":2:5: \"new\" is no version", 2);
    row("no text for a version", "name,version\nApp,\n", ":2:5: \"\" is no version", 2);
    row("version of a camera", "name,version,cameras\nApp,1,CAM=new\n", ":2:7: \"new\"", 2);
    row("no row", "name,version\n\n", ":2:1: there is no installation", 2);
    row("column twice", "name,version,Name\nApp,1,App\n", ":1:14: the column \"Name\"", 2);
    row("semicolons", "name;version\nApp;1\n", ":1:1: the columns are separated by semicolons", 2);
}

void MatrixAndDiffTest::brokenLists()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, message);
    QFETCH(int, exitCode);

    const WorkbenchRun run =
        runWorkbench({"matrix", "-", "--installations", path("f.csv", list)}, sampleCatalogue());
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
}

void MatrixAndDiffTest::tellsWhatChanges_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("gate");
    QTest::addColumn<int>("exitCode");

    const QByteArray two = "release=\"2.0\"";
    QTest::newRow("none") << two << two << ""
                          << "" << 0;
    QTest::newRow("upgrade") << two << QByteArray("release=\"2.1\"") << "upgrade"
                             << "" << 1;
    QTest::newRow("upgrade passes") << two << QByteArray("release=\"2.1\"") << "upgrade"
                                    << "lost,downgrade" << 0;
    QTest::newRow("downgrade") << two << QByteArray("release=\"1.9\"") << "downgrade"
                               << "downgrade" << 1;
    QTest::newRow("lost") << QByteArray("status=\"STABLE\"") << QByteArray("status=\"stable\"")
                          << "lost"
                          << "lost" << 1;
    QTest::newRow("other") << QByteArray("name=\"App\" release=\"2.0\"")
                           << QByteArray("name=\"App\" release=\"2.00\"") << "other"
                           << "lost" << 0;
    QTest::newRow("replaced") << QByteArray("name=\"Firmware fr\"") << QByteArray("name=\"Other\"")
                              << "replaced"
                              << "replaced" << 1;
    QTest::newRow("replaced passes")
        << QByteArray("name=\"Firmware fr\"") << QByteArray("name=\"Other\"") << "replaced"
        << "lost,downgrade" << 0;
    QTest::newRow("nothing") << two << two << ""
                             << "nothing" << 1;
}

void MatrixAndDiffTest::tellsWhatChanges()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, change);
    QFETCH(QString, gate);
    QFETCH(int, exitCode);

    QVERIFY(sampleCatalogue().contains(before));
    const QString oldFile = path("old.xml", sampleCatalogue());
    const QString newFile = path("new.xml", sampleCatalogue().replace(before, after));
    QStringList arguments{"diff",  "--json",          oldFile,
                          newFile, "--installations", path("f.csv", field)};
    if (!gate.isEmpty()) {
        arguments += {"--fail-on", gate};
    }
    const WorkbenchRun run = runWorkbench(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QStringList changes;
    for (const QJsonValue& row : run.json()["changes"].toArray()) {
        changes.append(row["change"].toString());
    }
    changes.removeDuplicates();
    QCOMPARE(changes.join(' '), change);
    QCOMPARE(run.json()["withoutOffer"].toInt(), change == "lost" ? 15 : 5);
}

void MatrixAndDiffTest::manyInstallations()
{
    QByteArray list = "name,version,platforms,cameras\n";
    for (int i = 0; i < 5000; ++i) {
        list += "App,1." + QByteArray::number(i) + ",Mac64,CAM-1=4." + QByteArray::number(i) + '\n';
    }
    const WorkbenchRun run = runWorkbench(
        {"matrix", "--json", "-", "--installations", path("f.csv", list)}, sampleCatalogue());
    QCOMPARE(run.json()["installations"].toInt(), 5000);
    // Firmware 4.2 is newer than 4.0 and 4.1 alone; the application is below 2.0 everywhere.
    const QJsonArray firmware = run.json()["targets"][1]["offers"].toArray();
    QCOMPARE(firmware[0]["count"].toInt(), 4998);
    QCOMPARE(firmware[1]["count"].toInt(), 2);
    QCOMPARE(run.json()["targets"][0]["offers"][0]["count"].toInt(), 5000);
}

VX_TEST_MAIN(MatrixAndDiffTest)
#include "tst_MatrixAndDiff.moc"
