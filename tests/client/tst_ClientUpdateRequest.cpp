#include <QLineEdit>
#include <QNetworkProxyFactory>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/client/ClientFixture.h"
#include "tests/host/NetworkHttp/CertificateAuthority.h"
#include "tests/host/NetworkHttp/Daemon.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QString performed = QStringLiteral("SoftwareUpdateClient::performUpdateCheck() -> ");
const QString upToDate =
    QStringLiteral("SoftwareUpdateClient::productUpToDate() -> product is up to date!");

/** A catalogue with something in it that concerns nobody here. */
QList<PackageFields> nothingNew()
{
    PackageFields fields = applicationPackage();
    fields[QStringLiteral("release")] = QStringLiteral("0.1");
    return {fields};
}

} // namespace

class ClientUpdateRequestTest : public QObject
{
    Q_OBJECT

private slots:
    void asksForTheAddressAsItStands_data();
    void asksForTheAddressAsItStands();
    void sendsAContentTypeAndNoBody();
    void speaksNoHttp2();
    void addressOfTheDialogCounts();
    void dialogChecksEvenWhenCheckingIsOff();
    void emptyAddressEndsInAnError();
    void noProxyByDefault();
    void proxyOfTheNodeDatabase();
    void proxyWithPassword();
    void proxyIsAskedForEveryRequest();
    void proxyIsAskedForOverlappingRequests();
    void systemProxyIsNotUsed();
    void proxyObjects();
    void addressStandsInTheLogAsItIs();
    void oneTimerServesAllChecks();
    void timeIsStoredBeforeTheOutcome();
    void secondCheckDuringTheFirst();
    void bothRepliesAtOnce();
    void statusToRequire();
};

void ClientUpdateRequestTest::asksForTheAddressAsItStands_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("root") << "/" << QByteArray("/");
    QTest::newRow("path") << "/some/catalogue.xml" << QByteArray("/some/catalogue.xml");
    QTest::newRow("query") << "/list?product=x&y=1" << QByteArray("/list?product=x&y=1");
    QTest::newRow("blank") << "/a list.xml" << QByteArray("/a%20list.xml");
    QTest::newRow("no path at all") << "" << QByteArray("/");
}

void ClientUpdateRequestTest::asksForTheAddressAsItStands()
{
    QFETCH(QString, path);
    ClientFixture fixture;
    fixture.start();
    const QString address = QStringLiteral("http://127.0.0.1:%1%2").arg(fixture.server.port());
    writeStored("serverURL", address.arg(path));
    fixture.client().checkForUpdate();
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    QCOMPARE(fixture.server.requests().first().method, QByteArray("GET"));
    QTEST(fixture.server.requests().first().target, "target");
}

void ClientUpdateRequestTest::sendsAContentTypeAndNoBody()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.check());
    const auto headers = fixture.server.requests().first().headers;
    QCOMPARE(headers.value("content-type"), QByteArray("text/xml"));
    QVERIFY(!headers.contains("content-length"));
    QVERIFY(fixture.log.contains(1, performed + fixture.server.url().toString()));
}

void ClientUpdateRequestTest::speaksNoHttp2()
{
    TlsNginx nginx;
    QVERIFY(nginx.makeCertificate());
    QVERIFY2(nginx.start(), nginx.output().constData());
    const Trust trust(QSslCertificate::fromPath(nginx.certificate()).value(0));
    ClientFixture fixture;
    fixture.start();
    writeStored("serverURL", QStringLiteral("https://127.0.0.1:%1/list").arg(nginx.port()));
    fixture.client().checkForUpdate();
    QTRY_VERIFY2(nginx.accessLog().contains("\"GET /list HTTP/1.1\""),
                 nginx.accessLog().constData());
}

