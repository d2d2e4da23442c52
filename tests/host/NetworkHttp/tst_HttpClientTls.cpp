#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/CertificateAuthority.h"
#include "tests/host/NetworkHttp/Daemon.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

/** https, which a server is asked by if its address says so, or if a redirect leads there. */
class HttpClientTlsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void asksOnlyWhomItTrusts_data();
    void asksOnlyWhomItTrusts();
    void followsARedirectToHttps_data();
    void followsARedirectToHttps();
    void speaksNoHttp2();

private:
    RequestPtr ask(const vx::HttpHost& host);

    TlsNginx m_nginx;
    QSslCertificate m_certificate;
};

namespace {

void addTrustRows()
{
    QTest::addColumn<bool>("isTrusted");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("trusted") << true << 200 << "body";
    QTest::newRow("not trusted") << false << 0 << "";
}

} // namespace

void HttpClientTlsTest::initTestCase()
{
    QVERIFY(m_nginx.makeCertificate());
    QVERIFY(m_nginx.addFile("file", 4, "body"));
    QVERIFY2(m_nginx.start(), m_nginx.output().constData());
    m_certificate = QSslCertificate::fromPath(m_nginx.certificate()).value(0);
    QVERIFY(!m_certificate.isNull());
}

RequestPtr HttpClientTlsTest::ask(const vx::HttpHost& host)
{
    HttpClient client(host);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    return QTest::qWaitFor([&] { return !receiver.results.isEmpty(); }) ? request : RequestPtr();
}

void HttpClientTlsTest::asksOnlyWhomItTrusts_data()
{
    addTrustRows();
}

void HttpClientTlsTest::asksOnlyWhomItTrusts()
{
    QFETCH(bool, isTrusted);
    const Trust trust(isTrusted ? m_certificate : QSslCertificate());
    vx::HttpHost host;
    host.server.parseAddress(QString("https://127.0.0.1:%1").arg(m_nginx.port()), 80);
    const RequestPtr request = ask(host);
    QVERIFY(request);
    QTEST(request->statusCode, "status");
    QTEST(request->getResponseText(), "text");
}

void HttpClientTlsTest::followsARedirectToHttps_data()
{
    addTrustRows();
}

void HttpClientTlsTest::followsARedirectToHttps()
{
    QFETCH(bool, isTrusted);
    const Trust trust(isTrusted ? m_certificate : QSslCertificate());
    RawServer server;
    const QByteArray target = "https://127.0.0.1:" + QByteArray::number(m_nginx.port()) + "/file";
    server.setReply(rawReply(301, "moved", {{"Location", target}}));
    const RequestPtr request = ask(server.host());
    QVERIFY(request);
    QTEST(request->statusCode, "status");
    QTEST(request->getResponseText(), "text");
    QCOMPARE(request->requestUrls.last(), QUrl::fromEncoded(target));
}

// Which one is offered differs from one Qt to the next; whoever offers both gets the second here.
void HttpClientTlsTest::speaksNoHttp2()
{
    const Trust trust(m_certificate);
    QNetworkAccessManager manager;
    QNetworkRequest both(QUrl(QString("https://127.0.0.1:%1/file?both").arg(m_nginx.port())));
    both.setAttribute(QNetworkRequest::Http2AllowedAttribute, true);
    const QScopedPointer<QNetworkReply> reply(manager.get(both));
    QTRY_VERIFY(m_nginx.accessLog().contains("\"GET /file?both HTTP/2.0\" 200"));

    vx::HttpHost host;
    host.server.parseAddress(QString("https://127.0.0.1:%1").arg(m_nginx.port()), 80);
    QVERIFY(ask(host));
    QTRY_VERIFY(m_nginx.accessLog().contains("\"GET /file HTTP/1.1\" 200"));
    QVERIFY(!m_nginx.accessLog().contains("\"GET /file HTTP/2.0\""));
}

VX_TEST_MAIN(HttpClientTlsTest)
#include "tst_HttpClientTls.moc"
