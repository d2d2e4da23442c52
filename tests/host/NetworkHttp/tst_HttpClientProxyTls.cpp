#include <QRandomGenerator>
#include <QtTest>

#include <memory>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/host/NetworkHttp/Squid.h"
#include "tests/host/NetworkHttp/TlsRedirect.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

/** https through a proxy that asks for a password. */
class HttpClientProxyTlsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void survivesARedirectToHttps_data();
    void survivesARedirectToHttps();

    void survivesBeingCancelled_data();
    void survivesBeingCancelled();
    void sendsAWrongPasswordOnce_data();
    void sendsAWrongPasswordOnce();

private:
    vx::HttpHost hostThrough(const Squid& squid) const;
    int statusOf(const vx::HttpHost& host);

    TlsRedirect m_server{308};
    Squid m_basic{Squid::Basic};
    Squid m_digest{Squid::Digest};
};

namespace {

void addSchemeRows()
{
    QTest::addColumn<bool>("isDigest");
    QTest::newRow("basic") << false;
    QTest::newRow("digest") << true;
}

} // namespace

void HttpClientProxyTlsTest::initTestCase()
{
    QVERIFY(m_server.makeCertificates());
    QVERIFY(m_server.addFile("file", 300000, "body"));
    QVERIFY2(m_server.start(), m_server.output().constData());
    QVERIFY2(m_basic.start(), m_basic.output().constData());
    QVERIFY2(m_digest.start(), m_digest.output().constData());
}

vx::HttpHost HttpClientProxyTlsTest::hostThrough(const Squid& squid) const
{
    const vx::HttpAccess server("127.0.0.1", m_server.port(), "", "");
    return vx::HttpHost(server, vx::HttpAccess("127.0.0.1", squid.port(), "clerk", "secret"), "");
}

int HttpClientProxyTlsTest::statusOf(const vx::HttpHost& host)
{
    HttpClient client(host);
    ResultReceiver receiver;
    client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    return QTest::qWaitFor([&] { return receiver.results.size() == 1; })
               ? receiver.results.first()->statusCode
               : -1;
}

void HttpClientProxyTlsTest::survivesARedirectToHttps_data()
{
    addSchemeRows();
}

void HttpClientProxyTlsTest::survivesARedirectToHttps()
{
    QFETCH(bool, isDigest);
    const Trust trust(m_server.authority().certificate());
    for (int round = 0; round < 20; ++round) {
        HttpClient client(hostThrough(isDigest ? m_digest : m_basic));
        ResultReceiver receiver;
        client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
        QTRY_COMPARE(receiver.results.size(), 1);
        const RequestPtr& result = receiver.results.first();
        QCOMPARE(result->statusCode, 200);
        QCOMPARE(result->requestUrls.size(), 2);
        QCOMPARE(result->getResponseBuffer()->size(), 300000);
    }
}

void HttpClientProxyTlsTest::survivesBeingCancelled_data()
{
    addSchemeRows();
}

void HttpClientProxyTlsTest::survivesBeingCancelled()
{
    QFETCH(bool, isDigest);
    const Trust trust(m_server.authority().certificate());
    QRandomGenerator random(9); // the same moments in each run, as far as a clock can have it
    for (int round = 0; round < 30; ++round) {
        HttpClient client(hostThrough(isDigest ? m_digest : m_basic));
        ResultReceiver receiver;
        client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
        QTest::qWait(random.bounded(40));
        client.reset();
        QVERIFY(!client.isExecutingRequest());
    }
}

void HttpClientProxyTlsTest::sendsAWrongPasswordOnce_data()
{
    QTest::addColumn<bool>("isDigest");
    QTest::addColumn<bool>("isTls");
    QTest::newRow("basic, plain") << false << false;
    QTest::newRow("basic, tunnel") << false << true;
    QTest::newRow("digest, plain") << true << false;
    QTest::newRow("digest, tunnel") << true << true;
}

void HttpClientProxyTlsTest::sendsAWrongPasswordOnce()
{
    QFETCH(bool, isDigest);
    QFETCH(bool, isTls);
    Squid squid(isDigest ? Squid::Digest : Squid::Basic);
    QVERIFY2(squid.start(), squid.output().constData());
    vx::HttpHost host = hostThrough(squid);
    host.proxy.password = "wrong";
    host.server.setAddress("127.0.0.1", isTls ? m_server.tlsPort() : m_server.port(), isTls);
    const Trust trust(m_server.authority().certificate());
    QCOMPARE(statusOf(host), 407);
    host.proxy.password = "secret";
    QCOMPARE(statusOf(host), 200);
    // squid writes in order, so that the first request is in the log when the second one is.
    QTRY_VERIFY(!squid.log().isEmpty() && squid.log().last().status < 400);
    QCOMPARE(squid.refusedLogins(), 1);
}

VX_TEST_MAIN(HttpClientProxyTlsTest)
#include "tst_HttpClientProxyTls.moc"
