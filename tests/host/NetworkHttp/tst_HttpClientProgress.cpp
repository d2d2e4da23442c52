#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

/** What downloadProgress says, and when. */
class HttpClientProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void endsWithAllThereIs_data();
    void endsWithAllThereIs();
    void comesBeforeTheResult();
    void scalesPastTwoGib();
    void growsSteadily();
    void isRaisedNowAndThenOnly();
    void showsAllBeforeAPause();
    void allowsEventsInItsSlot();
    void startsAnewAfterARedirect();
};

void HttpClientProgressTest::endsWithAllThereIs_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("total");

    QTest::newRow("complete") << rawReply(200, QByteArray(100000, 'x')) << 100000 << 100000;
    QTest::newRow("error page") << rawReply(404, "missing") << 7 << 7;
    QTest::newRow("empty") << rawReply(200) << 0 << 0;
    QTest::newRow("unknown length") << QByteArray("HTTP/1.1 200 OK\r\n\r\n12345") << 5 << 0;
    QTest::newRow("cut short") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345")
                               << 5 << 10;
    QTest::newRow("no answer") << QByteArray() << 0 << 0;
    QTest::newRow("no number") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: ten\r\n\r\n12345")
                               << 5 << 0;
    QTest::newRow("negative") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: -9\r\n\r\n12345")
                              << 5 << 0;
}

void HttpClientProgressTest::endsWithAllThereIs()
{
    QFETCH(QByteArray, answer);
    RawServer server;
    server.setReply(answer);
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(!progress.isEmpty());
    QTEST(progress.last().at(0).toInt(), "done");
    QTEST(progress.last().at(1).toInt(), "total");
}

void HttpClientProgressTest::comesBeforeTheResult()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    int before = 0;
    receiver.whenCalled = [&] { before = progress.count(); };
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(before > 0);
    QTRY_VERIFY(!client.isExecutingRequest());
    QCOMPARE(progress.count(), before);
}

void HttpClientProgressTest::scalesPastTwoGib()
{
    RawServer server;
    server.setReply("HTTP/1.1 200 OK\r\nContent-Length: 3221225472\r\n\r\n" +
                    QByteArray(1 << 18, 'x'));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(progress.last().at(0).toInt(), 1 << 17);
    QCOMPARE(progress.last().at(1).toInt(), 1610612736);
}

void HttpClientProgressTest::growsSteadily()
{
    RawServer server;
    server.setReply(rawReply(200, QByteArray(20000000, 'x')));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 30000);
    QVERIFY(progress.count() > 1);
    int last = 0;
    for (const QList<QVariant>& report : progress) {
        QVERIFY(report.at(0).toInt() >= last);
        last = report.at(0).toInt();
        QCOMPARE(report.at(1).toInt(), 20000000);
    }
}

void HttpClientProgressTest::isRaisedNowAndThenOnly()
{
    RawServer server;
    QTimer drip;
    int dripped = 0;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 300\r\n\r\n");
        connect(&drip, &QTimer::timeout, socket, [&dripped, &drip, socket] {
            socket->write("x");
            if (++dripped == 300) {
                drip.stop();
            }
        });
        drip.start(1);
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    QElapsedTimer clock;
    clock.start();
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 30000);
    // One at the first byte and one at the end come on top of one in 20 ms.
    QVERIFY(progress.count() <= clock.elapsed() / 20 + 2);
    QCOMPARE(progress.last().at(0).toInt(), 300);
}

void HttpClientProgressTest::showsAllBeforeAPause()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray&) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 300\r\n\r\n");
        socket->write(QByteArray(100, 'x'));
        // Soon enough to fall into the time in which no report is due.
        QTimer::singleShot(5, socket, [socket] { socket->write(QByteArray(199, 'x')); });
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_VERIFY(!progress.isEmpty() && progress.last().at(0).toInt() == 299);
    QCOMPARE(receiver.results.size(), 0);
}

void HttpClientProgressTest::allowsEventsInItsSlot()
{
    // QProgressDialog::setValue handles events when the dialog is modal.
    RawServer server;
    const QByteArray body(5000000, 'x');
    server.setReply(rawReply(200, body));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    connect(&client, &HttpClient::downloadProgress, this,
            [] { QCoreApplication::processEvents(); });
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(device.data() == body);
    QTRY_VERIFY(!client.isExecutingRequest());
}

void HttpClientProgressTest::startsAnewAfterARedirect()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/";
        socket->write(isFirst ? rawReply(302, "moved", {{"Location", "/there"}})
                              : QByteArray("HTTP/1.1 200 OK\r\n\r\nxyz"));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy progress(&client, SIGNAL(downloadProgress(int, int)));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(progress.last().at(0).toInt(), 3);
    QCOMPARE(progress.last().at(1).toInt(), 0);
}

VX_TEST_MAIN(HttpClientProgressTest)
#include "tst_HttpClientProgress.moc"
