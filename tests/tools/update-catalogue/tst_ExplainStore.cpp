// The settings that a real client has stored, as its user can send them by mail: what the workbench
// makes of them must be what that client does.
#include <QtTest>

#include <QJsonArray>
#include <QJsonObject>

#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using namespace vx;
using namespace vx::test;

namespace {

const QDateTime someDay(QDate(2026, 11, 20), QTime(10, 20, 30));

QString storePath()
{
    return QSettings(QCoreApplication::organizationName(), QCoreApplication::applicationName())
        .fileName();
}

QStringList explainArguments(const QStringList& more)
{
    return QStringList{"explain", "--json"} + more;
}

} // namespace

class ExplainStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void saysWhatIsStored();
    void offersWhatTheClientIsOffered();
    void optionsCountBeforeTheStore();
    void describesChecks_data();
    void describesChecks();
    void unreadableStores_data();
    void unreadableStores();
    void leavesTheStoreAsItIs();
    void readsWellForPeople();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void ExplainStoreTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void ExplainStoreTest::saysWhatIsStored()
{
    ClientFixture fixture;
    fixture.start();
    fixture.client().setVersionNumber(VersionNumber("5.2.1"));
    fixture.client().setCurrentCameraVersions(
        {{"Dome-24", VersionNumber("4.1.9")}, {QString::fromUtf8("Tür"), VersionNumber("2")}});
    SoftwareUpdateSettings record = fixture.client().record();
    record.checkForBeta = true;
    record.updateInterval = 2;
    record.lastCheck = someDay;
    fixture.client().store(record);
    fixture.deleteClient();

    const WorkbenchRun run = runWorkbench(explainArguments({"--store", storePath()}));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    const QJsonObject store = run.json()["store"].toObject();
    QCOMPARE(store["application"].toString(), QCoreApplication::applicationName());
    QCOMPARE(store["version"].toString(), QString("5.2.1"));
    const QJsonArray cameras{QJsonObject{{"name", "Dome-24"}, {"version", "4.1.9"}},
                             QJsonObject{{"name", QString::fromUtf8("Tür")}, {"version", "2"}}};
    QCOMPARE(store["cameras"].toArray(), cameras);
    QCOMPARE(store["platforms"].toArray().size() % 3, 0);
    QCOMPARE(store["platforms"][0].toString(), QString("Mac32"));
    QCOMPARE(store["types"][1].toString(), QString("dmg"));
    QVERIFY(store["beta"].toBool());
    QVERIFY(store["checks"].toBool());
    QCOMPARE(store["interval"].toString(), QString("weekly"));
    QCOMPARE(store["lastCheck"].toString(), QString("2026-11-20T10:20:30"));
    QCOMPARE(store["nextCheck"].toString(), QString("2026-11-27T10:20:30"));
    QCOMPARE(store["server"].toString(), fixture.server.url().toString());
}

void ExplainStoreTest::offersWhatTheClientIsOffered()
{
    ClientFixture fixture;
    fixture.start();
    fixture.client().setCurrentCameraVersions({{"Mini-12", VersionNumber("1.5")}});
    const QList<PackageFields> packages{
        applicationPackage(),
        changed(applicationPackage(), {{"release", "3.0"}, {"status", "BETA"}}), cameraPackage(),
        changed(cameraPackage(), {{"platform", "Dome-24"}})};
    const QByteArray catalogue = catalogueXml(packages);

    const QJsonDocument fromStore =
        runWorkbench(explainArguments({"-", "--store", storePath()}), catalogue).json();
    const QJsonDocument fromOptions =
        runWorkbench(explainArguments({"-", "--application", QCoreApplication::applicationName(),
                                       "--version", "1.0", "--camera", "Mini-12=1.5"}),
                     catalogue)
            .json();
    QCOMPARE(fromStore["rows"].toArray().size(), 2);
    QCOMPARE(fromStore["rows"], fromOptions["rows"]);
    QCOMPARE(fromStore["targets"], fromOptions["targets"]);
}

void ExplainStoreTest::optionsCountBeforeTheStore()
{
    ClientFixture fixture;
    fixture.start();
    fixture.client().setCurrentCameraVersions({{"Mini-12", VersionNumber("1.5")}});
    const QString mailed = m_folder->filePath("attachment-1.conf");
    QVERIFY(QFile::copy(storePath(), mailed));
    const QByteArray catalogue =
        catalogueXml({changed(applicationPackage(), {{"status", "BETA"}}), cameraPackage()});

    // The file is not called after the application any more.
    const QStringList mail = explainArguments({"-", "--store", mailed});
    QCOMPARE(runWorkbench(mail, catalogue).json()["targets"][0]["name"].toString(),
             QString("attachment-1"));
    const QStringList named =
        mail + QStringList{"--application", QCoreApplication::applicationName()};
    QCOMPARE(runWorkbench(named, catalogue).json()["rows"].toArray().size(), 1);
    QCOMPARE(runWorkbench(named + QStringList{"--beta"}, catalogue).json()["rows"].toArray().size(),
             2);
    const QJsonDocument other =
        runWorkbench(named + QStringList{"--version", "9", "--camera", "Mini-12=9", "--platforms",
                                         "Win", "--types", "exe", "--beta"},
                     catalogue)
            .json();
    QCOMPARE(other["rows"].toArray().size(), 0);
    QCOMPARE(other["targets"].toArray().size(), 2);
    QCOMPARE(other["targets"][1]["installed"].toString(), QString("9"));
    QCOMPARE(runWorkbench(named + QStringList{"--camera", "Mini-12"}, catalogue).exitCode, 2);
    // What the store itself says stays said.
    QCOMPARE(other["store"]["version"].toString(), QString("1.0"));
}

