#include <QBuffer>
#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/host/NetworkHttp/Squid.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

/** Each request that fails leaves one line in the log that says what to do about it. */
class HttpClientFailureReasonsTest : public QObject
{
    Q_OBJECT

private slots:
    void tellsWhatTheServerDid_data();
    void tellsWhatTheServerDid();
    void tellsThatNobodyListens();
    void tellsThatNoMoreCame();
    void tellsThatTheDeviceIsFull();
    void tellsThatItWasTheProxy();
    void tellsNothingOfAnswersThatAreWhole();
    void tellsNothingOfRequestsThatAreCancelled();

private:
    QString reasonFor(const vx::HttpHost& host, QIODevice* device, int idleTimeout = 0);
};

QString HttpClientFailureReasonsTest::reasonFor(const vx::HttpHost& host, QIODevice* device,
                                                int idleTimeout)
{
    const LogCapture log;
    HttpClient client(host);
    client.setIdleTimeout(idleTimeout);
    ResultReceiver receiver;
    client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), device);
    const bool hasEnded = QTest::qWaitFor([&] { return receiver.results.size() == 1; });
    const QStringList lines = log.lines(3);
    return hasEnded && lines.size() == 1 ? lines.first().section("HttpClient::execute() -> ", 1)
                                         : lines.join('\n');
}

void HttpClientFailureReasonsTest::tellsWhatTheServerDid_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("reason");
    const QByteArray header = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n";
    QTest::newRow("closed") << QByteArray("HTTP/1.1 2")
                            << "cut the connection before the end of its header";
    QTest::newRow("cut") << header + "12345"
                         << "cut the connection after 5 of 100 bytes";
    QTest::newRow("404") << rawReply(404, "no") << "answered with status 404; correct the address";
    QTest::newRow("500") << rawReply(500) << "answered with status 500; the server's own log";
    QTest::newRow("redirect to nowhere") << rawReply(302) << "a redirect has no target";
    QTest::newRow("redirect to a file")
        << rawReply(302, "", {{"Location", "file:///etc/hostname"}}) << "a redirect has no target";
    QTest::newRow("early hints") << "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n" + rawReply(200)
                                 << "the interim answer 103 was taken for the answer";
    QTest::newRow("circle") << rawReply(302, "", {{"Location", "/file"}})
                            << "more than 20 redirects";
}

void HttpClientFailureReasonsTest::tellsWhatTheServerDid()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, reason);
    RawServer server;
    server.setReply(answer);
    const QString line = reasonFor(server.host(), ownBuffer());
    QVERIFY2(line.contains(reason) && !line.contains('\n'), qPrintable(line));
}

void HttpClientFailureReasonsTest::tellsThatNobodyListens()
{
    RawServer server;
    const vx::HttpHost host = server.host();
    server.close();
    const QString line = reasonFor(host, ownBuffer());
    QVERIFY2(line.contains("refuses connections; start the server"), qPrintable(line));
    const QString without = reasonFor(vx::HttpHost(), ownBuffer());
    QVERIFY2(without.contains("no address to ask"), qPrintable(without));
}

void HttpClientFailureReasonsTest::tellsThatNoMoreCame()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray&) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n12345");
    });
    const QString line = reasonFor(server.host(), ownBuffer(), 1000);
    QVERIFY2(line.contains("did not send another byte within 1 s and was given up after 5 of 100"),
             qPrintable(line));
}

void HttpClientFailureReasonsTest::tellsThatTheDeviceIsFull()
{
    RawServer server;
    server.setReply(rawReply(200, "12345"));
    QBuffer closed;
    const QString line = reasonFor(server.host(), &closed);
    QVERIFY2(line.contains("the file took no more after 0 bytes"), qPrintable(line));
}

void HttpClientFailureReasonsTest::tellsThatItWasTheProxy()
{
    Squid squid(Squid::Digest);
    QVERIFY2(squid.start(), squid.output().constData());
    vx::HttpHost host(vx::HttpAccess("download.example.com", 80, "", ""),
                      vx::HttpAccess("127.0.0.1", squid.port(), "clerk", "wrong"), "");
    const QString proxy = QString("the proxy 127.0.0.1:%1 ").arg(squid.port());
    for (const bool isTunnel : {false, true}) {
        host.server.setAddress("download.example.com", 80, isTunnel);
        const QString line = reasonFor(host, ownBuffer());
        QVERIFY2(line.startsWith(proxy + "refuses the user and password"), qPrintable(line));
    }
    Squid open(Squid::Open);
    QVERIFY2(open.start(), open.output().constData());
    RawServer gone;
    const vx::HttpAccess server = gone.host().server;
    gone.close();
    const QString line =
        reasonFor({server, vx::HttpAccess("127.0.0.1", open.port(), "", ""), ""}, ownBuffer());
    QVERIFY2(line.contains(QString("status 503; the server's own log says why (through the proxy "
                                   "127.0.0.1:%1)")
                               .arg(open.port())),
             qPrintable(line));
}

void HttpClientFailureReasonsTest::tellsNothingOfAnswersThatAreWhole()
{
    RawServer server;
    for (const int status : {200, 204, 206, 304}) {
        server.setReply(rawReply(status));
        QCOMPARE(reasonFor(server.host(), ownBuffer()), QString());
    }
}

void HttpClientFailureReasonsTest::tellsNothingOfRequestsThatAreCancelled()
{
    const LogCapture log;
    RawServer server;
    server.setScript([](QTcpSocket*, const QByteArray&) {});
    HttpClient client(server.host());
    client.get("/", nullptr, nullptr, ownBuffer());
    QTRY_COMPARE(server.requests().size(), 1);
    client.reset();
    QVERIFY(log.allLines().isEmpty());
}

VX_TEST_MAIN(HttpClientFailureReasonsTest)
#include "tst_HttpClientFailureReasons.moc"
