#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

using Params = QMap<QString, QVariant>;

/** What a request asks, what it hands back, and who is told of it. */
class HttpClientTest : public QObject
{
    Q_OBJECT

private slots:
    void asksForThePath();
    void asksForIdentity();
    void asksForTheRootIfThePathIsEmpty();
    void asksForTheQuery();
    void asksTheHostSetLast();
    void asksOnTheNamedPort();
    void sendsNoLineBreaks_data();
    void sendsNoLineBreaks();
    void sendsNoCookies();
    void namesItself();
    void keepsWhatAServerCompressed();

    void handsBackTheAnswer();
    void handsBackEveryStatus_data();
    void handsBackEveryStatus();
    void handsBackTheText_data();
    void handsBackTheText();
    void handsBackRepeatedHeaders();
    void handsBackAllOfABody_data();
    void handsBackAllOfABody();
    void writesToTheDevice();
    void writesToTheSharedDevice();
    void throwsTheBodyAway();

    void startsNothingBeforeExecute();
    void raisesRequestStartedFirst();
    void callsTheSlotLater();
    void callsSlotsOfEveryForm_data();
    void callsSlotsOfEveryForm();
    void refusesSlotsThatDoNotFit_data();
    void refusesSlotsThatDoNotFit();
    void isExecutingUntilTheSlotReturns();
    void runsARequestOnce();
    void ignoresNull();
    void runsSeveralAtOnce();
    void logsInToTheServer();
    void sendsAWrongPasswordOnce();
};

void HttpClientTest::asksForThePath()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/a%2Fb/100%25/c d.xml", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(server.requests().first().startsWith("GET /a%2Fb/100%25/c%20d.xml HTTP/1.1\r\n"));
    QCOMPARE(request->requestUrls,
             QList<QUrl>({QUrl::fromEncoded(server.url("/a%2Fb/100%25/c%20d.xml"))}));
}

void HttpClientTest::asksForIdentity()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(headerOf(server.requests().first(), "Accept-Encoding"), QByteArray("identity"));
}

void HttpClientTest::asksForTheRootIfThePathIsEmpty()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(targetOf(server.requests().first()), QByteArray("/"));
}

void HttpClientTest::asksForTheQuery()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("/p", Params{{"a", "1 2"}, {"b", "+&"}}, &receiver, SLOT(queryResult(RequestPtr)),
               ownBuffer(), {});
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(targetOf(server.requests().first()), QByteArray("/p?a=1%202&b=%2B%26"));
}

