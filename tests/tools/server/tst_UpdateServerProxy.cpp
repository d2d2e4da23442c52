#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/server/RawConnection.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using namespace vx::test;

class UpdateServerProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void answersForEveryHost_data();
    void answersForEveryHost();
    void answersQtAsAProxy();
    void refusesTunnels();
    void demandsThePassword();
    void acceptsThePassword_data();
    void acceptsThePassword();
    void demandsNoPasswordOfDirectRequests();
    void liftsThePassword();

private:
    QNetworkProxy proxy(const QString& user = QString(), const QString& password = QString()) const;

    QScopedPointer<UpdateServer> m_server;
};

void UpdateServerProxyTest::init()
{
    ServedReply reply;
    reply.body = "package";
    m_server.reset(new UpdateServer);
    m_server->setReply("/p/a b.zip", reply);
    m_server->setReply("/", reply);
    QVERIFY(m_server->start());
}

void UpdateServerProxyTest::cleanup()
{
    m_server.reset();
}

QNetworkProxy UpdateServerProxyTest::proxy(const QString& user, const QString& password) const
{
    return {QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_server->port(), user,
            password};
}

void UpdateServerProxyTest::answersForEveryHost_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QString>("path");
    const QString file = QStringLiteral("/p/a b.zip");
    QTest::newRow("plain") << QByteArray("http://download.example.com/p/a%20b.zip")
                           << QByteArray("download.example.com") << file;
    QTest::newRow("port") << QByteArray("http://download.example.com:81/p/a%20b.zip")
                          << QByteArray("download.example.com:81") << file;
    QTest::newRow("query") << QByteArray("http://download.example.com/p/a%20b.zip?x=/y")
                           << QByteArray("download.example.com") << file;
    QTest::newRow("user") << QByteArray("http://me:pw@download.example.com/p/a%20b.zip")
                          << QByteArray("download.example.com") << file;
    QTest::newRow("no path") << QByteArray("http://download.example.com")
                             << QByteArray("download.example.com") << QStringLiteral("/");
}

void UpdateServerProxyTest::answersForEveryHost()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, host);
    QFETCH(QString, path);
    RawConnection client(m_server->port());
    QVERIFY(client.get(target));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 200);
    QCOMPARE(client.body(), QByteArray("package"));
    const ServedRequest request = m_server->requests().constFirst();
    QCOMPARE(request.target, target);
    QCOMPARE(request.host, host);
    QCOMPARE(request.path, path);
}

void UpdateServerProxyTest::answersQtAsAProxy()
{
    const QUrl url(QStringLiteral("http://download.example.com/p/a b.zip"));
    const WebResult result = fetch(QNetworkRequest(url), proxy());
    QCOMPARE(result.status, 200);
    QCOMPARE(result.body, QByteArray("package"));
    QCOMPARE(m_server->requests().constFirst().host, QByteArray("download.example.com"));
}

void UpdateServerProxyTest::refusesTunnels()
{
    RawConnection client(m_server->port());
    QVERIFY(client.send(
        "CONNECT download.example.com:443 HTTP/1.1\r\nHost: download.example.com:443\r\n\r\n"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 501);
    QCOMPARE(m_server->requests().constFirst().host, QByteArray("download.example.com:443"));
}

void UpdateServerProxyTest::demandsThePassword()
{
    m_server->setProxyPassword("user", "secret");
    RawConnection client(m_server->port());
    QVERIFY(client.get("http://download.example.com/"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 407);
    QVERIFY(client.head().contains("\r\nProxy-Authenticate: Basic realm="));
    const WebResult wrong =
        fetch(QNetworkRequest(QUrl(QStringLiteral("http://download.example.com/"))),
              proxy("user", "wrong"));
    QCOMPARE(wrong.error, QNetworkReply::ProxyAuthenticationRequiredError);
    QVERIFY(wrong.body != "package");
}

void UpdateServerProxyTest::acceptsThePassword_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::newRow("plain") << QStringLiteral("user") << QStringLiteral("secret");
    QTest::newRow("colon") << QStringLiteral("user") << QStringLiteral("a:b");
    QTest::newRow("long") << QStringLiteral("somebody") << QString(60, QLatin1Char('x'));
    QTest::newRow("empty") << QStringLiteral("user") << QString();
}

void UpdateServerProxyTest::acceptsThePassword()
{
    QFETCH(QString, user);
    QFETCH(QString, password);
    m_server->setProxyPassword(user, password);
    RawConnection client(m_server->port());
    const QByteArray pair = (user + QLatin1Char(':') + password).toUtf8().toBase64();
    QVERIFY(
        client.get("http://download.example.com/", "Proxy-Authorization: Basic " + pair + "\r\n"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 200);
    if (!password.isEmpty()) {
        const WebResult result =
            fetch(QNetworkRequest(QUrl(QStringLiteral("http://download.example.com/"))),
                  proxy(user, password));
        QCOMPARE(result.body, QByteArray("package"));
    }
}

void UpdateServerProxyTest::demandsNoPasswordOfDirectRequests()
{
    m_server->setProxyPassword("user", "secret");
    QCOMPARE(fetch(QNetworkRequest(m_server->url())).body, QByteArray("package"));
}

void UpdateServerProxyTest::liftsThePassword()
{
    m_server->setProxyPassword("user", "secret");
    m_server->setProxyPassword(QString(), QString());
    RawConnection client(m_server->port());
    QVERIFY(client.get("http://download.example.com/"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 200);
}

VX_TEST_MAIN(UpdateServerProxyTest)

#include "tst_UpdateServerProxy.moc"
