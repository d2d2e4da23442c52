#include <QtTest>

#include <atomic>
#include <thread>

#include "host/NodeDB/NodeDB.h"
#include "tests/support/TestMain.h"

using vx::NetworkProxy;
using vx::NodeDB;

namespace {

NetworkProxy proxyOf(const QString& text, unsigned short port)
{
    return NetworkProxy(true, text, port, text, text);
}

} // namespace

class NodeDBTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { NodeDB::getDB().setGlobalProxy(NetworkProxy()); }
    void isOne();
    void startsWithoutProxy();
    void keepsTheProxy();
    void keepsAProxyThatIsNotUsed();
    void givesCopies();
    void mayBeUsedFromAnyThread();
};

void NodeDBTest::isOne()
{
    QCOMPARE(&NodeDB::getDB(), &NodeDB::getDB());
}

void NodeDBTest::startsWithoutProxy()
{
    const NetworkProxy proxy = NodeDB::getDB().globalProxy();
    QVERIFY(!proxy.useProxy());
    QVERIFY(proxy.proxyAddress().isNull());
    QCOMPARE(proxy.proxyPort(), static_cast<unsigned short>(0));
    QVERIFY(proxy.proxyUser().isNull());
    QVERIFY(proxy.proxyPassword().isNull());
}

void NodeDBTest::keepsTheProxy()
{
    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, QStringLiteral("proxy.example.com"), 65535,
                                                QStringLiteral("user"), QStringLiteral("secret")));
    const NetworkProxy proxy = NodeDB::getDB().globalProxy();
    QVERIFY(proxy.useProxy());
    QCOMPARE(proxy.proxyAddress(), QStringLiteral("proxy.example.com"));
    QCOMPARE(proxy.proxyPort(), static_cast<unsigned short>(65535));
    QCOMPARE(proxy.proxyUser(), QStringLiteral("user"));
    QCOMPARE(proxy.proxyPassword(), QStringLiteral("secret"));
}

void NodeDBTest::keepsAProxyThatIsNotUsed()
{
    NodeDB::getDB().setGlobalProxy(NetworkProxy(false, QStringLiteral("proxy.example.com"), 3128,
                                                QStringLiteral("user"), QString()));
    const NetworkProxy proxy = NodeDB::getDB().globalProxy();
    QVERIFY(!proxy.useProxy());
    QCOMPARE(proxy.proxyAddress(), QStringLiteral("proxy.example.com"));
    QCOMPARE(proxy.proxyPort(), static_cast<unsigned short>(3128));
    QCOMPARE(proxy.proxyUser(), QStringLiteral("user"));
    QVERIFY(proxy.proxyPassword().isEmpty());
}

void NodeDBTest::givesCopies()
{
    NodeDB::getDB().setGlobalProxy(proxyOf(QStringLiteral("first"), 1));
    const NetworkProxy before = NodeDB::getDB().globalProxy();
    NodeDB::getDB().setGlobalProxy(proxyOf(QStringLiteral("second"), 2));
    QCOMPARE(before.proxyAddress(), QStringLiteral("first"));
    QCOMPARE(NodeDB::getDB().globalProxy().proxyAddress(), QStringLiteral("second"));
}

void NodeDBTest::mayBeUsedFromAnyThread()
{
    std::atomic<bool> done{false};
    int mixed = 0;
    NodeDB::getDB().setGlobalProxy(proxyOf(QString::number(0), 0));
    std::thread reading([&] {
        while (!done) {
            const NetworkProxy proxy = NodeDB::getDB().globalProxy();
            const QString port = QString::number(proxy.proxyPort());
            mixed += int(proxy.proxyAddress() != port || proxy.proxyPassword() != port);
        }
    });
    for (unsigned short i = 0; i < 5000; ++i) {
        NodeDB::getDB().setGlobalProxy(proxyOf(QString::number(i), i));
    }
    done = true;
    reading.join();
    QCOMPARE(mixed, 0);
}

VX_TEST_MAIN(NodeDBTest)
#include "tst_NodeDB.moc"
