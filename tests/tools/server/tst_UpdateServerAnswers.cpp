#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/server/RawConnection.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using namespace vx::test;

namespace {

ServedReply textReply(const QByteArray& body, int status = 200)
{
    ServedReply reply;
    reply.status = status;
    reply.headers = {{"Content-Type", "text/xml"}};
    reply.body = body;
    return reply;
}

void writeFile(const QString& name, const QByteArray& content)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

} // namespace

class UpdateServerAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void answersWithTheReplyOfThePath();
    void sendsTheReplyAsItStands();
    void keepsALengthThatTheReplyBrings();
    void answersWithoutBody();
    void answersHeadWithoutBody();
    void asksReplyThenHandlerThenFolder();
    void answersAFailingHandlerWith500();
    void recordsRequestsAsTheyCame();
    void readsThePath_data();
    void readsThePath();
    void servesFilesBelowTheFolder();
    void servesRangesOfFiles_data();
    void servesRangesOfFiles();
    void servesNothingOutsideTheFolder_data();
    void servesNothingOutsideTheFolder();
    void refusesWhatIsNoHttp();
    void givesItsAddress();
    void startsOnceAndAgainAfterStop();
    void refusesAPortInUse();
    void survivesManyConnectionsAtOnce();

private:
    QScopedPointer<UpdateServer> m_server;
    QScopedPointer<QTemporaryDir> m_folder;
};

void UpdateServerAnswersTest::init()
{
    m_folder.reset(new QTemporaryDir);
    m_server.reset(new UpdateServer);
    QVERIFY(m_server->start());
}

void UpdateServerAnswersTest::cleanup()
{
    m_server.reset();
    m_folder.reset();
}

void UpdateServerAnswersTest::answersWithTheReplyOfThePath()
{
    m_server->setReply("/a", textReply("first"));
    m_server->setReply("/b", textReply("gone", 410));
    const WebResult first = fetch(QNetworkRequest(m_server->url("/a")));
    QCOMPARE(first.status, 200);
    QCOMPARE(first.body, QByteArray("first"));
    QCOMPARE(first.contentType, QByteArray("text/xml"));
    const WebResult second = fetch(QNetworkRequest(m_server->url("/b")));
    QCOMPARE(second.status, 410);
    QCOMPARE(second.body, QByteArray("gone"));
    m_server->setReply("/a", textReply("changed"));
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/a"))).body, QByteArray("changed"));
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/c"))).status, 404);
}

