#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "host/FileFormatsZip/Unzipper.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;
using vx::Unzipper;

namespace {

int threadCount()
{
    return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

/** Many folders and files, some large enough to be written behind, and a link. */
ZipBuilder variedArchive()
{
    ZipBuilder archive{softLink("link", "d0/f0")};
    for (int i = 0; i < 300; ++i) {
        const QByteArray name = "d" + QByteArray::number(i / 20) + "/f" + QByteArray::number(i);
        archive.add(deflate(file(name, QByteArray::number(i).repeated(3000))));
    }
    for (int i = 0; i < 4; ++i) {
        archive.add(
            deflate(file("big" + QByteArray::number(i), QByteArray(6000000, char('a' + i)))));
    }
    return archive;
}

} // namespace

/** Ends that come at a bad moment: of the job, of the event loop, of the application. */
class UnzipperLifetimeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void destroyedBeforeItStarts();
    void destroyedAtAnyMoment_data();
    void destroyedAtAnyMoment();
    void destroyedWithinAFile();
    void destroyedWhileItPlans_data();
    void destroyedWhileItPlans();
    void destroyedLeavesWhatWasThere();
    void quitAtAnyMoment_data();
    void quitAtAnyMoment();
    void quitBeforeItStarts();
    void applicationEnds_data();
    void applicationEnds();

private:
    QString target() const { return m_folder->filePath("target"); }

    QTemporaryDir m_archives;
    QScopedPointer<QTemporaryDir> m_folder;
};

void UnzipperLifetimeTest::initTestCase()
{
    variedArchive().write(m_archives.filePath("varied.zip"));
    ZipBuilder{fileOfZeros("zeros", beyond4GiB)}.write(m_archives.filePath("zeros.zip"));
}

void UnzipperLifetimeTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

void UnzipperLifetimeTest::destroyedBeforeItStarts()
{
    const int threads = threadCount();
    delete new Unzipper(m_archives.filePath("varied.zip"), target(), false);
    QCoreApplication::processEvents();
    QCOMPARE(threadCount(), threads);
    QVERIFY(!QFileInfo::exists(target()));
}

void UnzipperLifetimeTest::destroyedAtAnyMoment_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 5; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

/** However far it is, no thread and no file is left, and nothing is reported. */
void UnzipperLifetimeTest::destroyedAtAnyMoment()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const int threads = threadCount();
    for (int i = 0; i < 10; ++i) {
        auto* const unzipper = new Unzipper(m_archives.filePath("varied.zip"), target(), false);
        QSignalSpy failed(unzipper, SIGNAL(unzippingFailed(QString)));
        QSignalSpy done(unzipper, SIGNAL(unzippingDone(QString)));
        QCoreApplication::processEvents();
        QElapsedTimer running;
        running.start();
        const qint64 nanoseconds =
            random.bounded(60) * Q_INT64_C(1000000) + random.bounded(1000000);
        while (running.nsecsElapsed() < nanoseconds) {
            QThread::yieldCurrentThread();
        }
        delete unzipper;
        // What takes longer is done behind the destructor's back.
        QTRY_COMPARE(threadCount(), threads);
        QVERIFY(failed.isEmpty());
        // It may have been just ready, with its report under way: then everything stays.
        if (QFileInfo::exists(target())) {
            QCOMPARE(treeOf(target()).size(), 320);
            QVERIFY(QDir(target()).removeRecursively());
        }
        QVERIFY(done.isEmpty());
    }
}

void UnzipperLifetimeTest::destroyedWithinAFile()
{
    auto* const unzipper = new Unzipper(m_archives.filePath("zeros.zip"), target(), false);
    QTRY_VERIFY(QFileInfo(target() + "/zeros").size() > 0);
    delete unzipper;
    QTRY_VERIFY(!QFileInfo::exists(target()));
}

void UnzipperLifetimeTest::destroyedWhileItPlans_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::newRow("links") << linkBomb().bytes();
    QTest::newRow("folders") << folderBomb().bytes();
}

