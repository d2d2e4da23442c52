#include <QtTest>

#include "host/NodeDB/NodeDB.h"
#include "tests/client/CheckTexts.h"
#include "tests/client/ClientFixture.h"
#include "tests/host/NetworkHttp/Squid.h"
#include "tests/host/NetworkHttp/TlsRedirect.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

/** Checks through a real proxy that asks for user and password. */
class ClientBehindProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void logsIn_data();
    void logsIn();
    void sendsAWrongPasswordOnce_data();
    void sendsAWrongPasswordOnce();

private:
    void checkWith(const QStringList& passwords, int refusedLogins);
    void check(ClientFixture& fixture, bool isTls, const Squid& squid, const QString& password);

    TlsRedirect m_server{308};
};

namespace {

void addRows()
{
    QTest::addColumn<bool>("isDigest");
    QTest::addColumn<bool>("isTls");
    QTest::newRow("basic, plain") << false << false;
    QTest::newRow("basic, tunnel") << false << true;
    QTest::newRow("digest, plain") << true << false;
    QTest::newRow("digest, tunnel") << true << true;
}

} // namespace

void ClientBehindProxyTest::initTestCase()
{
    QVERIFY(m_server.makeCertificates());
    QFile catalogue(m_server.folder() + "/www/catalogue.xml");
    QVERIFY(catalogue.open(QIODevice::WriteOnly));
    catalogue.write(catalogueXml(nothingNew()));
    catalogue.close();
    QVERIFY2(m_server.start(), m_server.output().constData());
}

void ClientBehindProxyTest::check(ClientFixture& fixture, bool isTls, const Squid& squid,
                                  const QString& password)
{
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, "127.0.0.1", squid.port(), "clerk", password));
    writeStored("serverURL",
                isTls ? QString("https://127.0.0.1:%1/catalogue.xml").arg(m_server.tlsPort())
                      : fixture.server.url().toString());
    fixture.log.clear();
    QVERIFY(fixture.check());
}

/** A check with each of @p passwords in turn, of which the last is the right one. */
void ClientBehindProxyTest::checkWith(const QStringList& passwords, int refusedLogins)
{
    QFETCH(bool, isDigest);
    QFETCH(bool, isTls);
    Squid squid(isDigest ? Squid::Digest : Squid::Basic);
    QVERIFY2(squid.start(), squid.output().constData());
    const Trust trust(m_server.authority().certificate());
    ClientFixture fixture;
    fixture.start();
    fixture.offer(nothingNew());
    for (const QString& password : passwords) {
        check(fixture, isTls, squid, password);
        QCOMPARE(fixture.log.contains(3, timeoutLine), password != "secret");
    }
    QVERIFY(fixture.log.contains(1, upToDateLine));
    // squid writes in order, so that the first check is in the log when the last one is.
    QTRY_VERIFY(!squid.log().isEmpty() && squid.log().last().status < 400);
    QCOMPARE(squid.refusedLogins(), refusedLogins);
}

void ClientBehindProxyTest::logsIn_data()
{
    addRows();
}

void ClientBehindProxyTest::logsIn()
{
    checkWith({"secret"}, 0);
}

void ClientBehindProxyTest::sendsAWrongPasswordOnce_data()
{
    addRows();
}

void ClientBehindProxyTest::sendsAWrongPasswordOnce()
{
    checkWith({"wrong", "secret"}, 1);
}

VX_TEST_MAIN(ClientBehindProxyTest)
#include "tst_ClientBehindProxy.moc"
