#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

namespace {

/** A device that takes so many bytes, and then none or too few. */
class FillingDevice : public QIODevice
{
    Q_OBJECT

public:
    FillingDevice(qint64 capacity, bool takesThePart)
        : m_room(capacity)
        , m_takesThePart(takesThePart)
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

    qint64 taken = 0;

protected:
    qint64 readData(char*, qint64) override { return -1; }

    qint64 writeData(const char*, qint64 size) override
    {
        if (size > m_room && !m_takesThePart) {
            return -1;
        }
        const qint64 part = qMin(size, m_room);
        m_room -= part;
        taken += part;
        return part;
    }

private:
    qint64 m_room;
    bool m_takesThePart;
};

/** The beginning of an answer that announces @p length bytes. */
QByteArray announce(qint64 length)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n";
}

/** An answer in chunks, the first of which has @p size bytes, without an end. */
QByteArray unfinishedChunk(int size)
{
    return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + QByteArray::number(size, 16) +
           "\r\n" + QByteArray(size, 'x') + "\r\n";
}

int warnings = 0;

void countWarning(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++warnings;
}

} // namespace

/** Servers that lie, stall or vanish, and devices that take no more: each request ends, once. */
class HttpClientFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void endsOnce_data();
    void endsOnce();
    void endsWithoutServer_data();
    void endsWithoutServer();
    void endsIfTheConnectionIsRefused();
    void endsIfNoByteComes_data();
    void endsIfNoByteComes();
    void waitsTheWholeTime();
    void goesOnWhileBytesCome();
    void takesNoIdleTimeoutBelowOne();
    void waitsAMinuteByDefault();
    void endsIfTheDeviceIsFull_data();
    void endsIfTheDeviceIsFull();
    void endsIfTheDiskIsFull();
    void endsIfTheDeviceIsClosed();
    void endsIfTheDeviceIsReadOnly();
    void endsIfTheDeviceIsDestroyed();
    void endsIfTheOwnBufferIsFull();
    void keepsOneRequestsFaultFromAnother();
    void noticesAMissingEndAtOnce_data();
    void noticesAMissingEndAtOnce();
    void deliversAllBeforeALateCut_data() { noticesAMissingEndAtOnce_data(); }
    void deliversAllBeforeALateCut();
};

void HttpClientFaultsTest::endsOnce_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("nothing") << QByteArray() << 0 << QByteArray();
    QTest::newRow("half a header")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-") << 0 << QByteArray();
    QTest::newRow("no HTTP") << QByteArray("220 mail.example.com ESMTP\r\n\r\n") << 0
                             << QByteArray();
    QTest::newRow("binary") << QByteArray("\0\xff\x01\r\n\r\n", 7) << 0 << QByteArray();
    QTest::newRow("header only") << announce(10) << 200 << QByteArray();
    QTest::newRow("cut short") << announce(10) + "12345" << 200 << QByteArray("12345");
    QTest::newRow("cut short by one")
        << announce(10) + "123456789" << 200 << QByteArray("123456789");
    QTest::newRow("too long") << announce(5) + "1234567890" << 200 << QByteArray("12345");
    QTest::newRow("without length")
        << QByteArray("HTTP/1.1 200 OK\r\n\r\n12345") << 200 << QByteArray("12345");
    QTest::newRow("empty") << announce(0) << 200 << QByteArray();
    QTest::newRow("chunks") << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                          "3\r\n123\r\n2\r\n45\r\n0\r\n\r\n")
                            << 200 << QByteArray("12345");
    QTest::newRow("chunks cut short")
        << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\n123\r\n9\r\n45")
        << 200 << QByteArray("12345");
}

void HttpClientFaultsTest::endsOnce()
{
    QFETCH(QByteArray, answer);
    RawServer server;
    server.setReply(answer);
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy discarded(&client, SIGNAL(requestReset(RequestPtr)));
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QTEST(request->statusCode, "status");
    QTEST(device.data(), "body");
    QVERIFY(!client.isExecutingRequest());
    // Whatever the network still has to report comes before the end of another request.
    server.setReply(rawReply(200));
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 2);
    QCOMPARE(receiver.results.count(request), 1);
    QCOMPARE(discarded.count(), 0);
}

void HttpClientFaultsTest::endsWithoutServer_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("none") << "";
    QTest::newRow("garbage") << "://";
}

void HttpClientFaultsTest::endsWithoutServer()
{
    QFETCH(QString, address);
    vx::HttpHost host;
    host.server.parseAddress(address, 80);
    HttpClient client(host);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 0);
    QCOMPARE(request->requestUrls.size(), 1);
    QCOMPARE(request->getResponseText(), QString());
}

