#include <QtTest>

#include <QJsonArray>
#include <QJsonObject>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;

namespace {

const QStringList appOne{"explain",   "-",   "--json",   "--application", "App",
                         "--version", "1.5", "--camera", "CAM-1=4.0"};

QJsonObject verdict(const QJsonDocument& document, int target, int package)
{
    return document["targets"][target]["packages"][package].toObject();
}

} // namespace

class ExplainTest : public QObject
{
    Q_OBJECT

private slots:
    void namesTheFirstTest_data();
    void namesTheFirstTest();
    void showsTheRowsOfTheDialog();
    void betaAcceptsEveryStatus();
    void narrowsToOnePackage();
    void equalReleaseOfOtherSpelling();
    void samePackageForTwoCameras();
    void exitCodeTellsIfAnythingIsOffered();
    void readsWellForPeople();
};

void ExplainTest::namesTheFirstTest_data()
{
    QTest::addColumn<int>("target");
    QTest::addColumn<int>("package");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("test");
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("required");

    QTest::newRow("offered") << 0 << 0 << "offered"
                             << ""
                             << ""
                             << "";
    QTest::newRow("release") << 0 << 1 << "refused"
                             << "release"
                             << "1.5"
                             << "1.5";
    QTest::newRow("status") << 0 << 2 << "refused"
                            << "status"
                            << "BETA"
                            << "STABLE";
    QTest::newRow("platforms") << 0 << 3 << "refused"
                               << "platforms"
                               << "Win"
                               << "Mac32 Mac64 MacPP";
    QTest::newRow("file type") << 0 << 4 << "refused"
                               << "file type"
                               << "zip"
                               << "mpkg dmg";
    QTest::newRow("name") << 0 << 5 << "refused"
                          << "name"
                          << "Firmware"
                          << "App";
    QTest::newRow("camera") << 1 << 5 << "offered"
                            << ""
                            << ""
                            << "";
    QTest::newRow("camera, release") << 1 << 0 << "refused"
                                     << "release"
                                     << "2.0"
                                     << "4.0";
    QTest::newRow("twin") << 1 << 6 << "duplicate"
                          << ""
                          << "1-2026-01-06T00:00:00-20"
                          << "Firmware 4.2";
    QTest::newRow("other size") << 1 << 7 << "offered"
                                << ""
                                << ""
                                << "";
}

void ExplainTest::namesTheFirstTest()
{
    QFETCH(int, target);
    QFETCH(int, package);
    QFETCH(QString, outcome);
    QFETCH(QString, test);
    QFETCH(QString, actual);
    QFETCH(QString, required);

    const WorkbenchRun run = runWorkbench(appOne, sampleCatalogue());
    QCOMPARE(run.exitCode, 0);
    const QJsonObject found = verdict(run.json(), target, package);
    QCOMPARE(found["outcome"].toString(), outcome);
    QCOMPARE(found["test"].toString(), test);
    QCOMPARE(found["actual"].toString(), actual);
    QCOMPARE(found["required"].toString(), required);
    QCOMPARE(found["line"].toInt(), package + 2);
}

void ExplainTest::showsTheRowsOfTheDialog()
{
    const QJsonArray rows = runWorkbench(appOne, sampleCatalogue()).json()["rows"].toArray();
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows[0].toObject()["cells"].toArray()[0].toString(), QString("App 2.0"));
    QCOMPARE(rows[1].toObject()["cells"].toArray()[0].toString(), QString("Firmware 4.2"));
    QVERIFY(!rows[1].toObject()["hidden"].toBool());
    QVERIFY(rows[2].toObject()["hidden"].toBool());

    const QJsonArray french =
        runWorkbench(appOne + QStringList{"--language", "fr"}, sampleCatalogue())
            .json()["rows"]
            .toArray();
    QVERIFY(french[1].toObject()["hidden"].toBool());
    QVERIFY(!french[2].toObject()["hidden"].toBool());
}

void ExplainTest::betaAcceptsEveryStatus()
{
    const QJsonDocument document =
        runWorkbench(appOne + QStringList{"--beta"}, sampleCatalogue()).json();
    QCOMPARE(verdict(document, 0, 2)["outcome"].toString(), QString("offered"));
    QCOMPARE(verdict(document, 0, 0)["outcome"].toString(), QString("superseded"));
    QCOMPARE(verdict(document, 0, 0)["required"].toString(), QString("3.0b1"));
}

void ExplainTest::narrowsToOnePackage()
{
    const WorkbenchRun run =
        runWorkbench(appOne + QStringList{"--package", "twin"}, sampleCatalogue());
    QCOMPARE(run.json()["targets"][0]["packages"].toArray().size(), 1);
    QCOMPARE(verdict(run.json(), 0, 0)["label"].toString(), QString("Firmware twin 4.2"));
    QCOMPARE(run.exitCode, 1);
}

void ExplainTest::equalReleaseOfOtherSpelling()
{
    QByteArray catalogue = sampleCatalogue();
    catalogue.replace("release=\"1.5\"", "release=\"2.00\"");
    const WorkbenchRun run = runWorkbench(appOne, catalogue);
    QCOMPARE(verdict(run.json(), 0, 1)["outcome"].toString(), QString("superseded"));
    QVERIFY(verdict(run.json(), 0, 1)["message"].toString().contains("spelt differently"));
}

void ExplainTest::samePackageForTwoCameras()
{
    const QStringList arguments = appOne + QStringList{"--camera", "CAM-1=4.1"};
    const WorkbenchRun run = runWorkbench(arguments, sampleCatalogue());
    QCOMPARE(verdict(run.json(), 2, 5)["outcome"].toString(), QString("duplicate"));
    QVERIFY(verdict(run.json(), 2, 5)["message"].toString().contains("another camera"));
    QCOMPARE(run.json()["rows"].toArray().size(), 3);
}

void ExplainTest::exitCodeTellsIfAnythingIsOffered()
{
    const QStringList newest{"explain", "-", "--application", "App", "--version", "9"};
    const WorkbenchRun run = runWorkbench(newest, sampleCatalogue());
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.contains("Congratulations! Your product is up-to-date!"));
}

void ExplainTest::readsWellForPeople()
{
    QStringList arguments = appOne;
    arguments.removeAll("--json");
    const QString output = runWorkbench(arguments, sampleCatalogue()).output;
    QVERIFY(output.contains("Application App 1.5\n  offered    App 2.0 (line 2)\n"));
    QVERIFY(output.contains("refused    App 1.5 (line 3): release \"1.5\" is not above the "
                            "installed \"1.5\"\n"));
    QVERIFY(output.contains("Camera CAM-1 4.0\n"));
    QVERIFY(output.contains("  App 2.0 | 0.0 MB | mpkg | Multilingual | Mac64\n"));
    QVERIFY(output.contains("Firmware fr 4.2 | 0.0 MB | bin | fr | CAM-1 (hidden in \"en\")\n"));
}

VX_TEST_MAIN(ExplainTest)
#include "tst_Explain.moc"
