#include <QNetworkProxyFactory>
#include <QtTest>

#include <memory>

#include "host/NetworkHttp/HttpClient.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/host/NetworkHttp/Daemon.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;
using vx::HttpAccess;
using vx::HttpHost;
using vx::NetworkProxy;
using vx::NodeDB;

/** Which proxy a request goes through and how it logs in there, with a real proxy on loopback. */
class HttpClientProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void goesStraight_data();
    void goesStraight();
    void goesThroughItsOwnProxy();
    void goesThroughTheGlobalProxyAsItIsNow();
    void logsIn_data();
    void logsIn();
    void doesNotRepeatAWrongPassword();
    void followsARedirectThroughTheProxy();
    void endsIfTheProxyIsDead();
    void tellsTheProxysErrorPage();

private:
    HttpHost hostThrough(quint16 proxyPort) const;
    int statusThrough(const HttpHost& host);
    QByteArray lastVia() const { return headerOf(m_server->requests().last(), "Via"); }

    std::unique_ptr<RawServer> m_server;
    TinyProxy m_open{QString(), QString()};
    TinyProxy m_locked{"clerk", "secret"};
};

void HttpClientProxyTest::initTestCase()
{
    QVERIFY2(m_open.start(), m_open.output().constData());
    QVERIFY2(m_locked.start(), m_locked.output().constData());
}

void HttpClientProxyTest::init()
{
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    m_server = std::make_unique<RawServer>();
    m_server->setReply(rawReply(200, "body"));
}

HttpHost HttpClientProxyTest::hostThrough(quint16 proxyPort) const
{
    return HttpHost(m_server->host().server, HttpAccess("127.0.0.1", proxyPort, "", ""), "");
}

int HttpClientProxyTest::statusThrough(const HttpHost& host)
{
    HttpClient client(host);
    ResultReceiver receiver;
    client.get("/a%2Fb", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    return QTest::qWaitFor([&] { return receiver.results.size() == 1; })
               ? receiver.results.first()->statusCode
               : -1;
}

void HttpClientProxyTest::goesStraight_data()
{
    QTest::addColumn<int>("preference");
    QTest::addColumn<QString>("proxy");
    QTest::addColumn<bool>("usesGlobal");

    QTest::newRow("none") << 0 << "127.0.0.1:1" << true;
    QTest::newRow("own, without address") << 1 << "" << true;
    QTest::newRow("global, out of use") << 2 << "127.0.0.1:1" << false;
    QTest::newRow("unknown preference") << 9 << "127.0.0.1:1" << true;
}

void HttpClientProxyTest::goesStraight()
{
    QFETCH(int, preference);
    QFETCH(QString, proxy);
    QFETCH(bool, usesGlobal);
    // Neither the application-wide proxy of the toolkit nor that of the system is ever asked.
    qputenv("http_proxy", "http://127.0.0.1:1");
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    const auto restore = qScopeGuard([] {
        qunsetenv("http_proxy");
        QNetworkProxyFactory::setUseSystemConfiguration(false);
    });
    NodeDB::getDB().setGlobalProxy(NetworkProxy(usesGlobal, "127.0.0.1", 1, "", ""));
    HttpHost host = m_server->host();
    host.proxy.parseAddress(proxy, 80);
    host.proxyPreference = static_cast<HttpHost::ProxyPreference>(preference);
    QCOMPARE(statusThrough(host), 200);
    QCOMPARE(targetOf(m_server->requests().last()), QByteArray("/a%2Fb"));
}

void HttpClientProxyTest::goesThroughItsOwnProxy()
{
    QCOMPARE(statusThrough(hostThrough(m_open.port())), 200);
    QVERIFY(lastVia().contains("tinyproxy"));
    QCOMPARE(targetOf(m_server->requests().last()), QByteArray("/a%2Fb"));
}

void HttpClientProxyTest::goesThroughTheGlobalProxyAsItIsNow()
{
    HttpHost host = m_server->host();
    host.proxyPreference = HttpHost::GlobalProxy; // and nobody has called updateProxy since
    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, "127.0.0.1", m_open.port(), "", ""));
    QCOMPARE(statusThrough(host), 200);
    QVERIFY(lastVia().contains("tinyproxy"));
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    QCOMPARE(statusThrough(host), 200);
    QVERIFY(lastVia().isEmpty());
}