/** Archives that take many seconds before the first file is written. */
void UnzipperLifetimeTest::destroyedWhileItPlans()
{
    QFETCH(QByteArray, archive);
    const QString path = m_folder->filePath("a.zip");
    writeFile(path, archive);
    for (int i = 0; i < 10; ++i) {
        auto* const unzipper = new Unzipper(path, target(), false);
        QSignalSpy failed(unzipper, SIGNAL(unzippingFailed(QString)));
        QTest::qWait(20 * i);
        QElapsedTimer ending;
        ending.start();
        delete unzipper;
        QVERIFY2(ending.elapsed() < 2000, qPrintable(QString::number(ending.elapsed())));
        QVERIFY(failed.isEmpty());
        QTRY_VERIFY(!QFileInfo::exists(target()));
    }
}

void UnzipperLifetimeTest::destroyedLeavesWhatWasThere()
{
    writeFile(target() + "/kept.txt", "kept");
    writeFile(target() + "/d3/kept.txt", "kept");
    const auto before = treeOf(target());
    auto* const unzipper = new Unzipper(m_archives.filePath("varied.zip"), target(), false);
    QCoreApplication::processEvents();
    // QTRY_VERIFY looks every 50 ms, by when a fast machine has unpacked all.
    QElapsedTimer running;
    running.start();
    while (!QFileInfo::exists(target() + "/d4") && !running.hasExpired(5000)) {
        QThread::yieldCurrentThread();
    }
    QVERIFY(QFileInfo::exists(target() + "/d4"));
    delete unzipper;
    QTRY_COMPARE(treeOf(target()), before);
}

void UnzipperLifetimeTest::quitAtAnyMoment_data()
{
    QTest::addColumn<int>("milliseconds");
    for (const int milliseconds : {1, 3, 8, 20, 45}) {
        QTest::addRow("after %d ms", milliseconds) << milliseconds;
    }
}

/** When exec() returns, the job has ended; its report comes if an event loop runs again. */
void UnzipperLifetimeTest::quitAtAnyMoment()
{
    QFETCH(int, milliseconds);
    Unzipper unzipper(m_archives.filePath("zeros.zip"), target(), false);
    QSignalSpy failed(&unzipper, SIGNAL(unzippingFailed(QString)));
    QSignalSpy done(&unzipper, SIGNAL(unzippingDone(QString)));
    QTimer::singleShot(milliseconds, qApp, SLOT(quit()));
    QCoreApplication::exec();
    QVERIFY(!QFileInfo::exists(target()));

    QTRY_COMPARE(failed.size(), 1);
    QCOMPARE(failed.first().first().toString(), QString("Unpacking was cancelled."));
    QVERIFY(done.isEmpty());
}

void UnzipperLifetimeTest::quitBeforeItStarts()
{
    QTimer::singleShot(0, qApp, SLOT(quit()));
    Unzipper* unzipper = nullptr;
    connect(qApp, &QCoreApplication::aboutToQuit, this,
            [&] { unzipper = new Unzipper(m_archives.filePath("zeros.zip"), target(), false); });
    QCoreApplication::exec();
    disconnect(qApp, &QCoreApplication::aboutToQuit, this, nullptr);
    QVERIFY(unzipper != nullptr);
    delete unzipper;
    QVERIFY(!QFileInfo::exists(target()));
}

void UnzipperLifetimeTest::applicationEnds_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<bool>("cleansUp");
    QTest::newRow("by quit()") << "quit" << true;
    QTest::newRow("without exec()") << "return" << true;
    QTest::newRow("behind the job") << "destroy" << true;
    // Nothing is told of it: what is unpacked stays. It must not crash.
    QTest::newRow("by exit()") << "exit" << false;
}

void UnzipperLifetimeTest::applicationEnds()
{
    QFETCH(QString, way);
    QFETCH(bool, cleansUp);
    QProcess application;
    application.setProcessChannelMode(QProcess::ForwardedChannels);
    application.start(ENDING_APPLICATION, {way, m_archives.filePath("zeros.zip"), target()});
    QVERIFY(application.waitForFinished(60000));
    QCOMPARE(application.exitStatus(), QProcess::NormalExit);
    QCOMPARE(application.exitCode(), 0);
    QCOMPARE(!QFileInfo::exists(target()), cleansUp);
}

VX_TEST_MAIN(UnzipperLifetimeTest)
#include "tst_UnzipperLifetime.moc"
