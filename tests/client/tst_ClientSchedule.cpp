#include <QTimer>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/FixedClock.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QString operation = QStringLiteral("SoftwareUpdateClient::queryLastUpdate() -> ");

QString firedLine(int interval)
{
    const QStringList words{QString(), QStringLiteral("daily"), QStringLiteral("weekly"),
                            QStringLiteral("monthly")};
    return operation + words.at(interval) + QStringLiteral(" update fired");
}

QDateTime time(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODateWithMs);
}

void writeSchedule(int interval, bool doUpdateCheck)
{
    writeStored(QStringLiteral("updateInterval"), interval);
    writeStored(QStringLiteral("doUpdateCheck"), doUpdateCheck);
}

bool isRequesting(const TestClient& client)
{
    return client.requestTimer() && client.requestTimer()->isActive();
}

} // namespace

class ClientScheduleTest : public QObject
{
    Q_OBJECT

private slots:
    void tickFiresWhenOverdue_data();
    void tickFiresWhenOverdue();
    void firstTickOfAClientThatNeverChecked_data();
    void firstTickOfAClientThatNeverChecked();
    void tickWithoutAnInterval_data();
    void tickWithoutAnInterval();
    void delayOfTheTickIsPassedOn();
    void logLineFollowsTheCall();
    void tickIsRefusedButLogged();
    void tickWaitsForTheSettingsDialog();
    void hourlyTimerTicks();
    void initialCheck_data();
    void initialCheck();
    void delayBelowOneChecksAtOnce_data();
    void delayBelowOneChecksAtOnce();
    void delayGoesThroughATimer();
    void delayTimersStayBehind();
    void refusedByTheStore();
    void atOnceHoldsBackForTheSettingsDialog();
    void delayedCheckIsDroppedForTheSettingsDialog();
    void delayedCheckIsRefusedWhenTheTimeComes();
};

void ClientScheduleTest::tickFiresWhenOverdue_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QDateTime>("lastCheck");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<bool>("fires");
    const auto row = [](const char* name, int interval, const char* last, const char* now,
                        bool fires) {
        QTest::newRow(name) << interval << time(last) << time(now) << fires;
    };
    row("daily, exactly", 1, "2012-05-14T12:00:00.000", "2012-05-15T12:00:00.000", false);
    row("daily, just over", 1, "2012-05-14T12:00:00.000", "2012-05-15T12:00:00.001", true);
    row("daily, just under", 1, "2012-05-14T12:00:00.000", "2012-05-15T11:59:59.999", false);
    row("weekly, exactly", 2, "2012-05-08T12:00:00.000", "2012-05-15T12:00:00.000", false);
    row("weekly, just over", 2, "2012-05-08T12:00:00.000", "2012-05-15T12:00:00.001", true);
    row("weekly, after a day", 2, "2012-05-14T12:00:00.000", "2012-05-15T12:00:00.001", false);
    row("monthly, exactly", 3, "2012-04-15T12:00:00.000", "2012-05-15T12:00:00.000", false);
    row("monthly, just over", 3, "2012-04-15T12:00:00.000", "2012-05-15T12:00:00.001", true);
    row("a month of 29 days", 3, "2012-02-15T12:00:00.000", "2012-03-15T12:00:00.001", true);
    row("the 31st has its month end", 3, "2012-01-31T12:00:00.000", "2012-02-29T12:00:00.001",
        true);
    row("30 days of a month of 31", 3, "2012-01-15T12:00:00.000", "2012-02-14T12:00:00.001", false);
    row("in the future", 1, "2031-01-01T00:00:00.000", "2012-05-15T12:00:00.000", false);
}

void ClientScheduleTest::tickFiresWhenOverdue()
{
    QFETCH(int, interval);
    QFETCH(QDateTime, lastCheck);
    QFETCH(QDateTime, now);
    QFETCH(bool, fires);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(interval, true);
    writeStored("lastCheck", lastCheck);
    {
        const FixedClock clock(now);
        client.call("queryLastUpdate");
    }
    QCOMPARE(isRequesting(client), fires);
    QCOMPARE(client.record().lastCheck, fires ? now : lastCheck);
    QCOMPARE(fixture.log.count(1, firedLine(interval)), fires ? 1 : 0);
}

void ClientScheduleTest::firstTickOfAClientThatNeverChecked_data()
{
    QTest::addColumn<int>("interval");
    for (const int interval : {1, 2, 3}) {
        QTest::addRow("interval %d", interval) << interval;
    }
}

void ClientScheduleTest::firstTickOfAClientThatNeverChecked()
{
    QFETCH(int, interval);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(interval, true);
    client.call("queryLastUpdate");
    QVERIFY(isRequesting(client));
    QVERIFY(fixture.log.contains(1, firedLine(interval)));
    client.call("queryLastUpdate");
    QCOMPARE(fixture.log.count(1, firedLine(interval)), 1);
}

void ClientScheduleTest::tickWithoutAnInterval_data()
{
    QTest::addColumn<int>("interval");
    for (const int interval : {0, -1, 4, 2147483647}) {
        QTest::addRow("interval %d", interval) << interval;
    }
}

void ClientScheduleTest::tickWithoutAnInterval()
{
    QFETCH(int, interval);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(interval, true);
    client.call("queryLastUpdate");
    QVERIFY(!isRequesting(client));
    QVERIFY(fixture.log.lines(1).isEmpty());
    QVERIFY(client.record().lastCheck.isNull());
}