void HttpClientProxyTest::logsIn_data()
{
    QTest::addColumn<int>("preference");
    QTest::addColumn<QString>("ownLogin");
    QTest::addColumn<QString>("globalLogin");
    QTest::addColumn<bool>("isSameAddress");
    QTest::addColumn<int>("status");

    QTest::newRow("own login") << 1 << "clerk:secret"
                               << "" << true << 200;
    QTest::newRow("login of the global proxy") << 1 << ""
                                               << "clerk:secret" << true << 200;
    QTest::newRow("own user, password of the global proxy") << 1 << "clerk"
                                                            << "clerk:secret" << true << 200;
    QTest::newRow("another user than the global proxy's") << 1 << "guest"
                                                          << "clerk:secret" << true << 401;
    QTest::newRow("own user, global proxy elsewhere") << 1 << "clerk"
                                                      << "clerk:secret" << false << 401;
    QTest::newRow("global proxy") << 2 << ""
                                  << "clerk:secret" << true << 200;
    QTest::newRow("global proxy elsewhere") << 1 << ""
                                            << "clerk:secret" << false << 407;
    QTest::newRow("no login") << 1 << ""
                              << "" << true << 407;
    // tinyproxy refuses a wrong password by 401, other than a missing one.
    QTest::newRow("wrong password") << 1 << "clerk:wrong"
                                    << "clerk:secret" << true << 401;
    QTest::newRow("wrong global password") << 2 << ""
                                           << "clerk:wrong" << true << 401;
}

void HttpClientProxyTest::logsIn()
{
    QFETCH(int, preference);
    QFETCH(QString, ownLogin);
    QFETCH(QString, globalLogin);
    QFETCH(bool, isSameAddress);
    QFETCH(int, status);
    const auto globalPort = quint16(isSameAddress ? m_locked.port() : m_open.port());
    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, "127.0.0.1", globalPort,
                                                globalLogin.section(':', 0, 0),
                                                globalLogin.section(':', 1)));
    HttpHost host = hostThrough(m_locked.port());
    host.proxyPreference = static_cast<HttpHost::ProxyPreference>(preference);
    host.proxy.user = ownLogin.section(':', 0, 0);
    host.proxy.password = ownLogin.section(':', 1);
    QCOMPARE(statusThrough(host), status);
    QCOMPARE(m_server->requests().size(), status == 200 ? 1 : 0);
    if (status == 200) {
        QVERIFY(lastVia().contains("tinyproxy"));
        QVERIFY(headerOf(m_server->requests().last(), "Proxy-Authorization").isEmpty());
    }
}

void HttpClientProxyTest::doesNotRepeatAWrongPassword()
{
    RawServer proxy;
    proxy.setReply(rawReply(407, "", {{"Proxy-Authenticate", "Basic realm=\"x\""}}));
    HttpHost host = hostThrough(proxy.serverPort());
    host.proxy.user = "clerk";
    host.proxy.password = "wrong";
    QCOMPARE(statusThrough(host), 407);
    QCOMPARE(proxy.requests().size(), 2);
    QCOMPARE(headerOf(proxy.requests().last(), "Proxy-Authorization"),
             "Basic " + QByteArray("clerk:wrong").toBase64());
}

void HttpClientProxyTest::followsARedirectThroughTheProxy()
{
    m_server->setScript([this](QTcpSocket* socket, const QByteArray& request) {
        const bool isFirst = targetOf(request) == "/a%2Fb";
        socket->write(rawReply(isFirst ? 302 : 200, "", {{"Location", m_server->url("/there")}}));
        socket->disconnectFromHost();
    });
    HttpHost host = hostThrough(m_locked.port());
    host.proxy.user = "clerk";
    host.proxy.password = "secret";
    QCOMPARE(statusThrough(host), 200);
    QCOMPARE(m_server->requests().size(), 2);
    QVERIFY(lastVia().contains("tinyproxy"));
}

void HttpClientProxyTest::endsIfTheProxyIsDead()
{
    RawServer dead;
    const quint16 port = dead.serverPort();
    dead.close();
    QCOMPARE(statusThrough(hostThrough(port)), 0);
    QVERIFY(m_server->requests().isEmpty());
}

void HttpClientProxyTest::tellsTheProxysErrorPage()
{
    const HttpHost host = hostThrough(m_open.port());
    m_server->close();
    QCOMPARE(statusThrough(host), 500);
}

VX_TEST_MAIN(HttpClientProxyTest)
#include "tst_HttpClientProxy.moc"