void HttpClientFaultsTest::endsIfTheConnectionIsRefused()
{
    RawServer server;
    HttpClient client(server.host());
    server.close();
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 0);
    QVERIFY(request->responseHeader.keys().isEmpty());
}

void HttpClientFaultsTest::endsIfNoByteComes_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    QTest::newRow("silent") << QByteArray() << 0;
    QTest::newRow("half a header") << QByteArray("HTTP/1.1 200 OK\r\n") << 0;
    QTest::newRow("header") << announce(10) << 200;
    QTest::newRow("half a body") << announce(10) + "12345" << 200;
}

void HttpClientFaultsTest::endsIfNoByteComes()
{
    QFETCH(QByteArray, answer);
    RawServer server;
    bool isClosed = false;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        socket->write(answer);
        connect(socket, &QTcpSocket::disconnected, this, [&] { isClosed = true; });
    });
    HttpClient client(server.host());
    client.setIdleTimeout(150);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QTEST(request->statusCode, "status");
    QCOMPARE(request->getResponseText(), QString(answer.endsWith("5") ? "12345" : ""));
    QTRY_VERIFY2(isClosed, "the connection is not kept");
}

void HttpClientFaultsTest::waitsTheWholeTime()
{
    constexpr int wait = 3900;
    RawServer silent;
    silent.setScript([](QTcpSocket*, const QByteArray&) {});
    HttpClient client(silent.host());
    client.setIdleTimeout(wait);
    QList<qint64> waits;
    ResultReceiver receiver;
    QElapsedTimer clock;
    clock.start();
    receiver.whenCalled = [&] { waits.append(clock.elapsed()); };
    QList<qint64> starts;
    // A timer that rounds does so by the moment at which it begins.
    for (int i = 0; i < 8; ++i) {
        starts.append(clock.elapsed());
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
        QTest::qWait(60);
    }
    QTRY_COMPARE_WITH_TIMEOUT(waits.size(), starts.size(), 20000);
    for (int i = 0; i < starts.size(); ++i) {
        QVERIFY2(waits[i] - starts[i] >= wait - 1,
                 qPrintable(QString::number(waits[i] - starts[i])));
    }
}

void HttpClientFaultsTest::goesOnWhileBytesCome()
{
    constexpr int idleTimeout = 1000;
    RawServer server;
    QTimer drip;
    int dripped = 0;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        socket->write(announce(12));
        connect(&drip, &QTimer::timeout, socket, [socket, &dripped] {
            ++dripped;
            socket->write("x");
        });
        drip.start(idleTimeout / 8);
    });
    HttpClient client(server.host());
    client.setIdleTimeout(idleTimeout);
    ResultReceiver receiver;
    QElapsedTimer clock;
    clock.start();
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(clock.elapsed() > idleTimeout);
    QCOMPARE(request->getResponseText(), QString(12, 'x'));
}

void HttpClientFaultsTest::takesNoIdleTimeoutBelowOne()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray&) {
        QTimer::singleShot(50, socket, [socket] { socket->write(rawReply(200, "late")); });
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    for (const int timeout : {0, -1}) {
        client.setIdleTimeout(1);
        client.setIdleTimeout(timeout);
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    }
    QTRY_COMPARE(receiver.results.size(), 2);
    QCOMPARE(receiver.results.at(0)->statusCode, 200);
    QCOMPARE(receiver.results.at(1)->statusCode, 200);
}

/** The minute itself is not waited for. */
void HttpClientFaultsTest::waitsAMinuteByDefault()
{
    const int timeout = HttpClient::defaultIdleTimeout;
    QCOMPARE(timeout, 60000);
}

void HttpClientFaultsTest::endsIfTheDeviceIsFull_data()
{
    QTest::addColumn<int>("capacity");
    QTest::addColumn<bool>("takesThePart");
    QTest::newRow("nothing") << 0 << false;
    QTest::newRow("error later") << 200000 << false;
    QTest::newRow("short write") << 200000 << true;
    QTest::newRow("short by one byte") << 999999 << true;
}

void HttpClientFaultsTest::endsIfTheDeviceIsFull()
{
    QFETCH(int, capacity);
    QFETCH(bool, takesThePart);
    RawServer server;
    // The body goes on for ever, as far as the client knows.
    server.setScript([](QTcpSocket* socket, const QByteArray&) {
        socket->write(announce(1LL << 40) + QByteArray(1000000, 'x'));
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    FillingDevice device(capacity, takesThePart);
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 200);
    QVERIFY(device.taken <= capacity);
    QCOMPARE(device.taken == capacity, takesThePart || capacity == 0);
}

void HttpClientFaultsTest::endsIfTheDiskIsFull()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray&) {
        socket->write(announce(1LL << 40) + QByteArray(1000000, 'x'));
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QFile file("/dev/full");
    QVERIFY(file.open(QIODevice::WriteOnly));
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &file);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 200);
    QCOMPARE(file.error(), QFileDevice::ResourceError);
}

