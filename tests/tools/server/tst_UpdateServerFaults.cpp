#include <QElapsedTimer>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/server/RawConnection.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using namespace vx::test;

namespace {

constexpr int bodySize = 100000;
/** How long nothing must come. */
constexpr int quietMs = 300;
/** How long something may take to come. */
constexpr int patienceMs = 20000;

ServedReply faultyReply(ServedReply::Fault fault, qint64 bytes, int size = bodySize)
{
    ServedReply reply;
    reply.body = QByteArray(size, 'b');
    reply.fault = fault;
    reply.bytesBeforeFault = bytes;
    return reply;
}

} // namespace

Q_DECLARE_METATYPE(vx::ServedReply::Fault)
Q_DECLARE_METATYPE(vx::test::Ending)

class UpdateServerFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void breaksTheBodyOff_data();
    void breaksTheBodyOff();
    void looksToQtLikeABrokenServer_data();
    void looksToQtLikeABrokenServer();
    void resetsOnlyWhenAllHasArrived();
    void neverAnswersWhenSilent();
    void spreadsASlowBodyOverItsTime();
    void waitsBeforeADelayedAnswer();
    void delaysOneRequestOnly();
    void stopEndsEveryConnection_data();
    void stopEndsEveryConnection();
    void noticesThatTheClientLeft();
};

void UpdateServerFaultsTest::breaksTheBodyOff_data()
{
    QTest::addColumn<ServedReply::Fault>("fault");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<int>("received");
    QTest::addColumn<Ending>("ending");
    const struct
    {
        const char* name;
        ServedReply::Fault fault;
        Ending ending;
    } faults[] = {{"close", ServedReply::CloseEarly, Ending::Closed},
                  {"reset", ServedReply::Reset, Ending::Reset},
                  {"stall", ServedReply::Stall, Ending::None}};
    for (const auto& row : faults) {
        const auto add = [&row](const char* where, qint64 bytes, int received) {
            QTest::addRow("%s %s", row.name, where) << row.fault << bytes << received << row.ending;
        };
        add("at once", 0, 0);
        add("below zero", -1, 0);
        add("halfway", bodySize / 2, bodySize / 2);
        add("before the last byte", bodySize - 1, bodySize - 1);
        add("beyond the end", bodySize + 1, bodySize);
    }
}

void UpdateServerFaultsTest::breaksTheBodyOff()
{
    QFETCH(ServedReply::Fault, fault);
    QFETCH(qint64, bytes);
    QFETCH(int, received);
    QFETCH(Ending, ending);
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/", faultyReply(fault, bytes));
    RawConnection client(server.port());
    QVERIFY(client.get("/"));
    if (ending == Ending::None) {
        QCOMPARE(client.readBody(received), Ending::None);
    }
    QCOMPARE(client.readToEnd(ending == Ending::None ? quietMs : patienceMs), ending);
    QCOMPARE(client.status(), 200);
    QVERIFY(client.head().contains("Content-Length: " + QByteArray::number(bodySize)));
    QCOMPARE(client.body().size(), received);
}

void UpdateServerFaultsTest::looksToQtLikeABrokenServer_data()
{
    QTest::addColumn<ServedReply::Fault>("fault");
    QTest::newRow("close") << ServedReply::CloseEarly;
    QTest::newRow("reset") << ServedReply::Reset;
}

void UpdateServerFaultsTest::looksToQtLikeABrokenServer()
{
    QFETCH(ServedReply::Fault, fault);
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/", faultyReply(fault, bodySize / 2));
    const WebResult result = fetch(QNetworkRequest(server.url()));
    QVERIFY(result.finished);
    QCOMPARE(result.error, QNetworkReply::RemoteHostClosedError);
    QCOMPARE(result.status, 200);
}

void UpdateServerFaultsTest::resetsOnlyWhenAllHasArrived()
{
    // More than the buffers of both ends hold: the server has to wait for the client to read.
    constexpr int large = 32 * 1024 * 1024;
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/", faultyReply(ServedReply::Reset, large / 2, large));
    RawConnection client(server.port());
    QVERIFY(client.get("/"));
    QCOMPARE(client.readToEnd(), Ending::Reset);
    QCOMPARE(client.body().size(), large / 2);
}