void UpdateServerAnswersTest::sendsTheReplyAsItStands()
{
    ServedReply reply = textReply(QByteArray(5000, 'x'));
    reply.headers.push_back({"X-One", "1"});
    m_server->setReply("/", reply);
    RawConnection client(m_server->port());
    // Neither packed, though the client would take it, nor cut.
    QVERIFY(client.get("/", "Accept-Encoding: gzip, br\r\nRange: bytes=0-9\r\n"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 200);
    QCOMPARE(client.body(), reply.body);
    QVERIFY(client.head().contains("\r\nX-One: 1"));
    QCOMPARE(client.head().count("Content-Type"), 1);
    QVERIFY(client.head().contains("\r\nContent-Length: 5000"));
}

void UpdateServerAnswersTest::keepsALengthThatTheReplyBrings()
{
    ServedReply reply = textReply("short");
    reply.headers.push_back({"Content-Length", "1000"});
    m_server->setReply("/", reply);
    RawConnection client(m_server->port());
    QVERIFY(client.get("/"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.head().count("Content-Length"), 1);
    QVERIFY(client.head().contains("\r\nContent-Length: 1000"));
    QCOMPARE(client.body(), QByteArray("short"));
}

void UpdateServerAnswersTest::answersWithoutBody()
{
    ServedReply reply;
    reply.status = 302;
    reply.headers = {{"Location", "http://other.example.com/x"}};
    m_server->setReply("/", reply);
    const WebResult result = fetch(QNetworkRequest(m_server->url()));
    QCOMPARE(result.status, 302);
    QCOMPARE(result.redirect, QUrl(QStringLiteral("http://other.example.com/x")));
    QVERIFY(result.body.isEmpty());
}

void UpdateServerAnswersTest::answersHeadWithoutBody()
{
    m_server->setReply("/", textReply("12345"));
    RawConnection client(m_server->port());
    QVERIFY(client.send("HEAD / HTTP/1.1\r\nHost: a\r\n\r\n"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 200);
    QVERIFY(client.head().contains("\r\nContent-Length: 5"));
    QVERIFY(client.body().isEmpty());
    QCOMPARE(m_server->requests().constFirst().method, QByteArray("HEAD"));
}

void UpdateServerAnswersTest::asksReplyThenHandlerThenFolder()
{
    writeFile(m_folder->filePath("file"), "from the folder");
    m_server->setFolder(m_folder->path());
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/file"))).body, QByteArray("from the folder"));
    m_server->setHandler(
        [](const ServedRequest& request) { return textReply("handled " + request.path.toUtf8()); });
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/file"))).body, QByteArray("handled /file"));
    m_server->setReply("/file", textReply("set"));
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/file"))).body, QByteArray("set"));
    m_server->setHandler({});
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/other"))).status, 404);
}

void UpdateServerAnswersTest::answersAFailingHandlerWith500()
{
    m_server->setHandler(
        [](const ServedRequest&) -> ServedReply { throw std::runtime_error("broken"); });
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/"))).status, 500);
    m_server->setHandler({});
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/"))).status, 404);
}

void UpdateServerAnswersTest::recordsRequestsAsTheyCame()
{
    QNetworkRequest request(m_server->url("/x"));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "text/xml");
    fetch(request);
    fetch(QNetworkRequest(m_server->url("/y")));
    const QList<ServedRequest> requests = m_server->requests();
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.at(0).method, QByteArray("GET"));
    QCOMPARE(requests.at(0).target, QByteArray("/x"));
    QCOMPARE(requests.at(0).headers.value("content-type"), QByteArray("text/xml"));
    QCOMPARE(requests.at(0).host, "127.0.0.1:" + QByteArray::number(m_server->port()));
    QVERIFY(!requests.at(0).headers.contains("remote_addr"));
    QCOMPARE(requests.at(1).path, QStringLiteral("/y"));
    m_server->clearRequests();
    QVERIFY(m_server->requests().isEmpty());
}

void UpdateServerAnswersTest::readsThePath_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("path");
    QTest::newRow("root") << QByteArray("/") << QStringLiteral("/");
    QTest::newRow("query") << QByteArray("/a?b=c") << QStringLiteral("/a");
    QTest::newRow("encoded") << QByteArray("/a%20b%2Bc+d") << QStringLiteral("/a b+c+d");
    QTest::newRow("utf-8") << QByteArray("/%C3%A4.zip") << QStringLiteral("/\u00e4.zip");
    QTest::newRow("two slashes") << QByteArray("//a//b") << QStringLiteral("//a//b");
    QTest::newRow("scheme in the query") << QByteArray("/a?u=http://x") << QStringLiteral("/a");
}

void UpdateServerAnswersTest::readsThePath()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, path);
    m_server->setReply(path, textReply("found"));
    RawConnection client(m_server->port());
    QVERIFY(client.get(target));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.body(), QByteArray("found"));
    QCOMPARE(m_server->requests().constFirst().path, path);
    QCOMPARE(m_server->requests().constFirst().target, target);
}

void UpdateServerAnswersTest::servesFilesBelowTheFolder()
{
    QVERIFY(QDir(m_folder->path()).mkdir("sub"));
    const QByteArray large(300000, 'L');
    writeFile(m_folder->filePath("sub/large file.zip"), large);
    writeFile(m_folder->filePath("catalogue.xml"), "<softwareList/>");
    writeFile(m_folder->filePath("empty"), "");
    m_server->setFolder(m_folder->path());
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/sub/large file.zip"))).body, large);
    const WebResult xml = fetch(QNetworkRequest(m_server->url("/catalogue.xml")));
    QCOMPARE(xml.body, QByteArray("<softwareList/>"));
    QCOMPARE(xml.contentType, QByteArray("application/xml"));
    const WebResult empty = fetch(QNetworkRequest(m_server->url("/empty")));
    QCOMPARE(empty.status, 200);
    QVERIFY(empty.body.isEmpty());
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/sub"))).status, 404);
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/missing"))).status, 404);
    m_server->setFolder(QString());
    QCOMPARE(fetch(QNetworkRequest(m_server->url("/catalogue.xml"))).status, 404);
}

void UpdateServerAnswersTest::servesRangesOfFiles_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("middle") << QByteArray("bytes=2-4") << 206 << QByteArray("234");
    QTest::newRow("to the end") << QByteArray("bytes=7-") << 206 << QByteArray("789");
    QTest::newRow("last bytes") << QByteArray("bytes=-3") << 206 << QByteArray("789");
    QTest::newRow("beyond the end") << QByteArray("bytes=8-99") << 206 << QByteArray("89");
    QTest::newRow("more than there is")
        << QByteArray("bytes=-99") << 206 << QByteArray("0123456789");
    QTest::newRow("outside") << QByteArray("bytes=10-") << 416 << QByteArray();
    QTest::newRow("several") << QByteArray("bytes=0-1,4-5") << 200 << QByteArray("0123456789");
}