void ClientUpdateRequestTest::addressOfTheDialogCounts()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("serverURL", fixture.server.url("/saved").toString());
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    auto* address = dialog->findChild<QLineEdit*>("updateServerLineEdit");
    address->setText(fixture.server.url("/typed").toString());
    QTest::mouseClick(dialog->findChild<QPushButton*>("updatePushButton"), Qt::LeftButton);
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    QCOMPARE(fixture.server.requests().first().path, QStringLiteral("/typed"));
    QCOMPARE(client.record().serverURL, fixture.server.url("/saved").toString());
}

void ClientUpdateRequestTest::dialogChecksEvenWhenCheckingIsOff()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("doUpdateCheck", false);
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QTest::mouseClick(dialog->findChild<QPushButton*>("updatePushButton"), Qt::LeftButton);
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    QVERIFY(!client.record().lastCheck.isNull());
    QCOMPARE(client.record().doUpdateCheck, false);
}

void ClientUpdateRequestTest::emptyAddressEndsInAnError()
{
    ClientFixture fixture;
    writeStored("serverURL", "");
    fixture.start();
    QVERIFY(fixture.check());
    QCOMPARE(fixture.log.lines(3).size(), 2); // the reason and the time-out
    QVERIFY(fixture.server.requests().isEmpty());
}

void ClientUpdateRequestTest::noProxyByDefault()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.check());
    QCOMPARE(fixture.server.requests().first().target, QByteArray("/"));
}

void ClientUpdateRequestTest::proxyOfTheNodeDatabase()
{
    ClientFixture fixture;
    fixture.startBehindProxy();
    QVERIFY(fixture.check());
    QCOMPARE(fixture.server.requests().size(), 1);
    QCOMPARE(fixture.server.requests().first().target, QByteArray("http://update.example.com/"));
    QCOMPARE(fixture.server.requests().first().host, QByteArray("update.example.com"));
}

void ClientUpdateRequestTest::proxyWithPassword()
{
    ClientFixture fixture;
    fixture.startBehindProxy();
    fixture.offer(nothingNew());
    fixture.server.setProxyPassword("user", "secret");
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, "127.0.0.1", fixture.server.port(), "user", "secret"));
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(1, upToDate));

    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, "127.0.0.1", fixture.server.port(), "user", "wrong"));
    fixture.log.clear();
    QVERIFY(fixture.check());
    QVERIFY(!fixture.log.contains(1, upToDate));
    QCOMPARE(fixture.log.lines(3).size(), 2); // the reason and the time-out
}

void ClientUpdateRequestTest::proxyIsAskedForEveryRequest()
{
    ClientFixture fixture;
    fixture.startBehindProxy();
    QVERIFY(fixture.check());
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    writeStored("serverURL", fixture.server.url().toString());
    QVERIFY(fixture.check());
    QCOMPARE(fixture.server.requests().size(), 2);
    QCOMPARE(fixture.server.requests().last().target, QByteArray("/"));
}

// Both go out by the same manager, which must not keep the proxy of the first.
void ClientUpdateRequestTest::proxyIsAskedForOverlappingRequests()
{
    ClientFixture fixture;
    TestClient& client = fixture.startBehindProxy();
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    fixture.server.setReply("/", silent);
    client.checkForUpdate();
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    writeStored("serverURL", fixture.server.url().toString());
    client.checkForUpdate();
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    QCOMPARE(fixture.server.requests().first().target, QByteArray("http://update.example.com/"));
    QCOMPARE(fixture.server.requests().last().target, QByteArray("/"));
}

void ClientUpdateRequestTest::systemProxyIsNotUsed()
{
    ClientFixture fixture;
    fixture.start();
    qputenv("http_proxy", "http://127.0.0.1:1/");
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    const bool ended = fixture.check();
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    qunsetenv("http_proxy");
    QVERIFY(ended);
    QCOMPARE(fixture.server.requests().size(), 1);
}

