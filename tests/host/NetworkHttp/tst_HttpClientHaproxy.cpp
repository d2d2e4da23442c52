#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/Daemon.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

namespace {

const char configuration[] = R"(
defaults
  mode http
  timeout connect 2s
  timeout client 10s
  timeout server 10s
frontend front
  bind 127.0.0.1:%1
  http-request early-hint Link "</style.css>; rel=preload" if { path_beg /hinted }
  http-request redirect location http://127.0.0.1:%1/file code 308 if { path /moved }
  use_backend gone if { path /gone }
  default_backend files
backend files
  http-request set-path /file
  server nginx 127.0.0.1:%3
backend gone
  server nobody 127.0.0.1:%4
)";

/** haproxy in front of a server. */
class Haproxy : public Daemon
{
public:
    explicit Haproxy(quint16 server)
        : Daemon("haproxy", {"-db", "-f", "%1"},
                 QString::fromLatin1(configuration)
                     .replace("%3", QString::number(server))
                     .replace("%4", QString::number(freePort())))
    {}
};

} // namespace

/** What a load balancer puts between a client and its server. */
class HttpClientHaproxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void answers_data();
    void answers();

private:
    Nginx m_nginx;
    QScopedPointer<Haproxy> m_haproxy;
};

void HttpClientHaproxyTest::initTestCase()
{
    QVERIFY(m_nginx.addFile("file", 300000, "body"));
    QVERIFY2(m_nginx.start(), m_nginx.output().constData());
    m_haproxy.reset(new Haproxy(m_nginx.port()));
    QVERIFY2(m_haproxy->start(), m_haproxy->output().constData());
}

void HttpClientHaproxyTest::answers_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<QString>("reason");
    QTest::newRow("file") << "/file" << 200 << true << "";
    QTest::newRow("redirect") << "/moved" << 200 << true << "";
    QTest::newRow("early hints") << "/hinted" << 103 << false
                                 << "the interim answer 103 was taken for the answer";
    QTest::newRow("no server behind it")
        << "/gone" << 503 << false << "answered with status 503; the server's own log says why";
}

void HttpClientHaproxyTest::answers()
{
    QFETCH(QString, path);
    QFETCH(int, status);
    QFETCH(bool, isWhole);
    QFETCH(QString, reason);
    const LogCapture log;
    HttpClient client(
        vx::HttpHost(vx::HttpAccess("127.0.0.1", m_haproxy->port(), "", ""), vx::HttpAccess(), ""));
    ResultReceiver receiver;
    client.get(path, &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(receiver.results.first()->statusCode, status);
    QCOMPARE(receiver.results.first()->getResponseBuffer()->size() == 300000, isWhole);
    QCOMPARE(log.lines(3).size(), reason.isEmpty() ? 0 : 1);
    QVERIFY2(log.lines(3).join('\n').contains(reason), qPrintable(log.lines(3).join('\n')));
}

VX_TEST_MAIN(HttpClientHaproxyTest)
#include "tst_HttpClientHaproxy.moc"