void HttpClientTest::asksTheHostSetLast()
{
    RawServer first;
    RawServer second;
    HttpClient client;
    ResultReceiver receiver;
    client.setHost(first.host());
    const RequestPtr prepared = client.prepareGet("/early", Params(), &receiver,
                                                  SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    client.setHost(second.host());
    client.get("/late", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    client.execute(prepared);
    QTRY_COMPARE(receiver.results.size(), 2);
    QCOMPARE(first.requests().size(), 1);
    QCOMPARE(targetOf(first.requests().first()), QByteArray("/early"));
    QCOMPARE(targetOf(second.requests().first()), QByteArray("/late"));
}

void HttpClientTest::asksOnTheNamedPort()
{
    // The caller changes the address only; the proxy settings stay. Here "port 80" is the proxy's
    // business, so that the test needs no right to listen there.
    RawServer proxy;
    vx::HttpHost host(vx::HttpAccess(), vx::HttpAccess("127.0.0.1", proxy.serverPort(), "", ""),
                      "");
    host.server.setAddress("download.example.com", 80, false);
    HttpClient client(host);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/x", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(targetOf(proxy.requests().first()), QByteArray("http://download.example.com/x"));
    QCOMPARE(headerOf(proxy.requests().first(), "Host"), QByteArray("download.example.com"));
    QCOMPARE(request->requestUrls.first(), QUrl("http://download.example.com/x"));
}

void HttpClientTest::sendsNoLineBreaks_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Params>("params");
    QTest::addColumn<QString>("agent");

    const QString evil = "x\r\nX-Evil: 1\r\n\r\nGET /evil HTTP/1.1\r\n";
    QTest::newRow("path") << "/" + evil << Params() << "";
    QTest::newRow("key") << "/" << Params{{evil, "1"}} << "";
    QTest::newRow("value") << "/" << Params{{"a", evil}} << "";
    QTest::newRow("agent") << "/" << Params() << evil;
}

void HttpClientTest::sendsNoLineBreaks()
{
    QFETCH(QString, path);
    QFETCH(Params, params);
    QFETCH(QString, agent);
    RawServer server;
    vx::HttpHost host = server.host();
    host.userAgent = agent;
    HttpClient client(host);
    ResultReceiver receiver;
    client.get(path, params, &receiver, SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(receiver.results.first()->statusCode, 200);
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(headerOf(server.requests().first(), "X-Evil").isEmpty());
}

void HttpClientTest::sendsNoCookies()
{
    RawServer server;
    server.setScript([&server](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/first";
        socket->write(rawReply(isFirst ? 302 : 200, "",
                               {{"Set-Cookie", "a=1\x0b; path=/"}, {"Location", server.url("/")}}));
        socket->disconnectFromHost();
    });
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("/first", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    client.get("/third", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 2);
    QCOMPARE(server.requests().size(), 3);
    for (const QByteArray& request : server.requests()) {
        QVERIFY(headerOf(request, "Cookie").isEmpty());
    }
}

void HttpClientTest::namesItself()
{
    RawServer server;
    vx::HttpHost host = server.host();
    host.userAgent = "Product/1.2";
    HttpClient client(host);
    ResultReceiver receiver;
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(headerOf(server.requests().first(), "User-Agent"), QByteArray("Product/1.2"));
}

void HttpClientTest::keepsWhatAServerCompressed()
{
    const QByteArray compressed = qCompress(QByteArray(1000, 'x')).mid(4);
    RawServer server;
    server.setReply(rawReply(200, compressed, {{"Content-Encoding", "deflate"}}));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->getResponseBuffer()->data(), compressed);
}

void HttpClientTest::handsBackTheAnswer()
{
    RawServer server;
    server.setReply(rawReply(200, "<xml/>", {{"Set-Cookie", "id=7"}}));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(receiver.results.first().get(), request.get());
    QCOMPARE(request->statusCode, 200);
    QVERIFY(request->responseHeader.hasKey("set-cookie"));
    QCOMPARE(request->responseHeader.value("set-cookie"), QString("id=7"));
    QBuffer* const buffer = request->getResponseBuffer();
    QVERIFY(buffer != nullptr);
    QCOMPARE(request->responseDevice, buffer);
    QVERIFY(buffer->seek(0));
    QCOMPARE(buffer->readAll(), QByteArray("<xml/>"));
    QCOMPARE(buffer->data(), QByteArray("<xml/>"));
    QCOMPARE(request->getResponseText(), QString("<xml/>"));
}

void HttpClientTest::handsBackEveryStatus_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {200, 201, 206, 300, 304, 400, 401, 403, 404, 410, 416, 500, 503}) {
        QTest::addRow("%d", status) << status;
    }
}

void HttpClientTest::handsBackEveryStatus()
{
    QFETCH(int, status);
    RawServer server;
    server.setReply(rawReply(status, status == 304 ? "" : "the page"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, status);
    QCOMPARE(request->getResponseText(), QString(status == 304 ? "" : "the page"));
}

void HttpClientTest::handsBackTheText_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("nothing said") << QByteArray() << QByteArray("Gr\xc3\xbc\xc3\x9f");
    QTest::newRow("UTF-8") << QByteArray("text/html; charset=UTF-8")
                           << QByteArray("Gr\xc3\xbc\xc3\x9f");
    QTest::newRow("Latin-1") << QByteArray("text/plain;charset=ISO-8859-1")
                             << QByteArray("Gr\xfc\xdf");
    QTest::newRow("quoted") << QByteArray("text/plain; Charset=\"iso-8859-1\"; x=y")
                            << QByteArray("Gr\xfc\xdf");
    QTest::newRow("unknown") << QByteArray("text/plain; charset=klingon")
                             << QByteArray("Gr\xc3\xbc\xc3\x9f");
    QTest::newRow("mark") << QByteArray("text/plain; charset=ISO-8859-1")
                          << QByteArray("\xef\xbb\xbfGr\xc3\xbc\xc3\x9f");
    QTest::newRow("UTF-16 mark") << QByteArray("text/plain")
                                 << QByteArray("\xff\xfeG\0r\0\xfc\0\xdf\0", 10);
}

void HttpClientTest::handsBackTheText()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, bytes);
    RawServer server;
    server.setReply(
        rawReply(200, bytes, type.isEmpty() ? Fields() : Fields{{"Content-Type", type}}));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->getResponseText(), QString::fromUtf8("Gr\xc3\xbc\xc3\x9f"));
}

void HttpClientTest::handsBackRepeatedHeaders()
{
    RawServer server;
    server.setReply(rawReply(
        200, "", {{"Set-Cookie", "a=1; expires=Thu, 01 Jan 2032"}, {"Set-Cookie", "b=2"}}));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->responseHeader.allValues("set-cookie"),
             QStringList({"a=1; expires=Thu, 01 Jan 2032", "b=2"}));
}

