#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QtTest>

#include <memory>

#include "host/FileFormatsZip/Unzipper.h"
#include "tests/download/EngineEvents.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/BoxWatcher.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
}

QStringList temporaryFolders()
{
    return QDir(QDir::tempPath()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class UnpackingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void successIsReportedOnce();
    void connectionAfterTheCallMissesNothing();
    void logNamesArchiveAndFolder();
    void archiveMayHaveAnyName();
    void failureIsShown();
    void failureLeavesTheArchive();
    void reasonIsAppended();
    void reasonIsShownAsItStands();
    void secondCallStartsNothing_data();
    void secondCallStartsNothing();
    void folderThatCannotBeMade();
    void finishedWithoutAJob();
    void jobOutlivesItsEngine();
    void engineMayGoWithTheReport();

private:
    QString archive(const QByteArray& bytes, const QString& name = QStringLiteral("p.zip")) const;
    void start(const QString& file);

    QScopedPointer<QTemporaryDir> m_folder;
    std::unique_ptr<EngineProbe> m_engine;
    QScopedPointer<EngineEvents> m_events;
    // Jobs live until the process ends; the tests take them away at their own end.
    QList<QPointer<Unzipper>> m_jobs;
    QByteArray m_goodArchive;
};

void UnpackingTest::init()
{
    m_folder.reset(new QTemporaryDir);
    m_engine.reset(new EngineProbe);
    m_events.reset(new EngineEvents(m_engine.get()));
    m_goodArchive = ZipBuilder({file("a.txt", "one"), file("sub/b.txt", "two")}).bytes();
}

void UnpackingTest::cleanup()
{
    m_engine.reset();
    for (const QPointer<Unzipper>& job : qAsConst(m_jobs)) {
        delete job;
    }
    m_jobs.clear();
}

QString UnpackingTest::archive(const QByteArray& bytes, const QString& name) const
{
    QFile file(m_folder->filePath(name));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

void UnpackingTest::start(const QString& file)
{
    m_engine->unzipPackage(file);
    if (!m_jobs.contains(m_engine->unzipper)) {
        m_jobs.append(m_engine->unzipper);
    }
}

void UnpackingTest::successIsReportedOnce()
{
    const QString file = archive(m_goodArchive);
    start(file);
    QSignalSpy job(m_engine->unzipper, SIGNAL(unzippingDone(QString)));
    bool archiveWasThere = true;
    connect(m_engine.get(), &DownloadManager::unzippingDone, this,
            [&] { archiveWasThere = QFile::exists(file); });
    QCOMPARE(m_events->list, QStringList());
    QTRY_COMPARE(m_events->list, QStringList("unzippingDone"));
    QCOMPARE(m_events->fileName, job.value(0).value(0).toString());
    QCOMPARE(contentOf(m_events->fileName + "/a.txt"), QByteArray("one"));
    QCOMPARE(contentOf(m_events->fileName + "/sub/b.txt"), QByteArray("two"));
    QCOMPARE(QFileInfo(m_events->fileName).path(), QDir::tempPath());
    QVERIFY(!archiveWasThere);
    QVERIFY(m_engine->unzipper != nullptr);
    QTest::qWait(0); // what is queued would come now
    QCOMPARE(m_events->list.size(), 1);
}

void UnpackingTest::connectionAfterTheCallMissesNothing()
{
    start(archive(m_goodArchive));
    const EngineEvents late(m_engine.get());
    QTRY_COMPARE(late.list, QStringList("unzippingDone"));
}

void UnpackingTest::logNamesArchiveAndFolder()
{
    const LogCapture log;
    const QString file = archive(m_goodArchive);
    start(file);
    QTRY_COMPARE(m_events->list.size(), 1);
    QVERIFY(log.contains(1, "DownloadManager::installPackage() -> trying to extract " + file +
                                " to " + m_events->fileName));
    QCOMPARE(log.lines(3), QStringList());
}

void UnpackingTest::archiveMayHaveAnyName()
{
    const QString file =
        archive(m_goodArchive, QString::fromUtf8("K\xc3\xa4mera \xe6\x97\xa5 1.mpkg.zip"));
    start(file);
    QTRY_COMPARE(m_events->list.size(), 1);
    QCOMPARE(contentOf(m_events->fileName + "/a.txt"), QByteArray("one"));
    QVERIFY(!QFile::exists(file));
}

void UnpackingTest::failureIsShown()
{
    const BoxWatcher boxes;
    start(archive("this is no archive"));
    QSignalSpy job(m_engine->unzipper, SIGNAL(unzippingFailed(QString)));
    QTRY_COMPARE(boxes.seen().size(), 1);
    QTRY_COMPARE(job.size(), 1);
    const QString reason = job.value(0).value(0).toString();
    QVERIFY(!reason.isEmpty());
    const SeenBox box = boxes.seen().first();
    QCOMPARE(box.text, "Downloaded file could not be unpacked:<br>" + reason);
    QCOMPARE(box.title, QCoreApplication::applicationName());
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QStringList("OK"));
    QVERIFY(box.modal);
    QVERIFY(box.parent == nullptr);
}

void UnpackingTest::failureLeavesTheArchive()
{
    const BoxWatcher boxes;
    const QString file = archive(m_goodArchive.chopped(30));
    start(file);
    QTRY_COMPARE(boxes.seen().size(), 1);
    QVERIFY(QFile::exists(file));
    QVERIFY(m_engine->unzipper != nullptr);
    QTest::qWait(0); // what is queued would come now
    QCOMPARE(m_events->list, QStringList());
}

void UnpackingTest::reasonIsAppended()
{
    const BoxWatcher boxes;
    m_engine->unzippingFailed("because");
    QCOMPARE(boxes.seen().size(), 1);
    QCOMPARE(boxes.seen().first().text,
             QString("Downloaded file could not be unpacked:<br>because"));
}

// It names files of an archive, which may be named like markup.
void UnpackingTest::reasonIsShownAsItStands()
{
    const BoxWatcher boxes;
    const QString reason = "\"<b>bold</b> & <img src='x'> &amp;.txt\" is damaged";
    m_engine->unzippingFailed(reason);
    QCOMPARE(boxes.seen().size(), 1);
    const QString text = boxes.seen().first().text;
    QVERIFY(Qt::mightBeRichText(text));
    QCOMPARE(QTextDocumentFragment::fromHtml(text).toPlainText(),
             "Downloaded file could not be unpacked:\n" + reason);
}

void UnpackingTest::secondCallStartsNothing_data()
{
    QTest::addColumn<bool>("firstIsGood");
    QTest::newRow("after a success") << true;
    QTest::newRow("after a failure") << false;
}

// One object unpacks once in its life, however that ended.
void UnpackingTest::secondCallStartsNothing()
{
    QFETCH(bool, firstIsGood);
    const BoxWatcher boxes;
    start(archive(firstIsGood ? m_goodArchive : QByteArray("no archive")));
    QTRY_COMPARE(m_events->list.size() + boxes.seen().size(), 1);
    Unzipper* const job = m_engine->unzipper;

    const LogCapture log;
    const QStringList before = temporaryFolders();
    const QString second = archive(m_goodArchive, "second.zip");
    start(second);
    QCOMPARE(m_engine->unzipper, job);
    QCOMPARE(log.lines(1).size(), 1);
    QStringList added = temporaryFolders();
    for (const QString& folder : before) {
        added.removeOne(folder);
    }
    QCOMPARE(added.size(), 1);
    QTest::qWait(0); // what is queued would come now
    QCOMPARE(m_events->list.size() + boxes.seen().size(), 1);
    QVERIFY(QFile::exists(second));
    QVERIFY(QDir(QDir::temp().filePath(added.first())).isEmpty());
}

void UnpackingTest::folderThatCannotBeMade()
{
    const QByteArray former = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(m_folder->filePath("none/at/all")));
    const LogCapture log;
    m_engine->unzipPackage(archive(m_goodArchive));
    qputenv("TMPDIR", former);
    QVERIFY(log.contains(
        3, "DownloadManager::unzipPackage() -> Could not create folder to unzip into!"));
    QCOMPARE(log.lines(1), QStringList());
    QVERIFY(m_engine->unzipper == nullptr);
    QTest::qWait(0); // what is queued would come now
    QCOMPARE(m_events->list, QStringList());

    // Nothing was started, so that the next call may.
    start(archive(m_goodArchive));
    QTRY_COMPARE(m_events->list, QStringList("unzippingDone"));
}

void UnpackingTest::finishedWithoutAJob()
{
    m_engine->unzippingFinished("/some/where");
    QCOMPARE(m_events->list, QStringList("unzippingDone"));
    QCOMPARE(m_events->fileName, QString("/some/where"));
}

void UnpackingTest::jobOutlivesItsEngine()
{
    start(archive(m_goodArchive));
    QSignalSpy job(m_engine->unzipper, SIGNAL(unzippingDone(QString)));
    const QPointer<Unzipper> unzipper(m_engine->unzipper);
    m_engine.reset();
    QVERIFY(!unzipper.isNull());
    QTRY_COMPARE(job.size(), 1);
    QVERIFY(!unzipper.isNull());
}

void UnpackingTest::engineMayGoWithTheReport()
{
    start(archive(m_goodArchive));
    connect(m_engine.get(), SIGNAL(unzippingDone(QString)), m_engine.get(), SLOT(deleteLater()));
    QPointer<EngineProbe> engine(m_engine.release());
    QTRY_VERIFY(engine.isNull());
    QCOMPARE(m_events->list, QStringList("unzippingDone"));
}

VX_TEST_MAIN(UnpackingTest)
#include "tst_Unpacking.moc"
