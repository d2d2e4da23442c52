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

class tst_MatrixAndDiff : public QObject
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

void tst_MatrixAndDiff::init()
{
    m_folder.reset(new QTemporaryDir);
}

void tst_MatrixAndDiff::countsWhoIsOfferedWhat()
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

void tst_MatrixAndDiff::matrixGate()
{
    const QStringList arguments{"matrix",    "-",      "--installations", path("f.csv", field),
                                "--fail-on", "nothing"};
    QCOMPARE(runWorkbench(arguments, sampleCatalogue()).exitCode, 1);
    QFile::remove(m_folder->filePath("f.csv"));
    path("f.csv", "version,name\n1.0,App\n");
    QCOMPARE(runWorkbench(arguments, sampleCatalogue()).exitCode, 0);
}

void tst_MatrixAndDiff::brokenLists_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("message");

    QTest::newRow("empty") << QByteArray() << ":1: ";
    QTest::newRow("unknown column") << QByteArray("name,version,colour\n") << "\"colour\"";
    QTest::newRow("no version") << QByteArray("name\nApp\n") << "\"version\" is missing";
    QTest::newRow("cells") << QByteArray("name,version\nApp,1\nApp\n") << ":3: 1 cells";
    QTest::newRow("camera") << QByteArray("name,version,cameras\nApp,1,CAM\n") << ":2: \"CAM\"";
    QTest::newRow("count") << QByteArray("name,version,count\nApp,1,many\n") << ":2: \"many\"";
    QTest::newRow("lines in quotes")
        << QByteArray("name,version,label\nApp,1,\"a\n\"\"b\"\"\"\nApp\n") << ":4: 1 cells";
}

void tst_MatrixAndDiff::brokenLists()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, message);

    const WorkbenchRun run =
        runWorkbench({"matrix", "-", "--installations", path("f.csv", list)}, sampleCatalogue());
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
}

void tst_MatrixAndDiff::tellsWhatChanges_data()
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
    QTest::newRow("nothing") << two << two << ""
                             << "nothing" << 1;
}

void tst_MatrixAndDiff::tellsWhatChanges()
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

void tst_MatrixAndDiff::manyInstallations()
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

VX_TEST_MAIN(tst_MatrixAndDiff)
#include "tst_MatrixAndDiff.moc"
