#include <QRandomGenerator>
#include <QtTest>

#include "tests/download/EngineEvents.h"
#include "tests/download/EngineProbe.h"
#include "tests/download/ProxyRoad.h"
#include "tests/download/RequestWatch.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content = QByteArray("0123456789abcdef").repeated(16384);

/** Aborts from within a slot, the first time it is told of anything. */
class Aborter : public QObject
{
    Q_OBJECT

public:
    Aborter(DownloadManager* engine, const char* signal)
        : m_engine(engine)
    {
        connect(engine, signal, SLOT(abort()));
    }

public slots:
    void abort()
    {
        if (!m_done) {
            m_done = true;
            m_engine->abortDownload();
        }
    }

private:
    DownloadManager* m_engine;
    bool m_done = false;
};

} // namespace

class DownloadAbortTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void nothingRunning();
    void allIsFreedBeforeTheSignal();
    void beforeTheRequestIsSent();
    void whileTheServerIsSilent();
    void whileBytesCome();
    void severalAtOnce();
    void queryAndReleaseNotes();
    void fromWithinASlot_data();
    void fromWithinASlot();
    void laterReceiversStillGetTheirPackage();
    void engineIsReadyAgain();
    void atAnyMoment();
    void destroyedAtAnyMoment();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    void start(EngineProbe* engine, const QString& name = QStringLiteral("a.zip")) const;

    QScopedPointer<ProxyRoad> m_road;
    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<EngineProbe> m_engine;
    QScopedPointer<EngineEvents> m_events;
    QScopedPointer<RequestWatch> m_watch;
};

void DownloadAbortTest::init()
{
    m_road.reset(new ProxyRoad);
    m_road->serve("/camera.zip", content);
    m_folder.reset(new QTemporaryDir);
    m_engine.reset(new EngineProbe(ProxyRoad::updateServer()));
    m_events.reset(new EngineEvents(m_engine.data()));
    m_watch.reset(new RequestWatch(m_engine.data()));
}

void DownloadAbortTest::cleanup()
{
    m_engine.reset();
    m_road.reset();
}

void DownloadAbortTest::start(EngineProbe* engine, const QString& name) const
{
    engine->startDownload(packageAt("http://files.example.com/camera.zip", content.size()),
                          path(name));
}

void DownloadAbortTest::nothingRunning()
{
    m_engine->abortDownload();
    m_engine->abortDownload();
    QCOMPARE(m_events->list, QStringList({"downloadAborted", "downloadAborted"}));
}

// Who is told may start over or delete the file.
void DownloadAbortTest::allIsFreedBeforeTheSignal()
{
    int told = 0;
    connect(m_engine.data(), &DownloadManager::downloadAborted, this, [&] {
        ++told;
        QVERIFY(!m_engine->isQueryBusy());
        QVERIFY(m_watch->allFreed());
    });
    m_road->serveFault("/camera.zip", content, ServedReply::Silent, 0);
    start(m_engine.data());
    QTRY_COMPARE(m_road->server.requests().size(), 1);
    m_engine->abortDownload();
    QCOMPARE(told, 1);
}

void DownloadAbortTest::beforeTheRequestIsSent()
{
    start(m_engine.data());
    m_engine->abortDownload();
    QVERIFY(m_watch->allFreed());
    QVERIFY(!m_engine->isQueryBusy());
    QTest::qWait(0);
    QCOMPARE(m_events->list, QStringList({"downloadStarted camera a.zip", "downloadAborted"}));
    QVERIFY(QFile::exists(path("a.zip")));
}

void DownloadAbortTest::whileTheServerIsSilent()
{
    m_road->serveFault("/camera.zip", content, ServedReply::Silent, 0);
    start(m_engine.data());
    QTRY_COMPARE(m_road->server.requests().size(), 1);
    m_engine->abortDownload();
    QVERIFY(m_watch->allFreed());
    QCOMPARE(m_events->list.last(), QString("downloadAborted"));
}

