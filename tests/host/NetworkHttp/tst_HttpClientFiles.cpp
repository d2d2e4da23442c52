#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <memory>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/Daemon.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/TestMain.h"

#if VX_ADDRESS_SANITIZER
// Freed memory that the sanitizer sets aside would be taken for memory of ours.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=1:thread_local_quarantine_size_kb=64";
}
#endif

using namespace vx::test;

namespace {

/** Memory of this process in bytes that is in use now. */
qint64 memoryInUse()
{
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
        }
    }
    return -1;
}

} // namespace

/** Files from a real web server to the disk. */
class HttpClientFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void downloadsAFile_data();
    void downloadsAFile();
    void isOnDiskWhenTheSlotIsCalled();
    void downloadsWithoutCompression();
    void needsNoMemoryForALargeFile();
    void holdsTheServerBackWhileTheApplicationIsBusy();
    void findsNoMissingFile();

private:
    RequestPtr download(const QString& name, QFile* file);

    Nginx m_nginx;
    std::unique_ptr<HttpClient> m_client;
    QTemporaryDir m_folder;
};

void HttpClientFilesTest::initTestCase()
{
    QVERIFY2(m_nginx.start(), m_nginx.output().constData());
    const vx::HttpAccess server("127.0.0.1", m_nginx.port(), "", "");
    m_client = std::make_unique<HttpClient>(vx::HttpHost(server, vx::HttpAccess(), ""));
}

RequestPtr HttpClientFilesTest::download(const QString& name, QFile* file)
{
    ResultReceiver receiver;
    const RequestPtr request = m_client->get(HttpClient::encodedUrlPath("/" + name), &receiver,
                                             SLOT(queryResult(RequestPtr)), file);
    // A loop of its own, since the waiting of the test library sleeps between events.
    QEventLoop loop;
    receiver.whenCalled = [&loop] { loop.quit(); };
    QTimer::singleShot(60000, &loop, [this] { m_client->reset(); });
    connect(m_client.get(), &HttpClient::requestReset, &loop, &QEventLoop::quit);
    loop.exec();
    file->close();
    return request;
}

void HttpClientFilesTest::downloadsAFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("size");
    QTest::newRow("small") << "small.zip" << 10LL;
    QTest::newRow("larger than any buffer") << "large.zip" << 5000001LL;
    QTest::newRow("name with blank") << "with blank.zip" << 1000LL;
    QTest::newRow("name with umlaut") << QString::fromUtf8("\xc3\xbc.zip") << 1000LL;
    QTest::newRow("name with percent") << "100%25.zip" << 1000LL;
}

void HttpClientFilesTest::downloadsAFile()
{
    QFETCH(QString, name);
    QFETCH(qint64, size);
    QVERIFY(m_nginx.addFile(QString(name).replace("%25", "%"), size, "mark"));
    QFile file(m_folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(download(name, &file)->statusCode, 200);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QCOMPARE(qint64(bytes.size()), size);
    QVERIFY(bytes.startsWith("mark") && bytes.endsWith("mark"));
}

void HttpClientFilesTest::isOnDiskWhenTheSlotIsCalled()
{
    QVERIFY(m_nginx.addFile("small.zip", 10, "mark"));
    QFile file(m_folder.filePath("flushed"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    qint64 sizeOnDisk = -1;
    ResultReceiver receiver;
    receiver.whenCalled = [&] { sizeOnDisk = QFileInfo(file.fileName()).size(); };
    m_client->get("/small.zip", &receiver, SLOT(queryResult(RequestPtr)), &file);
    QTRY_COMPARE(receiver.results.size(), 1);
    QCOMPARE(sizeOnDisk, 10LL);
}

void HttpClientFilesTest::downloadsWithoutCompression()
{
    QVERIFY(m_nginx.addFile("zeros.txt", 100000, "mark"));
    QFile file(m_folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const RequestPtr request = download("zeros.txt", &file);
    QVERIFY(!request->responseHeader.hasKey("Content-Encoding"));
    QCOMPARE(request->responseHeader.value("content-length"), QString("100000"));
    QCOMPARE(file.size(), 100000LL);
}

void HttpClientFilesTest::needsNoMemoryForALargeFile()
{
    constexpr qint64 size = 200 << 20;
    QVERIFY(m_nginx.addFile("warm-up", 1 << 20, "mark"));
    QVERIFY(m_nginx.addFile("huge", size, "mark"));
    QFile file(m_folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    download("warm-up", &file);
    const qint64 idle = memoryInUse();
    QVERIFY(idle > 0);
    qint64 most = 0;
    connect(m_client.get(), &HttpClient::downloadProgress, &file,
            [&most] { most = qMax(most, memoryInUse()); });
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(download("huge", &file)->statusCode, 200);
    QCOMPARE(file.size(), size);
    QVERIFY(most > 0);
    QVERIFY2(most - idle < 16 << 20, qPrintable(QString("%1 bytes more").arg(most - idle)));
}

void HttpClientFilesTest::holdsTheServerBackWhileTheApplicationIsBusy()
{
    QVERIFY(m_nginx.addFile("huge", 200 << 20, "mark"));
    QFile file(m_folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    qint64 most = -1;
    connect(m_client.get(), &HttpClient::downloadProgress, &file, [&most] {
        if (most >= 0) {
            return;
        }
        // Loopback brings the whole file in this time, were it let in.
        const qint64 before = memoryInUse();
        for (QDeadlineTimer busy(500); !busy.hasExpired(); QThread::msleep(10)) {
            most = qMax(most, memoryInUse() - before);
        }
    });
    QCOMPARE(download("huge", &file)->statusCode, 200);
    QVERIFY(most >= 0);
    QVERIFY2(most < 16 << 20, qPrintable(QString("%1 bytes more").arg(most)));
}

void HttpClientFilesTest::findsNoMissingFile()
{
    QFile file(m_folder.filePath("missing"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const RequestPtr request = download("missing", &file);
    QCOMPARE(request->statusCode, 404);
    QVERIFY2(file.size() > 0, "the error page is an answer like any other");
}

VX_TEST_MAIN(HttpClientFilesTest)
#include "tst_HttpClientFiles.moc"