void HttpClientTest::handsBackAllOfABody_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("length") << QByteArray("Content-Length: 20000000\r\n\r\n");
    QTest::newRow("no length") << QByteArray("\r\n");
    QTest::newRow("one chunk") << QByteArray("Transfer-Encoding: chunked\r\n\r\n1312D00\r\n");
}

void HttpClientTest::handsBackAllOfABody()
{
    // The end of the connection is seen long before the last byte is taken.
    QFETCH(QByteArray, header);
    const QByteArray end = header.contains("chunked") ? "\r\n0\r\n\r\n" : "";
    RawServer server;
    server.setReply("HTTP/1.1 200 OK\r\n" + header + QByteArray(20000000, 'x') + end);
    HttpClient client(server.host());
    ResultReceiver receiver;
    connect(&client, &HttpClient::downloadProgress, this, [] { QThread::msleep(10); });
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE_WITH_TIMEOUT(receiver.results.size(), 1, 60000);
    QCOMPARE(request->statusCode, 200);
    QCOMPARE(request->getResponseBuffer()->size(), 20000000LL);
}

void HttpClientTest::writesToTheDevice()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), &device);
    QCOMPARE(request->responseDevice, &device);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(device.data(), QByteArray("body"));
    QVERIFY2(device.isOpen(), "the caller closes its device");
    QVERIFY(request->getResponseBuffer() == nullptr);
    QCOMPARE(request->getResponseText(), QString());
}

void HttpClientTest::writesToTheSharedDevice()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    boost::shared_ptr<QBuffer> device(new QBuffer);
    device->open(QIODevice::WriteOnly);
    RequestPtr request =
        client.get("/", Params(), &receiver, SLOT(queryResult(RequestPtr)), nullptr, device);
    QCOMPARE(request->responseDevice, device.get());
    QVERIFY(!device.unique());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(device->data(), QByteArray("body"));
    request.reset();
    receiver.results.clear();
    QTRY_VERIFY(device.unique());
}

void HttpClientTest::throwsTheBodyAway()
{
    RawServer server;
    server.setReply(rawReply(200, "body"));
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request = client.get("/", &receiver, SLOT(queryResult(RequestPtr)), nullptr);
    QVERIFY(request->responseDevice == nullptr);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 200);
}

void HttpClientTest::startsNothingBeforeExecute()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy started(&client, SIGNAL(requestStarted(RequestPtr)));
    const RequestPtr request =
        client.prepareGet("/", Params(), &receiver, SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    QVERIFY(!client.isExecutingRequest());
    QVERIFY(request->userData == nullptr);
    QCOMPARE(request->statusCode, 0);
    // A second request that comes to its end shows that the first one had the time.
    client.get("/second", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(started.count(), 1);
    QCOMPARE(server.requests().size(), 1);
    QCOMPARE(targetOf(server.requests().first()), QByteArray("/second"));
}

void HttpClientTest::raisesRequestStartedFirst()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy started(&client, SIGNAL(requestStarted(RequestPtr)));
    const RequestPtr request =
        client.prepareGet("/", Params(), &receiver, SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    int record = 0;
    request->userData = &record;
    client.execute(request);
    QCOMPARE(started.count(), 1);
    QCOMPARE(started.first().first().value<RequestPtr>().get(), request.get());
    QCOMPARE(started.first().first().value<RequestPtr>()->userData, &record);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(receiver.results.first()->userData, &record);
    QCOMPARE(started.count(), 1);
}

void HttpClientTest::callsTheSlotLater()
{
    HttpClient client; // without a host a request fails at once, and its slot is called later still
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QVERIFY(receiver.results.isEmpty());
    QVERIFY(client.isExecutingRequest());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(request->statusCode, 0);
    QVERIFY(!client.isExecutingRequest());
}

void HttpClientTest::callsSlotsOfEveryForm_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("macro") << QByteArray(SLOT(queryResult(RequestPtr)));
    QTest::newRow("text") << QByteArray("1queryResult(RequestPtr)");
    QTest::newRow("constant reference") << QByteArray("1queryResult( const RequestPtr & )");
    QTest::newRow("without digit") << QByteArray("queryResult(RequestPtr)");
    QTest::newRow("without parameter") << QByteArray("1queryDone()");
}

