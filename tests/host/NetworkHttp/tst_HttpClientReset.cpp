#include <QEventLoop>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/RawServer.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

namespace {

/** Begins an answer and leaves it at that. */
void stall(QTcpSocket* socket, const QByteArray&)
{
    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n12345");
}

/** What a caller hangs on a request, counted while it lives. */
struct Record
{
    Record() { ++living; }
    ~Record() { --living; }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    static int living;
};

int Record::living = 0;

} // namespace

/** Cancelling and destroying, from everywhere. */
class HttpClientResetTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cancelsWhatRuns();
    void closesTheConnection();
    void leavesTheClientUsable();
    void handsBackDeviceAndRecord();
    void doesNothingWhenNothingRuns();
    void keepsTheBufferOfACancelledRequest();

    void worksFromTheResultSlot();
    void worksFromTheProgressSlot_data();
    void worksFromTheProgressSlot();
    void worksFromRequestStarted();
    void worksFromRequestReset();
    void worksFromWithinAnEventLoopOfASlot();

    void cancelsWhenDestroyed();
    void survivesDestructionIn_data();
    void survivesDestructionIn();
    void survivesDestructionRightAfterTheStart();

    void callsNobodyIfTheReceiverIsGone();
    void callsNobodyIfThereIsNone();
    void doesNotCancelARequestThatIsBeingReported();

private:
    RequestPtr startFile(const QString& name);

    std::unique_ptr<RawServer> m_server;
    std::unique_ptr<HttpClient> m_client;
    std::unique_ptr<ResultReceiver> m_receiver;
    QTemporaryDir m_folder;
};

void HttpClientResetTest::init()
{
    m_server = std::make_unique<RawServer>();
    m_server->setScript(stall);
    m_client = std::make_unique<HttpClient>(m_server->host());
    m_receiver = std::make_unique<ResultReceiver>();
}

/** Starts a download to a file, with file and record made as a caller makes them. */
RequestPtr HttpClientResetTest::startFile(const QString& name)
{
    auto* const file = new QFile(m_folder.filePath(name));
    file->open(QIODevice::WriteOnly);
    const RequestPtr request = m_client->prepareGet("/" + name, {}, m_receiver.get(),
                                                    SLOT(queryResult(RequestPtr)), file, {});
    request->userData = new Record;
    m_client->execute(request);
    return request;
}

namespace {

/** What the owner of file and record does when it hears of the end. */
void release(const RequestPtr& request)
{
    delete request->responseDevice;
    delete static_cast<Record*>(request->userData);
    request->responseDevice = nullptr;
    request->userData = nullptr;
}

} // namespace

