#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

class HttpClientRedirectsTest : public QObject
{
    Q_OBJECT

private slots:
    void followsEveryKind_data();
    void followsEveryKind();
    void resolvesTargets_data();
    void resolvesTargets();
    void stopsAfterTwenty_data();
    void stopsAfterTwenty();
    void refusesTargets_data();
    void refusesTargets();
    void leavesTheBodyOfARedirectOut();
    void doesNotWaitForTheBodyOfARedirect();
    void goesToAnotherServer();
    void givesNoPasswordToAnotherServer();
    void hasNoStatusIfTheTargetIsDead();
    void keepsTheHeaderOfTheLastAnswer();
};

void HttpClientRedirectsTest::followsEveryKind_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("follows");
    for (const int status : {301, 302, 303, 307, 308}) {
        QTest::addRow("%d", status) << status << true;
    }
    for (const int status : {300, 304, 305, 201, 200}) {
        QTest::addRow("%d", status) << status << false;
    }
}

void HttpClientRedirectsTest::followsEveryKind()
{
    QFETCH(int, status);
    QFETCH(bool, follows);
    RawServer server;
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/";
        socket->write(isFirst ? rawReply(status, "", {{"Location", server.url("/there")}})
                              : rawReply(200, "body"));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(server.requests().size(), follows ? 2 : 1);
    QCOMPARE(request->statusCode, follows ? 200 : status);
    QCOMPARE(request->getResponseText(), QString(follows ? "body" : ""));
}

void HttpClientRedirectsTest::resolvesTargets_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QByteArray>("target");

    QTest::newRow("path") << QByteArray("/there") << QByteArray("/there");
    QTest::newRow("neighbour") << QByteArray("there") << QByteArray("/a/there");
    QTest::newRow("above") << QByteArray("../there") << QByteArray("/there");
    QTest::newRow("query") << QByteArray("?x=1&y=%20") << QByteArray("/a/b?x=1&y=%20");
    QTest::newRow("same server") << QByteArray("//HOST/there") << QByteArray("/there");
    QTest::newRow("absolute") << QByteArray("http://HOST/there?q") << QByteArray("/there?q");
    QTest::newRow("upper case") << QByteArray("HTTP://HOST/there") << QByteArray("/there");
    QTest::newRow("login") << QByteArray("http://us:pw@HOST/there") << QByteArray("/there");
    QTest::newRow("fragment") << QByteArray("/there#part") << QByteArray("/there");
    QTest::newRow("encoded") << QByteArray("/a%2Fb%25") << QByteArray("/a%2Fb%25");
    QTest::newRow("blank") << QByteArray("/a b") << QByteArray("/a%20b");
    QTest::newRow("UTF-8") << QByteArray("/\xc3\xbc") << QByteArray("/%C3%BC");
}

void HttpClientRedirectsTest::resolvesTargets()
{
    QFETCH(QByteArray, location);
    RawServer server;
    location.replace("HOST", server.url().mid(7));
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/a/b";
        socket->write(rawReply(isFirst ? 302 : 200, "", {{"Location", location}}));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/a/b", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 200);
    QTEST(targetOf(server.requests().last()), "target");
    QVERIFY(headerOf(server.requests().last(), "Authorization").isEmpty());
    QCOMPARE(request->requestUrls.size(), 2);
    QCOMPARE(request->requestUrls.first(), QUrl::fromEncoded(server.url("/a/b")));
    QCOMPARE(request->requestUrls.last().userInfo(), QString());
    QCOMPARE(request->requestUrls.last().port(), int(server.serverPort()));
}

void HttpClientRedirectsTest::stopsAfterTwenty_data()
{
    QTest::addColumn<int>("redirects");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("asked");
    QTest::newRow("20") << 20 << 200 << 21;
    QTest::newRow("21") << 21 << 302 << 21;
    QTest::newRow("for ever") << 1000 << 302 << 21;
}