void ExplainStoreTest::describesChecks_data()
{
    QTest::addColumn<bool>("checks");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QDateTime>("lastCheck");
    QTest::addColumn<QStringList>("said");

    QTest::newRow("start") << true << 0 << someDay
                           << QStringList{
                                  "checks         at application start, if the application"};
    QTest::newRow("daily") << true << 1 << someDay
                           << QStringList{
                                  "checks         daily", "last check     2026-11-20 10:20:30",
                                  "next check     within an hour after 2026-11-21 10:20:30"};
    QTest::newRow("monthly") << true << 3 << someDay
                             << QStringList{"next check     within an hour after 2026-12-20"};
    QTest::newRow("none yet") << true << 1 << QDateTime() << QStringList{"last check     never"};
    QTest::newRow("off") << false << 1 << someDay
                         << QStringList{"checks         off (the interval is daily)"};
    QTest::newRow("no interval") << true << 7 << someDay
                                 << QStringList{"checks         none: 7 is no interval"};
}

void ExplainStoreTest::describesChecks()
{
    QFETCH(bool, checks);
    QFETCH(int, interval);
    QFETCH(QDateTime, lastCheck);
    QFETCH(QStringList, said);

    ClientFixture fixture;
    SoftwareUpdateSettings record = fixture.start().record();
    record.doUpdateCheck = checks;
    record.updateInterval = interval;
    record.lastCheck = lastCheck;
    fixture.client().store(record);
    const QString output = runWorkbench({"explain", "--store", storePath()}).output;
    for (const QString& line : said) {
        QVERIFY2(output.contains("\n  " + line), qPrintable(output));
    }
    const bool isPlanned = checks && interval > 0 && interval < 4 && lastCheck.isValid();
    QCOMPARE(output.contains("next check"), isPlanned);
}

void ExplainStoreTest::unreadableStores_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("empty") << QByteArray() << "is empty";
    QTest::newRow("blank") << QByteArray("\n \n") << "is empty";
    QTest::newRow("picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0", 18)
                             << "is no settings store, or a damaged one";
    QTest::newRow("cut off") << QByteArray("[General]\nproduct=Camera Manager\nversionNu")
                             << "is no settings store, or a damaged one";
    QTest::newRow("of something else")
        << QByteArray("[Window]\nproduct=1\nwidth=2\n") << "holds no setting of the update client";
    QTest::newRow("a log") << QByteArray("2026-11-20 10:20:30.000 [1] a line\n")
                           << "is no settings store, or a damaged one";
    QTest::newRow("property list")
        << QByteArray("<?xml version=\"1.0\"?>\n<plist/>\n") << "is a property list";
    QTest::newRow("binary property list")
        << QByteArray("bplist00\xd1\x01\x02") << "is a property list";
    QTest::newRow("endless") << QByteArray(16 * 1024 * 1024 + 1, 'x') << "is larger than 16 MiB";
}

void ExplainStoreTest::unreadableStores()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);

    const QString file = writeFile(m_folder->path(), "App.conf", content);
    const WorkbenchRun run = runWorkbench({"explain", "-", "--store", file}, "<a/>");
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.output, QString());
    const QString expected = "update-catalogue: " + file + ": " + message;
    QVERIFY2(run.errors.startsWith(expected), qPrintable(run.errors));
    QCOMPARE(run.errors.count('\n'), 1);
}

void ExplainStoreTest::leavesTheStoreAsItIs()
{
    const QByteArray content = "[General]\nproduct=Camera Manager\nlastCheck=@DateTime(broken)\n";
    const QString file = writeFile(m_folder->path(), "App.conf", content);
    const WorkbenchRun run = runWorkbench(explainArguments({"--store", file}));
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.json()["store"]["lastCheck"].isNull());
    QCOMPARE(run.json()["store"]["version"].toString(), QString("0"));
    QFile store(file);
    QVERIFY(store.open(QIODevice::ReadOnly));
    QCOMPARE(store.readAll(), content);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"App.conf"});
}

void ExplainStoreTest::readsWellForPeople()
{
    ClientFixture fixture;
    fixture.start();
    const QString application = QCoreApplication::applicationName();
    const QString output =
        runWorkbench({"explain", "-", "--store", storePath()}, catalogueXml({applicationPackage()}))
            .output;
    QVERIFY2(output.startsWith("Settings " + storePath() + "\n  application    " + application +
                               ", as the file is called\n  version        1.0\n"),
             qPrintable(output));
    QVERIFY(output.contains("\n  cameras        none\n  beta versions  no\n"));
    QVERIFY(output.contains("\nApplication " + application + " 1.0\n  offered    "));
}

VX_TEST_MAIN(ExplainStoreTest)
#include "tst_ExplainStore.moc"