void UpdateServerFaultsTest::neverAnswersWhenSilent()
{
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/", faultyReply(ServedReply::Silent, 0));
    RawConnection client(server.port());
    QVERIFY(client.get("/"));
    QCOMPARE(client.readToEnd(quietMs), Ending::None);
    QVERIFY(client.received().isEmpty());
    QTRY_COMPARE(server.requests().size(), 1);
    const WebResult result =
        fetch(QNetworkRequest(server.url()), QNetworkProxy(QNetworkProxy::NoProxy), quietMs);
    QVERIFY(!result.finished);
}

void UpdateServerFaultsTest::spreadsASlowBodyOverItsTime()
{
    UpdateServer server;
    QVERIFY(server.start());
    ServedReply reply = faultyReply(ServedReply::Slow, 0);
    reply.delayMs = 400;
    server.setReply("/", reply);
    RawConnection client(server.port());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(client.get("/"));
    QCOMPARE(client.read(1000), Ending::None);
    QVERIFY2(client.body().size() < bodySize, "the body came at once");
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.body(), reply.body);
    QVERIFY(timer.elapsed() >= 380);
}

void UpdateServerFaultsTest::waitsBeforeADelayedAnswer()
{
    UpdateServer server;
    QVERIFY(server.start());
    ServedReply reply = faultyReply(ServedReply::NoFault, 0);
    reply.delayMs = 300;
    server.setReply("/", reply);
    RawConnection client(server.port());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(client.get("/"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QVERIFY(timer.elapsed() >= 300);
    QCOMPARE(client.body(), reply.body);
}

void UpdateServerFaultsTest::delaysOneRequestOnly()
{
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/ok", faultyReply(ServedReply::NoFault, 0));
    ServedReply slow = faultyReply(ServedReply::NoFault, 0);
    slow.delayMs = 60000;
    server.setReply("/slow", slow);
    RawConnection waiting(server.port());
    QVERIFY(waiting.get("/slow"));
    QTRY_COMPARE(server.requests().size(), 1);
    QCOMPARE(fetch(QNetworkRequest(server.url("/ok"))).body.size(), bodySize);
    QVERIFY(waiting.received().isEmpty());
}

void UpdateServerFaultsTest::stopEndsEveryConnection_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<ServedReply::Fault>("fault");
    QTest::addColumn<int>("delayMs");
    const QByteArray get = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
    QTest::newRow("stalled") << get << ServedReply::Stall << 0;
    QTest::newRow("silent") << get << ServedReply::Silent << 0;
    QTest::newRow("slow") << get << ServedReply::Slow << 600000;
    QTest::newRow("delayed") << get << ServedReply::NoFault << 600000;
    QTest::newRow("nothing asked") << QByteArray() << ServedReply::NoFault << 0;
    QTest::newRow("half a request") << get.left(10) << ServedReply::NoFault << 0;
    QTest::newRow("reply never read") << get << ServedReply::NoFault << 0;
    QTest::newRow("reset never read") << get << ServedReply::Reset << 0;
}

void UpdateServerFaultsTest::stopEndsEveryConnection()
{
    QFETCH(QByteArray, request);
    QFETCH(ServedReply::Fault, fault);
    QFETCH(int, delayMs);
    // Too large for the buffers, so that a client which does not read holds the server up.
    ServedReply reply = faultyReply(fault, 30000000, 32000000);
    reply.delayMs = delayMs;
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/", reply);
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (int i = 0; i < 5; ++i) {
        clients.push_back(std::make_unique<RawConnection>(server.port()));
        QVERIFY(clients.back()->send(request));
    }
    if (request.endsWith("\r\n\r\n")) {
        QTRY_COMPARE(server.requests().size(), 5);
    }
    QElapsedTimer timer;
    timer.start();
    server.stop();
    QVERIFY2(timer.elapsed() < 8000, "a connection held stop() up");
    for (const auto& client : clients) {
        QVERIFY(client->readToEnd() != Ending::None);
    }
}

void UpdateServerFaultsTest::noticesThatTheClientLeft()
{
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/silent", faultyReply(ServedReply::Silent, 0));
    server.setReply("/ok", faultyReply(ServedReply::NoFault, 0));
    // More than there are threads: those of the clients that left must be free again.
    for (int i = 0; i < 100; ++i) {
        RawConnection client(server.port());
        QVERIFY(client.get("/silent"));
    }
    QCOMPARE(fetch(QNetworkRequest(server.url("/ok"))).body.size(), bodySize);
}

VX_TEST_MAIN(UpdateServerFaultsTest)

#include "tst_UpdateServerFaults.moc"
