#include <QDir>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <thread>

#include "host/FileFormatsZip/Unzipper.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;
using vx::Unzipper;

namespace {

/** Receives the reports of a job through signature strings, as its callers do. */
class Receiver : public QObject
{
    Q_OBJECT

public:
    void connectTo(Unzipper* unzipper)
    {
        connect(unzipper, SIGNAL(unzippingDone(const QString&)), this,
                SLOT(noteDone(const QString&)));
        connect(unzipper, SIGNAL(unzippingFailed(const QString&)), this,
                SLOT(noteFailed(const QString&)));
    }

    QStringList done;
    QStringList failed;
    QThread* thread = nullptr;
    QPointer<Unzipper> toDelete;

private slots:
    void noteDone(const QString& path)
    {
        done.append(path);
        finish();
    }

    void noteFailed(const QString& reason)
    {
        failed.append(reason);
        finish();
    }

private:
    void finish()
    {
        thread = QThread::currentThread();
        delete toDelete;
    }
};

} // namespace

/** The background job, as its callers see it. */
class UnzipperTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void startsInTheEventLoopOnly();
    void reportsOnce();
    void reportsTheFolderAsItWasGiven_data();
    void reportsTheFolderAsItWasGiven();
    void reportsAFailureOnce();
    void removesTheArchive();
    void failureLeavesTheArchive();
    void reasonIsForTheUser_data();
    void reasonIsForTheUser();
    void receiverMayDestroyTheJob();
    void receiverMayOpenAnEventLoop();
    void jobOfAnotherThread();
    void jobsSideBySide();
    void eventLoopGoesOn();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString target() const { return path("target"); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void UnzipperTest::init()
{
    m_folder.reset(new QTemporaryDir);
    ZipBuilder{file("a.txt", "a"), file("b/c.txt", "c")}.write(path("a.zip"));
}

void UnzipperTest::startsInTheEventLoopOnly()
{
    const int threads = QDir("/proc/self/task").entryList(QDir::Dirs).size();
    Unzipper unzipper(path("a.zip"), target(), false);
    QCOMPARE(QDir("/proc/self/task").entryList(QDir::Dirs).size(), threads);
    QVERIFY(!QFileInfo::exists(target()));
    Receiver receiver;
    receiver.connectTo(&unzipper);
    QTRY_COMPARE(receiver.done.size(), 1);
    QCOMPARE(contentOf(path("target/b/c.txt")), QByteArray("c"));
}

void UnzipperTest::reportsOnce()
{
    QPointer<Unzipper> unzipper = new Unzipper(path("a.zip"), target(), false);
    Receiver receiver;
    receiver.connectTo(unzipper);
    QTRY_COMPARE(receiver.done.size(), 1);
    unzipper->deleteLater();
    QTRY_VERIFY(!unzipper);
    QCOMPARE(receiver.done, QStringList{target()});
    QVERIFY(receiver.failed.isEmpty());
    QCOMPARE(receiver.thread, thread());
}

void UnzipperTest::reportsTheFolderAsItWasGiven_data()
{
    QTest::addColumn<QString>("below");
    QTest::newRow("plain") << "/target";
    QTest::newRow("with a slash") << "/target/";
    QTest::newRow("with a dot") << "/./target";
}

void UnzipperTest::reportsTheFolderAsItWasGiven()
{
    QFETCH(QString, below);
    Unzipper unzipper(path("a.zip"), m_folder->path() + below, false);
    Receiver receiver;
    receiver.connectTo(&unzipper);
    QTRY_COMPARE(receiver.done, QStringList{m_folder->path() + below});
}

void UnzipperTest::reportsAFailureOnce()
{
    writeFile(path("b.zip"), "nonsense");
    QPointer<Unzipper> unzipper = new Unzipper(path("b.zip"), target(), false);
    Receiver receiver;
    receiver.connectTo(unzipper);
    QTRY_COMPARE(receiver.failed.size(), 1);
    unzipper->deleteLater();
    QTRY_VERIFY(!unzipper);
    QCOMPARE(receiver.failed.size(), 1);
    QVERIFY(receiver.done.isEmpty());
}

void UnzipperTest::removesTheArchive()
{
    Unzipper unzipper(path("a.zip"), target(), false);
    QSignalSpy done(&unzipper, SIGNAL(unzippingDone(QString)));
    QVERIFY(done.wait());
    QVERIFY(QFileInfo::exists(path("a.zip")));
    QVERIFY(unzipper.removeZipFile());
    QVERIFY(!QFileInfo::exists(path("a.zip")));
    QVERIFY(!unzipper.removeZipFile());
    QCOMPARE(contentOf(path("target/a.txt")), QByteArray("a"));
}

void UnzipperTest::failureLeavesTheArchive()
{
    ZipBuilder{file("../evil")}.write(path("b.zip"));
    QVERIFY(!unpackWithUnzipper(path("b.zip"), target()).isEmpty());
    QVERIFY(QFileInfo::exists(path("b.zip")));
}

void UnzipperTest::reasonIsForTheUser_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "missing.zip"
                             << "No such file or directory";
    QTest::newRow("a folder") << "."
                              << "is not a file.";
    QTest::newRow("nothing") << ""
                             << "is not a file.";
    QTest::newRow("empty file") << "empty.zip"
                                << "The file is not a ZIP archive, or it is incomplete.";
}