void ClientUpdateRequestTest::proxyObjects()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QNetworkProxy none = client.networkProxy();
    QCOMPARE(none.type(), QNetworkProxy::NoProxy);
    QVERIFY(none.hostName().isNull());
    QCOMPARE(none.port(), quint16(0));
    QVERIFY(none.user().isNull());
    QVERIFY(none.password().isNull());

    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, "proxy.example.com", 3128, "user", "secret"));
    const QNetworkProxy proxy = client.networkProxy();
    QCOMPARE(proxy.type(), QNetworkProxy::HttpProxy);
    QCOMPARE(proxy.hostName(), QStringLiteral("proxy.example.com"));
    QCOMPARE(proxy.port(), quint16(3128));
    QCOMPARE(proxy.user(), QStringLiteral("user"));
    QCOMPARE(proxy.password(), QStringLiteral("secret"));

    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(false, "proxy.example.com", 3128, "user", "secret"));
    QCOMPARE(client.networkProxy(), none);
}

void ClientUpdateRequestTest::addressStandsInTheLogAsItIs()
{
    ClientFixture fixture;
    fixture.start();
    QUrl address = fixture.server.url();
    address.setUserInfo("user:secret");
    writeStored("serverURL", address.toString());
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(1, "SoftwareUpdateClient::performUpdateCheck() -> " +
                                        address.toString()));
}

void ClientUpdateRequestTest::oneTimerServesAllChecks()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QVERIFY(!client.requestTimer());
    QVERIFY(fixture.check());
    const QTimer* timer = client.requestTimer();
    QVERIFY(timer);
    QVERIFY(!timer->isActive());
    client.checkForUpdate();
    QCOMPARE(client.requestTimer(), timer);
    QVERIFY(timer->isActive());
    QVERIFY(timer->isSingleShot());
    QCOMPARE(timer->interval(), 15000);
    QCOMPARE(timer->timerType(), Qt::PreciseTimer);
    QCOMPARE(client.hourlyTimer()->timerType(), Qt::CoarseTimer);
    QCOMPARE(client.findChildren<QTimer*>().size(), 2);
}

void ClientUpdateRequestTest::timeIsStoredBeforeTheOutcome()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QDateTime before = QDateTime::currentDateTime();
    client.checkForUpdate();
    const QDateTime after = QDateTime::currentDateTime();
    const QDateTime lastCheck = stored("lastCheck").toDateTime();
    QVERIFY(before <= lastCheck && lastCheck <= after);
    QVERIFY(client.requestTimer()->isActive());
}

void ClientUpdateRequestTest::secondCheckDuringTheFirst()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply slow;
    slow.body = catalogueXml(nothingNew());
    slow.delayMs = 100;
    fixture.server.setReply("/", slow);

    client.checkForUpdate();
    client.requestTimer()->start(5000);
    client.checkForUpdate();
    QVERIFY(client.requestTimer()->remainingTime() > 10000);
    QTRY_COMPARE(fixture.log.count(1, upToDate), 1);
    QVERIFY(!client.requestTimer()->isActive());
    QCOMPARE(fixture.server.requests().size(), 2);

    // The reply that is left over must neither be judged nor end a check that begins later.
    client.checkForUpdate();
    QTRY_COMPARE(fixture.log.count(1, upToDate), 2);
    QCOMPARE(fixture.server.requests().size(), 3);
    QVERIFY(!client.requestTimer()->isActive());
}

void ClientUpdateRequestTest::bothRepliesAtOnce()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply slow;
    slow.body = catalogueXml(nothingNew());
    slow.delayMs = 50;
    fixture.server.setReply("/", slow);
    client.checkForUpdate();
    client.checkForUpdate();
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    // A busy application finds both replies in its event queue.
    QThread::msleep(500);
    QTRY_COMPARE(fixture.log.count(1, upToDate), 1);
    QCoreApplication::processEvents();
    deleteDeferred();
    QCOMPARE(fixture.log.count(1, upToDate), 1);
}

void ClientUpdateRequestTest::statusToRequire()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QCOMPARE(client.transformReleaseStatus(true), QString());
    QCOMPARE(client.transformReleaseStatus(false), QStringLiteral("STABLE"));
}

VX_TEST_MAIN(ClientUpdateRequestTest)
#include "tst_ClientUpdateRequest.moc"