void HttpClientFaultsTest::endsIfTheDeviceIsClosed()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QTemporaryDir folder;
    QFile file(folder.filePath("missing/file"));
    QVERIFY(!file.open(QIODevice::WriteOnly));
    warnings = 0;
    const QtMessageHandler previous = qInstallMessageHandler(countWarning);
    const auto restore = qScopeGuard([previous] { qInstallMessageHandler(previous); });
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &file);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(warnings, 0);
    QCOMPARE(request->statusCode, 200);
    QCOMPARE(request->responseDevice, &file);
    QVERIFY(!file.exists());
}

void HttpClientFaultsTest::endsIfTheDeviceIsReadOnly()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::ReadOnly);
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(device.data(), QByteArray());
}

void HttpClientFaultsTest::endsIfTheDeviceIsDestroyed()
{
    RawServer server;
    QTcpSocket* peer = nullptr;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        peer = socket;
        socket->write(announce(1000) + "12345");
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QScopedPointer<QBuffer> device(new QBuffer);
    device->open(QIODevice::WriteOnly);
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), device.data());
    QTRY_COMPARE(device->size(), 5LL);
    device.reset();
    peer->write("67890");
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(request->responseDevice == nullptr);
    QCOMPARE(request->statusCode, 200);
}

void HttpClientFaultsTest::endsIfTheOwnBufferIsFull()
{
    RawServer server;
    qint64 left = HttpClient::maxBufferSize + 1;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        socket->write(announce(1LL << 40));
        const auto writeMore = [socket, &left] {
            if (left > 0) {
                left -= socket->write(QByteArray(int(qMin<qint64>(left, 4000000)), 'x'));
            }
        };
        connect(socket, &QTcpSocket::bytesWritten, socket, writeMore);
        writeMore();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 60000);
    QCOMPARE(request->statusCode, 200);
    QCOMPARE(request->getResponseBuffer()->size(), HttpClient::maxBufferSize);
}

void HttpClientFaultsTest::keepsOneRequestsFaultFromAnother()
{
    RawServer server;
    QTcpSocket* good = nullptr;
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        if (targetOf(request) == "/good") {
            good = socket;
            socket->write(announce(10) + "12345");
        } else {
            socket->disconnectFromHost();
        }
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/good", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    client.get("/bad", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QTRY_VERIFY(good != nullptr);
    QVERIFY(client.isExecutingRequest());
    good->write("67890");
    QTRY_COMPARE(receiver.results.size(), 2);
    QCOMPARE(receiver.results.last().get(), request.get());
    QCOMPARE(request->getResponseText(), QString("1234567890"));
}

void HttpClientFaultsTest::noticesAMissingEndAtOnce_data()
{
    QTest::addColumn<int>("size");
    // What the network stack holds back at most, and its neighbours.
    for (const int size : {512 * 1024 - 1, 512 * 1024, 512 * 1024 + 1, 1024 * 1024}) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void HttpClientFaultsTest::noticesAMissingEndAtOnce()
{
    QFETCH(int, size);
    RawServer server;
    server.setReply(unfinishedChunk(size));
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    // Otherwise it takes the minute after which a request without bytes ends.
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 20000);
    QCOMPARE(receiver.results.first()->statusCode, 200);
    // Of an answer that is cut, the network stack drops what it holds back at that moment.
    const QByteArray received = receiver.results.first()->getResponseBuffer()->data();
    QVERIFY2(!received.isEmpty() && received.size() <= size,
             qPrintable(QString::number(received.size())));
    QCOMPARE(received, QByteArray(received.size(), 'x'));
}

void HttpClientFaultsTest::deliversAllBeforeALateCut()
{
    QFETCH(int, size);
    RawServer server;
    QPointer<QTcpSocket> connection;
    server.setScript([&connection, size](QTcpSocket* socket, const QByteArray&) {
        connection = socket;
        socket->write(unfinishedChunk(size));
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(device.data().size(), size);
    connection->disconnectFromHost();
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 20000);
    QCOMPARE(receiver.results.first()->statusCode, 200);
    QCOMPARE(device.data(), QByteArray(size, 'x'));
}

VX_TEST_MAIN(HttpClientFaultsTest)
#include "tst_HttpClientFaults.moc"