void UnzipperTest::reasonIsForTheUser()
{
    QFETCH(QString, archive);
    QFETCH(QString, reason);
    writeFile(path("empty.zip"), QByteArray());
    const QString failure = unpackWithUnzipper(path(archive), target());
    QVERIFY2(failure.contains(reason), qPrintable(failure));
    QVERIFY(failure.endsWith('.'));
    QVERIFY(!QFileInfo::exists(target()));
}

void UnzipperTest::receiverMayDestroyTheJob()
{
    Receiver receiver;
    receiver.toDelete = new Unzipper(path("a.zip"), target(), false);
    receiver.connectTo(receiver.toDelete);
    QTRY_VERIFY(!receiver.toDelete);
    QCOMPARE(receiver.done, QStringList{target()});
}

/** As a message box does. */
void UnzipperTest::receiverMayOpenAnEventLoop()
{
    Unzipper unzipper(path("missing.zip"), target(), false);
    QEventLoop inner;
    int reports = 0;
    connect(&unzipper, &Unzipper::unzippingFailed, this, [&] {
        ++reports;
        QMetaObject::invokeMethod(&inner, "quit", Qt::QueuedConnection);
        inner.exec();
    });
    QTRY_COMPARE(reports, 1);
    QCoreApplication::processEvents();
    QCOMPARE(reports, 1);
}

void UnzipperTest::jobOfAnotherThread()
{
    QStringList done;
    bool isReportedThere = false;
    std::thread thread([&] {
        QEventLoop loop;
        Unzipper unzipper(path("a.zip"), target(), false);
        Receiver receiver;
        receiver.connectTo(&unzipper);
        connect(&unzipper, SIGNAL(unzippingDone(QString)), &loop, SLOT(quit()));
        connect(&unzipper, SIGNAL(unzippingFailed(QString)), &loop, SLOT(quit()));
        loop.exec();
        done = receiver.done;
        isReportedThere = receiver.thread == QThread::currentThread();
    });
    thread.join();
    QCOMPARE(done, QStringList{target()});
    QVERIFY(isReportedThere);
}

void UnzipperTest::jobsSideBySide()
{
    Receiver receiver;
    std::vector<std::unique_ptr<Unzipper>> jobs;
    for (int i = 0; i < 8; ++i) {
        jobs.push_back(std::make_unique<Unzipper>(path("a.zip"), path("target%1").arg(i), false));
        receiver.connectTo(jobs.back().get());
    }
    QTRY_COMPARE(receiver.done.size(), 8);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(contentOf(path("target%1/b/c.txt").arg(i)), QByteArray("c"));
    }
}

void UnzipperTest::eventLoopGoesOn()
{
    ZipBuilder{fileOfZeros("zeros", someSeconds)}.write(path("b.zip"));
    Unzipper unzipper(path("b.zip"), target(), false);
    Receiver receiver;
    receiver.connectTo(&unzipper);
    QTimer timer;
    QSignalSpy ticks(&timer, SIGNAL(timeout()));
    timer.start(1);
    QTRY_COMPARE_WITH_TIMEOUT(receiver.done.size(), 1, 60000);
    QVERIFY(ticks.size() > 10);
}

VX_TEST_MAIN(UnzipperTest)
#include "tst_Unzipper.moc"