void HttpClientTest::callsSlotsOfEveryForm()
{
    QFETCH(QByteArray, slot);
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    client.get("/", &receiver, slot.constData(), ownBuffer());
    slot.fill('x'); // the text need not outlive the call
    QTRY_COMPARE(receiver.results.size(), 1);
    QTRY_VERIFY(!client.isExecutingRequest());
}

void HttpClientTest::refusesSlotsThatDoNotFit_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("unknown") << QByteArray("1unheardOf(RequestPtr)");
    QTest::newRow("other parameter") << QByteArray("1takesSomethingElse(int)");
    QTest::newRow("garbage") << QByteArray("1((");
}

void HttpClientTest::refusesSlotsThatDoNotFit()
{
    QFETCH(QByteArray, slot);
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    QSignalSpy discarded(&client, SIGNAL(requestReset(RequestPtr)));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("HttpClient: No such slot "));
    client.get("/", &receiver, slot.constData(), ownBuffer());
    QTRY_COMPARE(discarded.count(), 1);
    QVERIFY(receiver.results.isEmpty());
    QVERIFY(!client.isExecutingRequest());
}

void HttpClientTest::isExecutingUntilTheSlotReturns()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    bool isExecuting = false;
    receiver.whenCalled = [&] { isExecuting = client.isExecutingRequest(); };
    QVERIFY(!client.isExecutingRequest());
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QVERIFY(client.isExecutingRequest());
    QTRY_COMPARE(receiver.results.size(), 1);
    QVERIFY(isExecuting);
    QVERIFY(!client.isExecutingRequest());
}

void HttpClientTest::runsARequestOnce()
{
    RawServer server;
    HttpClient client(server.host());
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    client.execute(request);
    QTRY_COMPARE(receiver.results.size(), 1);
    client.execute(request);
    QVERIFY(!client.isExecutingRequest());
    QCOMPARE(server.requests().size(), 1);
}

void HttpClientTest::ignoresNull()
{
    HttpClient client;
    client.execute(RequestPtr());
    QVERIFY(!client.isExecutingRequest());
    client.get("/", nullptr, nullptr, ownBuffer());
    QTRY_VERIFY(!client.isExecutingRequest());
}

void HttpClientTest::runsSeveralAtOnce()
{
    RawServer server;
    QList<QTcpSocket*> waiting;
    server.setScript([&](QTcpSocket* socket, const QByteArray&) { waiting.append(socket); });
    HttpClient client(server.host());
    ResultReceiver first;
    ResultReceiver second;
    client.get("/1", &first, SLOT(queryResult(RequestPtr)), ownBuffer());
    client.get("/2", &second, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(waiting.size(), 2);
    for (int i : {1, 0}) {
        waiting.at(i)->write(rawReply(200, targetOf(server.requests().at(i))));
        waiting.at(i)->disconnectFromHost();
        QTRY_COMPARE(first.results.size() + second.results.size(), 2 - i);
        QCOMPARE(client.isExecutingRequest(), i == 1);
    }
    QCOMPARE(first.results.first()->getResponseText(), QString("/1"));
    QCOMPARE(second.results.first()->getResponseText(), QString("/2"));
}

void HttpClientTest::logsInToTheServer()
{
    RawServer server;
    server.setScript([](QTcpSocket* socket, const QByteArray& request) {
        const bool isKnown =
            headerOf(request, "Authorization") == "Basic " + QByteArray("me:secret").toBase64();
        socket->write(
            rawReply(isKnown ? 200 : 401, "body", {{"WWW-Authenticate", "Basic realm=\"x\""}}));
        socket->disconnectFromHost();
    });
    vx::HttpHost host = server.host();
    host.server.user = "me";
    for (const char* const password : {"secret", "wrong"}) {
        host.server.password = password;
        HttpClient client(host);
        ResultReceiver receiver;
        client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
        QTRY_COMPARE(receiver.results.size(), 1);
        QCOMPARE(receiver.results.first()->statusCode,
                 password == QByteArray("secret") ? 200 : 401);
    }
    QCOMPARE(server.requests().size(), 4);
}

void HttpClientTest::sendsAWrongPasswordOnce()
{
    RawServer server;
    server.setReply(rawReply(401, "", {{"WWW-Authenticate", R"(Digest realm="x", nonce="y")"}}));
    vx::HttpHost host = server.host();
    host.server.user = "me";
    host.server.password = "wrong";
    HttpClient client(host);
    ResultReceiver receiver;
    client.get("/", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(receiver.results.first()->statusCode, 401);
    QCOMPARE(server.requests().size(), 2);
    QVERIFY(headerOf(server.requests().last(), "Authorization").startsWith("Digest "));
}

VX_TEST_MAIN(HttpClientTest)
#include "tst_HttpClient.moc"