void HttpClientRedirectsTest::stopsAfterTwenty()
{
    QFETCH(int, redirects);
    RawServer server;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) {
        const int number = server.requests().size();
        const QByteArray next = server.url("/" + QByteArray::number(number));
        socket->write(number <= redirects ? rawReply(302, "moved", {{"Location", next}})
                                          : rawReply(200, "body"));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/0", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QTEST(request->statusCode, "status");
    QTEST(int(server.requests().size()), "asked");
    QTEST(int(request->requestUrls.size()), "asked");
    QCOMPARE(request->requestUrls.last(), QUrl::fromEncoded(server.url("/20")));
    QCOMPARE(request->getResponseText(), QString(request->statusCode == 200 ? "body" : ""));
}

void HttpClientRedirectsTest::refusesTargets_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::newRow("ftp") << QByteArray("ftp://127.0.0.1/a");
    QTest::newRow("file") << QByteArray("file:///etc/passwd");
    QTest::newRow("data") << QByteArray("data:text/plain,evil");
    QTest::newRow("resource") << QByteArray("qrc:/evil");
    QTest::newRow("script") << QByteArray("javascript:alert(1)");
    QTest::newRow("no host") << QByteArray("http:///a");
    QTest::newRow("bad port") << QByteArray("http://127.0.0.1:99999/a");
    QTest::newRow("bad host") << QByteArray("http://a b/");
    QTest::newRow("empty") << QByteArray("");
}

void HttpClientRedirectsTest::refusesTargets()
{
    QFETCH(QByteArray, location);
    RawServer server;
    server.setReply(rawReply(302, "moved", {{"Location", location}}));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 302);
    QCOMPARE(request->requestUrls.size(), 1);
    QCOMPARE(server.requests().size(), 1);
    QCOMPARE(device.data(), QByteArray());
}

void HttpClientRedirectsTest::leavesTheBodyOfARedirectOut()
{
    RawServer server;
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/";
        socket->write(isFirst ? rawReply(302, QByteArray(3000000, 'x'), {{"Location", "/there"}})
                              : rawReply(200, "body"));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(device.data(), QByteArray("body"));
}

void HttpClientRedirectsTest::doesNotWaitForTheBodyOfARedirect()
{
    RawServer server;
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        if (targetOf(request) == "/") {
            socket->write("HTTP/1.1 302 Found\r\nLocation: /there\r\nContent-Length: 99\r\n\r\nx");
        } else {
            socket->write(rawReply(200, "body"));
            socket->disconnectFromHost();
        }
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 200);
    QCOMPARE(request->getResponseText(), QString("body"));
}

void HttpClientRedirectsTest::goesToAnotherServer()
{
    RawServer first;
    RawServer second;
    second.setReply(rawReply(200, "body"));
    first.setReply(rawReply(301, "", {{"Location", second.url("/x")}}));
    HttpClient client(first.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->getResponseText(), QString("body"));
    QCOMPARE(request->requestUrls.last(), QUrl::fromEncoded(second.url("/x")));
}

void HttpClientRedirectsTest::givesNoPasswordToAnotherServer()
{
    RawServer first;
    RawServer second;
    second.setReply(rawReply(401, "", {{"WWW-Authenticate", "Basic realm=\"x\""}}));
    first.setReply(rawReply(301, "", {{"Location", second.url("/x")}}));
    vx::HttpHost host = first.host();
    host.server.user = "me";
    host.server.password = "secret";
    HttpClient client(host);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 401);
    QCOMPARE(second.requests().size(), 1);
    QVERIFY(headerOf(second.requests().first(), "Authorization").isEmpty());
}

void HttpClientRedirectsTest::hasNoStatusIfTheTargetIsDead()
{
    RawServer first;
    RawServer second;
    first.setReply(rawReply(301, "", {{"Location", second.url("/x")}}));
    second.close();
    HttpClient client(first.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 0);
    QVERIFY(request->responseHeader.keys().isEmpty());
    QCOMPARE(request->requestUrls.size(), 2);
}

void HttpClientRedirectsTest::keepsTheHeaderOfTheLastAnswer()
{
    RawServer server;
    server.setScript([&](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/";
        socket->write(isFirst ? rawReply(302, "", {{"Location", "/there"}, {"X-First", "1"}})
                              : rawReply(200, "", {{"X-Second", "2"}}));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(!request->responseHeader.hasKey("X-First"));
    QCOMPARE(request->responseHeader.value("x-second"), QString("2"));
}

VX_TEST_MAIN(HttpClientRedirectsTest)
#include "tst_HttpClientRedirects.moc"
