#include <QtTest>

#include <atomic>
#include <thread>

#include "tests/support/TestMain.h"
#include "tests/tools/server/RawConnection.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using namespace vx::test;

namespace {

ServedReply reply(const QByteArray& body, ServedReply::Fault fault = ServedReply::NoFault)
{
    ServedReply result;
    result.body = body;
    result.fault = fault;
    return result;
}

/** Runs @p work on @p count threads at once and waits for all of them. */
void onThreads(int count, const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

class UpdateServerThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void servesOthersWhileTwentyStall();
    void callsTheHandlerOneAtATime();
    void letsEveryOperationRunAtOnce();
    void stopsUnderLoad();
};

void UpdateServerThreadsTest::servesOthersWhileTwentyStall()
{
    UpdateServer server;
    QVERIFY(server.start());
    server.setReply("/stall", reply("stalled", ServedReply::Stall));
    server.setReply("/ok", reply("ok"));
    std::vector<std::unique_ptr<RawConnection>> stalled;
    for (int i = 0; i < 20; ++i) {
        stalled.push_back(std::make_unique<RawConnection>(server.port()));
        QVERIFY(stalled.back()->get("/stall"));
    }
    QTRY_COMPARE(server.requests().size(), 20);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(fetch(QNetworkRequest(server.url("/ok"))).body, QByteArray("ok"));
    }
}

void UpdateServerThreadsTest::callsTheHandlerOneAtATime()
{
    UpdateServer server;
    QVERIFY(server.start());
    int calls = 0; // Not atomic: the server promises that it need not be.
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    server.setHandler([&](const ServedRequest&) {
        overlapped = overlapped || ++inside > 1;
        std::this_thread::yield();
        ++calls;
        --inside;
        return reply("handled");
    });
    std::atomic<int> good{0};
    onThreads(8, [&](int) {
        for (int i = 0; i < 25; ++i) {
            RawConnection client(server.port());
            client.get("/");
            client.readToEnd();
            good += client.body() == "handled" ? 1 : 0;
        }
    });
    server.stop();
    QCOMPARE(good.load(), 200);
    QCOMPARE(calls, 200);
    QVERIFY(!overlapped);
}

void UpdateServerThreadsTest::letsEveryOperationRunAtOnce()
{
    UpdateServer server;
    QVERIFY(server.start());
    const quint16 port = server.port();
    std::atomic<int> answered{0};
    onThreads(6, [&](int thread) {
        for (int i = 0; i < 40; ++i) {
            const QString path = QStringLiteral("/%1").arg(i % 4);
            if (thread == 0) {
                server.setReply(path, reply("set"));
                server.setHandler([](const ServedRequest&) { return reply("handled"); });
            } else if (thread == 1) {
                server.setProxyPassword("user", "secret");
                server.setFolder(QStringLiteral("/nowhere"));
                server.setHandler({});
            } else if (thread == 2) {
                server.url(path);
                server.requests();
                server.clearRequests();
            } else {
                RawConnection client(port);
                client.get(path.toLatin1());
                client.readToEnd();
                answered += client.status() == 200 || client.status() == 404 ? 1 : 0;
            }
        }
    });
    QCOMPARE(answered.load(), 120);
}

void UpdateServerThreadsTest::stopsUnderLoad()
{
    for (int round = 0; round < 5; ++round) {
        UpdateServer server;
        QVERIFY(server.start());
        const quint16 port = server.port();
        server.setReply("/", reply(QByteArray(200000, 'x')));
        std::atomic<bool> stopped{false};
        std::thread stopper([&] {
            while (server.requests().size() < 20) {
                std::this_thread::yield();
            }
            server.stop();
            stopped = true;
        });
        onThreads(4, [&](int) {
            while (!stopped) {
                RawConnection client(port);
                client.get("/");
                client.readToEnd();
            }
        });
        stopper.join();
        QCOMPARE(server.port(), quint16(0));
    }
}

VX_TEST_MAIN(UpdateServerThreadsTest)

#include "tst_UpdateServerThreads.moc"