void HttpClientResetTest::cancelsWhatRuns()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    const RequestPtr first =
        m_client->get("/1", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    const RequestPtr second =
        m_client->get("/2", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(m_server->requests().size(), 2);
    m_client->reset();
    QVERIFY(!m_client->isExecutingRequest());
    QCOMPARE(discarded.count(), 2);
    QCOMPARE(discarded.at(0).first().value<RequestPtr>().get(), first.get());
    QCOMPARE(discarded.at(1).first().value<RequestPtr>().get(), second.get());
    m_client->reset();
    QCOMPARE(discarded.count(), 2);
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::closesTheConnection()
{
    bool isClosed = false;
    m_server->setScript([&](QTcpSocket* socket, const QByteArray& request) {
        connect(socket, &QTcpSocket::disconnected, this, [&] { isClosed = true; });
        stall(socket, request);
    });
    m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(m_server->requests().size(), 1);
    m_client->reset();
    QTRY_VERIFY(isClosed);
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::leavesTheClientUsable()
{
    m_client->get("/1", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    m_client->reset();
    m_server->setReply(rawReply(200, "body"));
    const RequestPtr request =
        m_client->get("/2", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(m_receiver->results.size(), 1);
    QCOMPARE(m_receiver->results.first().get(), request.get());
    QCOMPARE(request->getResponseText(), QString("body"));
}

void HttpClientResetTest::handsBackDeviceAndRecord()
{
    bool isOpen = true;
    connect(m_client.get(), &HttpClient::requestReset, this, [&](const RequestPtr& request) {
        isOpen = request->responseDevice->isOpen();
        release(request);
    });
    const RequestPtr request = startFile("aborted");
    const QPointer<QIODevice> file(request->responseDevice);
    QCOMPARE(Record::living, 1);
    QTRY_COMPARE(request->statusCode, 200);
    m_client->reset();
    QVERIFY(!isOpen);
    QVERIFY(file.isNull());
    QCOMPARE(Record::living, 0);
    QFile written(m_folder.filePath("aborted"));
    QCOMPARE(written.size(), 5LL);
}

void HttpClientResetTest::doesNothingWhenNothingRuns()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    m_client->reset();
    m_client->prepareGet("/", {}, m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    m_client->reset();
    QCOMPARE(discarded.count(), 0);
}

void HttpClientResetTest::keepsTheBufferOfACancelledRequest()
{
    const RequestPtr request =
        m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(request->getResponseBuffer()->size(), 5LL);
    m_client->reset();
    QVERIFY(!request->getResponseBuffer()->isOpen());
    QCOMPARE(request->getResponseText(), QString("12345"));
}

void HttpClientResetTest::worksFromTheResultSlot()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    m_server->setScript([](QTcpSocket* socket, const QByteArray& request) {
        if (targetOf(request) == "/stalls") {
            stall(socket, request);
        } else {
            socket->write(rawReply(200, "body"));
        }
    });
    m_receiver->whenCalled = [this] {
        m_client->reset();
        m_client->reset();
    };
    m_client->get("/stalls", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    const RequestPtr ended =
        m_client->get("/ends", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(m_receiver->results.size(), 1);
    QCOMPARE(m_receiver->results.first().get(), ended.get());
    QCOMPARE(discarded.count(), 1);
    QVERIFY(!m_client->isExecutingRequest());
}

void HttpClientResetTest::worksFromTheProgressSlot_data()
{
    QTest::addColumn<bool>("hasEnded");
    QTest::newRow("on the way") << false;
    QTest::newRow("last report") << true;
}

void HttpClientResetTest::worksFromTheProgressSlot()
{
    QFETCH(bool, hasEnded);
    if (hasEnded) {
        m_server->setReply(rawReply(200)); // without a body there is no other report
    }
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    connect(m_client.get(), &HttpClient::downloadProgress, m_client.get(), &HttpClient::reset);
    m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_COMPARE(discarded.count(), 1);
    QVERIFY(!m_client->isExecutingRequest());
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::worksFromRequestStarted()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    connect(m_client.get(), &HttpClient::requestStarted, m_client.get(), &HttpClient::reset);
    m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QCOMPARE(discarded.count(), 1);
    QVERIFY(!m_client->isExecutingRequest());
}

void HttpClientResetTest::worksFromRequestReset()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    connect(m_client.get(), &HttpClient::requestReset, m_client.get(), &HttpClient::reset);
    for (int i = 0; i < 3; ++i) {
        m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    }
    m_client->reset();
    QCOMPARE(discarded.count(), 3);
    QVERIFY(!m_client->isExecutingRequest());
}

void HttpClientResetTest::worksFromWithinAnEventLoopOfASlot()
{
    // As a modal dialog does it that is run by a slot of the progress signal.
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    bool hasReturned = false;
    connect(m_client.get(), &HttpClient::downloadProgress, this, [&] {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            m_client->reset();
            QTimer::singleShot(0, &loop, &QEventLoop::quit);
        });
        loop.exec();
        hasReturned = true;
    });
    m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    QTRY_VERIFY(hasReturned);
    QCOMPARE(discarded.count(), 1);
    QVERIFY(!m_client->isExecutingRequest());
}

void HttpClientResetTest::cancelsWhenDestroyed()
{
    QList<RequestPtr> discarded;
    connect(m_client.get(), &HttpClient::requestReset, this, [&](const RequestPtr& request) {
        discarded.append(request);
        release(request);
    });
    const RequestPtr first = startFile("1");
    const RequestPtr second = startFile("2");
    QTRY_COMPARE(first->statusCode, 200);
    m_client.reset();
    QCOMPARE(discarded.size(), 2);
    QCOMPARE(Record::living, 0);
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::survivesDestructionIn_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<bool>("stalls");
    QTest::newRow("started") << QByteArray(SIGNAL(requestStarted(RequestPtr))) << true;
    QTest::newRow("progress") << QByteArray(SIGNAL(downloadProgress(int, int))) << true;
    QTest::newRow("last progress") << QByteArray(SIGNAL(downloadProgress(int, int))) << false;
    QTest::newRow("reset") << QByteArray(SIGNAL(requestReset(RequestPtr))) << true;
    QTest::newRow("result") << QByteArray() << false;
}

void HttpClientResetTest::survivesDestructionIn()
{
    QFETCH(QByteArray, signal);
    QFETCH(bool, stalls);
    const QPointer<HttpClient> client(m_client.get());
    m_receiver->whenCalled = [this] { m_client.reset(); };
    if (!stalls) {
        m_server->setReply(rawReply(200));
    }
    if (!signal.isEmpty()) {
        QVERIFY(connect(m_client.get(), signal.constData(), m_receiver.get(), SLOT(noteSignal())));
    }
    const RequestPtr first = m_client->prepareGet("/1", {}, m_receiver.get(),
                                                  SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    const RequestPtr second = m_client->prepareGet("/2", {}, m_receiver.get(),
                                                   SLOT(queryResult(RequestPtr)), ownBuffer(), {});
    client->execute(first);
    if (client) {
        client->execute(second);
    }
    if (client && signal.contains("Reset")) {
        client->reset();
    }
    QTRY_VERIFY(client.isNull());
    QCOMPARE(m_receiver->results.size(), signal.isEmpty() ? 1 : 0);
}

void HttpClientResetTest::survivesDestructionRightAfterTheStart()
{
    m_client->get("/", m_receiver.get(), SLOT(queryResult(RequestPtr)), ownBuffer());
    m_client.reset();
    QCoreApplication::processEvents();
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::callsNobodyIfTheReceiverIsGone()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    QTcpSocket* peer = nullptr;
    m_server->setScript([&](QTcpSocket* socket, const QByteArray& request) {
        peer = socket;
        stall(socket, request);
    });
    const RequestPtr request = startFile("orphan");
    QTRY_VERIFY(peer != nullptr);
    m_receiver.reset();
    peer->disconnectFromHost();
    QTRY_COMPARE(discarded.count(), 1);
    QVERIFY(!request->responseDevice->isOpen());
    QTRY_VERIFY(!m_client->isExecutingRequest());
    release(request);
}

void HttpClientResetTest::callsNobodyIfThereIsNone()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    m_server->setReply(rawReply(200, "body"));
    m_client->get("/", nullptr, SLOT(queryResult(RequestPtr)), ownBuffer());
    m_client->get("/", m_receiver.get(), nullptr, ownBuffer());
    QTRY_COMPARE(discarded.count(), 2);
    QTRY_VERIFY(!m_client->isExecutingRequest());
    QVERIFY(m_receiver->results.isEmpty());
}

void HttpClientResetTest::doesNotCancelARequestThatIsBeingReported()
{
    QSignalSpy discarded(m_client.get(), SIGNAL(requestReset(RequestPtr)));
    m_server->setReply(rawReply(200, "body"));
    bool isOpen = false;
    m_receiver->whenCalled = [&] {
        m_client->reset();
        isOpen = m_receiver->results.first()->responseDevice->isOpen();
    };
    const RequestPtr request = startFile("reported");
    QTRY_COMPARE(m_receiver->results.size(), 1);
    QVERIFY(isOpen);
    QCOMPARE(discarded.count(), 0);
    release(request);
}

VX_TEST_MAIN(HttpClientResetTest)
#include "tst_HttpClientReset.moc"