// What has arrived stays on disk: the engine deletes no file.
void DownloadAbortTest::whileBytesCome()
{
    m_road->serveFault("/camera.zip", content, ServedReply::Stall, 100000);
    start(m_engine.data());
    QTRY_VERIFY(!m_events->progress.isEmpty() && m_events->progress.last().first == 100000);
    m_engine->abortDownload();
    QVERIFY(m_watch->allFreed());
    QFile file(path("a.zip"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content.left(100000));
    QCOMPARE(m_events->list, QStringList({"downloadStarted camera a.zip", "downloadAborted"}));
}

void DownloadAbortTest::severalAtOnce()
{
    for (int i = 0; i < 5; ++i) {
        start(m_engine.data(), QString::number(i));
    }
    m_engine->abortDownload();
    QVERIFY(m_watch->allFreed());
    QVERIFY(!m_engine->isQueryBusy());
    QCOMPARE(m_events->count("downloadAborted"), 1);
}

void DownloadAbortTest::queryAndReleaseNotes()
{
    m_engine->queryUpdate(PackageInfo(), m_events.data(), "callback");
    m_engine->downloadReleaseNotes(QUrl("http://files.example.com/notes.html"));
    m_engine->abortDownload();
    QVERIFY(!m_engine->isQueryBusy());
    QVERIFY(m_watch->requests.first()->userData == nullptr);
    QTest::qWait(0);
    QCOMPARE(m_events->list.mid(1), QStringList("downloadAborted"));
}

void DownloadAbortTest::fromWithinASlot_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<int>("missing");
    QTest::addColumn<QStringList>("end");
    const QStringList success{"downloadSuccess camera a.zip", "downloadSuccess"};
    const QStringList failure{"downloadFailure camera a.zip", "downloadFailure 200"};
    const QString aborted("downloadAborted");
    QTest::newRow("started") << QByteArray(SIGNAL(downloadStarted(PackageInfo, QString))) << 0
                             << QStringList(aborted);
    QTest::newRow("progress") << QByteArray(SIGNAL(downloadProgress(int, int))) << 0
                              << QStringList(aborted);
    // A download that has ended is not taken back.
    QTest::newRow("success with package")
        << QByteArray(SIGNAL(downloadSuccess(PackageInfo, QString))) << 0
        << QStringList({success.first(), aborted, success.last()});
    QTest::newRow("success") << QByteArray(SIGNAL(downloadSuccess())) << 0
                             << success + QStringList(aborted);
    QTest::newRow("failure with package")
        << QByteArray(SIGNAL(downloadFailure(PackageInfo, QString))) << 1
        << QStringList({failure.first(), aborted, failure.last()});
    QTest::newRow("failure") << QByteArray(SIGNAL(downloadFailure(int))) << 1
                             << failure + QStringList(aborted);
}

void DownloadAbortTest::fromWithinASlot()
{
    QFETCH(QByteArray, signal);
    QFETCH(int, missing);
    QFETCH(QStringList, end);
    const Aborter aborter(m_engine.data(), signal.constData());
    m_engine->startDownload(packageAt("http://files.example.com/camera.zip",
                                      static_cast<quintptr>(content.size() + missing)),
                            path("a.zip"));
    QTRY_VERIFY(!m_engine->isQueryBusy());
    QTRY_COMPARE(m_events->list.mid(1), end);
    QVERIFY(m_watch->allFreed());
}

// The first of two receivers aborts; the second still reads what the signal carries.
void DownloadAbortTest::laterReceiversStillGetTheirPackage()
{
    m_engine.reset(new EngineProbe(ProxyRoad::updateServer()));
    const Aborter first(m_engine.data(), SIGNAL(downloadStarted(PackageInfo, QString)));
    const EngineEvents second(m_engine.data());
    start(m_engine.data());
    QCOMPARE(second.list, QStringList({"downloadAborted", "downloadStarted camera a.zip"}));
    QCOMPARE(second.package.url, QUrl("http://files.example.com/camera.zip"));
    QCOMPARE(second.fileName, path("a.zip"));
}

void DownloadAbortTest::engineIsReadyAgain()
{
    start(m_engine.data());
    m_engine->abortDownload();
    start(m_engine.data());
    QTRY_COMPARE(m_events->list.last(), QString("downloadSuccess"));
    QFile file(path("a.zip"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

// The numbers are the same in every run, so that a failure can be repeated.
void DownloadAbortTest::atAnyMoment()
{
    QRandomGenerator random(20240229);
    for (int round = 0; round < 150; ++round) {
        const int running = 1 + static_cast<int>(random.bounded(3u));
        for (int i = 0; i < running; ++i) {
            start(m_engine.data(), QString::number(i));
        }
        for (int turns = static_cast<int>(random.bounded(25u)); turns > 0; --turns) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        const int before = m_events->list.size();
        m_engine->abortDownload();
        QCOMPARE(m_events->list.mid(before), QStringList("downloadAborted"));
        QVERIFY(!m_engine->isQueryBusy());
        QVERIFY(m_watch->allFreed());
    }
    // Each download was aborted or had ended, and no end came twice.
    QCOMPARE(m_events->count("downloadFailure"), 0);
    QVERIFY(m_events->count("downloadSuccess") <= 2 * m_events->count("downloadStarted"));
}

void DownloadAbortTest::destroyedAtAnyMoment()
{
    QRandomGenerator random(31);
    for (int round = 0; round < 100; ++round) {
        QScopedPointer<EngineProbe> engine(new EngineProbe(ProxyRoad::updateServer()));
        const RequestWatch watch(engine.data());
        const EngineEvents events(engine.data());
        start(engine.data());
        engine->queryUpdate();
        for (int turns = static_cast<int>(random.bounded(25u)); turns > 0; --turns) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        const QStringList before = events.list;
        engine.reset();
        QCOMPARE(events.list, before);
        QVERIFY(watch.files.first().isNull());
        QVERIFY(watch.requests.first()->userData == nullptr);
        QVERIFY(watch.requests.last()->userData == nullptr);
    }
}

VX_TEST_MAIN(DownloadAbortTest)
#include "tst_DownloadAbort.moc"
