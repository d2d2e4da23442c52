#include <QTimer>
#include <QtTest>

#include "tests/client/CheckTexts.h"
#include "tests/client/ClientFixture.h"
#include "tests/client/SilentServer.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

// A check that is over takes its request with it, and is not in the way of the next one.
class ClientDroppedCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void requestGoesWithTheCheck_data();
    void requestGoesWithTheCheck();
    void droppedCheckIsNotEvaluated();
    void checkAfterATimeout();
};

void ClientDroppedCheckTest::requestGoesWithTheCheck_data()
{
    QTest::addColumn<QString>("end");
    for (const char* end : {"up to date", "error", "timeout"}) {
        QTest::newRow(end) << end;
    }
}

void ClientDroppedCheckTest::requestGoesWithTheCheck()
{
    QFETCH(QString, end);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    SilentServer server;
    writeStored("serverURL", server.url());
    client.checkForUpdate();
    QTRY_VERIFY(server.isAwaited());
    if (end == "up to date") {
        client.productUpToDate();
    } else if (end == "error") {
        QVERIFY(QMetaObject::invokeMethod(&client, "requestError", Qt::DirectConnection,
                                          Q_ARG(QString, "some error")));
    } else {
        client.call("requestTimeout");
    }
    QTRY_VERIFY(!server.isAwaited());
    QVERIFY(!fixture.log.lines(1).join('\n').contains(evaluation));

    writeStored("serverURL", fixture.server.url().toString());
    fixture.offer(nothingNew());
    QVERIFY(fixture.check());
    QCOMPARE(fixture.log.count(1, evaluation + "product is up-to-date "), 1);
}

void ClientDroppedCheckTest::droppedCheckIsNotEvaluated()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.offer(nothingNew());
    client.checkForUpdate();
    client.call("deleteNetworkmanager");
    client.call("deleteNetworkmanager");
    deleteDeferred();
    QVERIFY(!fixture.log.lines(1).join('\n').contains(evaluation));
    // By the time the next check has ended, the dropped one would have been heard of.
    QVERIFY(fixture.check());
    QCOMPARE(fixture.log.count(1, upToDateLine), 1);
}

void ClientDroppedCheckTest::checkAfterATimeout()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    fixture.server.setReply("/", silent);
    client.checkForUpdate();
    QTimer* timer = client.requestTimer();
    timer->start(20);
    QTRY_VERIFY(fixture.log.contains(3, timeoutLine));
    fixture.offer(nothingNew());
    client.checkForUpdate();
    QCOMPARE(timer->interval(), 15000);
    QTRY_VERIFY(fixture.log.contains(1, upToDateLine));
    QCOMPARE(fixture.log.lines(3).size(), 2); // the reason and the time-out
}

VX_TEST_MAIN(ClientDroppedCheckTest)
#include "tst_ClientDroppedCheck.moc"