void ClientScheduleTest::delayOfTheTickIsPassedOn()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(1, true);
    QVERIFY(QMetaObject::invokeMethod(&client, "queryLastUpdate", Qt::DirectConnection,
                                      Q_ARG(int, 60000)));
    QCOMPARE(client.delayTimers().size(), 1);
    QCOMPARE(client.delayTimers().first()->interval(), 60000);
    QVERIFY(!isRequesting(client));
    QVERIFY(client.record().lastCheck.isNull());
    QCOMPARE(fixture.log.lines(1).size(), 1);
    QVERIFY(fixture.log.contains(1, firedLine(1)));
}

void ClientScheduleTest::logLineFollowsTheCall()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(1, true);
    client.call("queryLastUpdate");
    const QStringList lines = fixture.log.lines(1);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.first().contains("SoftwareUpdateClient::performUpdateCheck() -> "));
    QVERIFY(lines.last().endsWith(firedLine(1)));
}

void ClientScheduleTest::tickIsRefusedButLogged()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(2, false);
    client.enableSoftwareUpdate();
    const QDateTime longAgo(QDate(2012, 3, 4), QTime(5, 6));
    writeStored("lastCheck", longAgo);
    client.call("queryLastUpdate");
    client.call("queryLastUpdate");
    QVERIFY(!isRequesting(client));
    QCOMPARE(client.record().lastCheck, longAgo);
    QCOMPARE(fixture.log.count(1, firedLine(2)), 2);
}

void ClientScheduleTest::tickWaitsForTheSettingsDialog()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(1, true);
    QVERIFY(fixture.openSettingsDialog());
    client.call("queryLastUpdate");
    QVERIFY(!isRequesting(client));
    QVERIFY(fixture.log.lines(1).isEmpty());
}

void ClientScheduleTest::hourlyTimerTicks()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(1, true);
    client.hourlyTimer()->start(10);
    QTRY_VERIFY(fixture.log.contains(1, firedLine(1)));
    QTRY_COMPARE(fixture.server.requests().size(), 1);
}

void ClientScheduleTest::initialCheck_data()
{
    QTest::addColumn<bool>("doUpdateCheck");
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("checks");
    QTest::newRow("at application start") << true << 0 << true;
    QTest::newRow("checking is off") << false << 0 << false;
    QTest::newRow("daily") << true << 1 << false;
    QTest::newRow("weekly") << true << 2 << false;
    QTest::newRow("monthly") << true << 3 << false;
    QTest::newRow("no such interval") << true << 4 << false;
    QTest::newRow("below all") << true << -1 << false;
}

void ClientScheduleTest::initialCheck()
{
    QFETCH(bool, doUpdateCheck);
    QFETCH(int, interval);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeSchedule(interval, doUpdateCheck);
    client.doInitialCheck();
    QTEST(isRequesting(client), "checks");
    client.doInitialCheck(60000);
    QTEST(client.delayTimers().size() == 1, "checks");
}

void ClientScheduleTest::delayBelowOneChecksAtOnce_data()
{
    QTest::addColumn<int>("delay");
    QTest::newRow("none") << 0;
    QTest::newRow("negative") << -5000;
}

void ClientScheduleTest::delayBelowOneChecksAtOnce()
{
    QFETCH(int, delay);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.checkForUpdate(delay);
    QVERIFY(isRequesting(client));
    QVERIFY(client.delayTimers().isEmpty());
}

void ClientScheduleTest::delayGoesThroughATimer()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.checkForUpdate(1);
    QVERIFY(!isRequesting(client));
    QCOMPARE(client.delayTimers().size(), 1);
    QVERIFY(client.delayTimers().first()->isSingleShot());
    QCOMPARE(client.delayTimers().first()->interval(), 1);
    QTRY_COMPARE(fixture.server.requests().size(), 1);
}

void ClientScheduleTest::delayTimersStayBehind()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.checkForUpdate(1);
    client.checkForUpdate(2);
    client.checkForUpdate(60000);
    // Not the requests at the server: the reply to the first may end both checks.
    QTRY_COMPARE(
        fixture.log.lines(1).filter("SoftwareUpdateClient::performUpdateCheck() -> ").size(), 2);
    QCOMPARE(client.delayTimers().size(), 3);
    int waiting = 0;
    for (const QTimer* timer : client.delayTimers()) {
        waiting += timer->isActive() ? 1 : 0;
    }
    QCOMPARE(waiting, 1);
}

void ClientScheduleTest::refusedByTheStore()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("doUpdateCheck", false);
    client.checkForUpdate(0);
    client.checkForUpdate(1);
    client.checkForUpdate();
    QVERIFY(!isRequesting(client));
    QVERIFY(client.delayTimers().isEmpty());
    QVERIFY(client.record().lastCheck.isNull());
}

void ClientScheduleTest::atOnceHoldsBackForTheSettingsDialog()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QVERIFY(fixture.openSettingsDialog());
    client.checkForUpdate(0);
    QVERIFY(!isRequesting(client));
    QVERIFY(client.record().lastCheck.isNull());
}

void ClientScheduleTest::delayedCheckIsDroppedForTheSettingsDialog()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QVERIFY(fixture.openSettingsDialog());
    client.checkForUpdate(1);
    QCOMPARE(client.delayTimers().size(), 1);
    QTRY_VERIFY(!client.delayTimers().first()->isActive());
    client.call("deleteUpdateDialog");
    deleteDeferred();
    QCoreApplication::processEvents();
    QVERIFY(!isRequesting(client));
    QVERIFY(client.record().lastCheck.isNull());
}

void ClientScheduleTest::delayedCheckIsRefusedWhenTheTimeComes()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.checkForUpdate(1);
    writeStored("doUpdateCheck", false);
    QTRY_VERIFY(!client.delayTimers().first()->isActive());
    QVERIFY(!isRequesting(client));
    QVERIFY(client.record().lastCheck.isNull());
}

VX_TEST_MAIN(ClientScheduleTest)
#include "tst_ClientSchedule.moc"