void UpdateServerAnswersTest::servesRangesOfFiles()
{
    QFETCH(QByteArray, range);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    writeFile(m_folder->filePath("file"), "0123456789");
    m_server->setFolder(m_folder->path());
    QNetworkRequest request(m_server->url("/file"));
    request.setRawHeader("Range", range);
    const WebResult result = fetch(request);
    QCOMPARE(result.status, status);
    QCOMPARE(result.body, body);
}

void UpdateServerAnswersTest::servesNothingOutsideTheFolder_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("parent") << QByteArray("/../secret");
    QTest::newRow("encoded parent") << QByteArray("/%2e%2e/secret");
    QTest::newRow("encoded slash") << QByteArray("/..%2fsecret");
    QTest::newRow("through a folder") << QByteArray("/sub/../../secret");
    QTest::newRow("link") << QByteArray("/link");
    QTest::newRow("neighbour of similar name") << QByteArray("/../served-too/secret");
}

void UpdateServerAnswersTest::servesNothingOutsideTheFolder()
{
    QFETCH(QByteArray, target);
    const QDir folder(m_folder->path());
    QVERIFY(folder.mkpath("served/sub") && folder.mkpath("served-too"));
    writeFile(folder.filePath("secret"), "secret");
    writeFile(folder.filePath("served-too/secret"), "secret");
    QVERIFY(QFile::link(folder.filePath("secret"), folder.filePath("served/link")));
    m_server->setFolder(folder.filePath("served"));
    RawConnection client(m_server->port());
    QVERIFY(client.get(target));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 404);
    QVERIFY(!client.body().contains("secret"));
}

void UpdateServerAnswersTest::refusesWhatIsNoHttp()
{
    RawConnection client(m_server->port());
    QVERIFY(client.send("\x16\x03\x01 this is not HTTP\r\n\r\n"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 400);
    QVERIFY(m_server->requests().isEmpty());
}

void UpdateServerAnswersTest::givesItsAddress()
{
    QVERIFY(m_server->port() != 0);
    const QString port = QString::number(m_server->port());
    QCOMPARE(m_server->url().toString(), "http://127.0.0.1:" + port + "/");
    QCOMPARE(m_server->url("/a b").toEncoded(),
             QByteArray("http://127.0.0.1:" + port.toLatin1() + "/a%20b"));
    UpdateServer everywhere;
    QVERIFY(everywhere.start(QStringLiteral("0.0.0.0")));
    QCOMPARE(everywhere.url().host(), QStringLiteral("127.0.0.1"));
    QCOMPARE(fetch(QNetworkRequest(everywhere.url())).status, 404);
}

void UpdateServerAnswersTest::startsOnceAndAgainAfterStop()
{
    m_server->setReply("/", textReply("still there"));
    QVERIFY(!m_server->start());
    const quint16 port = m_server->port();
    m_server->stop();
    m_server->stop();
    QCOMPARE(m_server->port(), quint16(0));
    QVERIFY(!RawConnection(port).isConnected());
    QVERIFY(m_server->start(QStringLiteral("127.0.0.1"), port));
    QCOMPARE(m_server->port(), port);
    QCOMPARE(fetch(QNetworkRequest(m_server->url())).body, QByteArray("still there"));
}

void UpdateServerAnswersTest::refusesAPortInUse()
{
    UpdateServer second;
    QVERIFY(!second.start(QStringLiteral("127.0.0.1"), m_server->port()));
    QCOMPARE(second.port(), quint16(0));
    QVERIFY(!second.start(QStringLiteral("no address")));
}

void UpdateServerAnswersTest::survivesManyConnectionsAtOnce()
{
    m_server->setReply("/", textReply("ok"));
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<RawConnection>(m_server->port()));
        QVERIFY(clients.back()->isConnected());
    }
    for (const auto& client : clients) {
        QVERIFY(client->get("/"));
    }
    for (const auto& client : clients) {
        QCOMPARE(client->readToEnd(), Ending::Closed);
        QCOMPARE(client->body(), QByteArray("ok"));
    }
    QCOMPARE(m_server->requests().size(), 200);
}

VX_TEST_MAIN(UpdateServerAnswersTest)

#include "tst_UpdateServerAnswers.moc"
