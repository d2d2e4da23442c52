#include <QtTest>

#include <sys/stat.h>

#include "tests/download/EngineEvents.h"
#include "tests/download/EngineProbe.h"
#include "tests/download/ProxyRoad.h"
#include "tests/download/RequestWatch.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content = QByteArray("0123456789abcdef").repeated(4096);

// Long enough for a busy machine, and short enough to wait for.
constexpr int idleTimeout = 1500;

QStringList warnings;

void collectWarning(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
        warnings << text;
    }
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
}

/** Every path below @p folder with its size, to show that nothing there was touched. */
QStringList snapshot(const QString& folder)
{
    QStringList lines;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        walk.next();
        lines << walk.filePath() + QStringLiteral(" %1").arg(walk.fileInfo().size());
    }
    lines.sort();
    return lines;
}

} // namespace

class DownloadFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void serverFaultsEndInFailure_data();
    void serverFaultsEndInFailure();
    void lyingLengths_data();
    void lyingLengths();
    void unreachableHost();
    void urlWithoutHost_data();
    void urlWithoutHost();
    void unusableNamesEndInFailure_data();
    void unusableNamesEndInFailure();
    void plantedLinkIsNotFollowed();
    void plantedPipeDoesNotBlock();
    void largeFileInTheWayIsNoSuccess();
    void fullDisk();
    void withoutRights_data();
    void withoutRights();
    void folderVanishesMeanwhile();

private:
    QString path(const QString& name) const { return m_folder->filePath("temp/") + name; }
    void download(const QString& fileName, const QString& file = "/camera.zip");

    QScopedPointer<ProxyRoad> m_road;
    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<EngineProbe> m_engine;
    QScopedPointer<EngineEvents> m_events;
    QScopedPointer<RequestWatch> m_watch;
};

void DownloadFaultsTest::init()
{
    m_road.reset(new ProxyRoad);
    m_road->serve("/camera.zip", content);
    m_folder.reset(new QTemporaryDir);
    QVERIFY(QDir(m_folder->path()).mkpath("temp/folder"));
    m_engine.reset(new EngineProbe(ProxyRoad::updateServer()));
    m_events.reset(new EngineEvents(m_engine.data()));
    m_watch.reset(new RequestWatch(m_engine.data()));
    warnings.clear();
    qInstallMessageHandler(collectWarning);
}

void DownloadFaultsTest::cleanup()
{
    qInstallMessageHandler(nullptr);
    m_engine.reset();
    m_road.reset();
}

void DownloadFaultsTest::download(const QString& fileName, const QString& file)
{
    m_engine->startDownload(packageAt("http://files.example.com" + file, 100), fileName);
}

void DownloadFaultsTest::serverFaultsEndInFailure_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("onDisk");
    QTest::addColumn<int>("status");
    QTest::newRow("closes early") << int(ServedReply::CloseEarly) << 99 << 99 << 200;
    QTest::newRow("closes before the first byte") << int(ServedReply::CloseEarly) << 0 << 0 << 200;
    QTest::newRow("stalls") << int(ServedReply::Stall) << 99 << 99 << 200;
    QTest::newRow("is silent") << int(ServedReply::Silent) << 0 << 0 << 0;
}

void DownloadFaultsTest::serverFaultsEndInFailure()
{
    QFETCH(int, fault);
    QFETCH(int, bytes);
    QFETCH(int, status);
    m_engine->httpClient.setIdleTimeout(idleTimeout);
    m_road->serveFault("/camera.zip", content, static_cast<ServedReply::Fault>(fault), bytes);
    download(path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.at(1), QString("downloadFailure camera a.zip"));
    QCOMPARE(m_events->list.at(2), QStringLiteral("downloadFailure %1").arg(status));
    QTEST(int(contentOf(path("a.zip")).size()), "onDisk");
    QVERIFY(m_watch->allFreed());
    QVERIFY(!m_engine->isQueryBusy());
    QCOMPARE(warnings.join("|"), QString());
}

void DownloadFaultsTest::lyingLengths_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<bool>("success");
    QTest::newRow("true") << QByteArray::number(content.size()) << true;
    QTest::newRow("too large, enough came") << QByteArray("99999999") << true;
    QTest::newRow("too small") << QByteArray("50") << false;
    QTest::newRow("no number") << QByteArray("many") << true;
    QTest::newRow("negative") << QByteArray("-1") << true;
}

// Whatever the server says, what counts is the file.
void DownloadFaultsTest::lyingLengths()
{
    QFETCH(QByteArray, length);
    m_engine->httpClient.setIdleTimeout(idleTimeout);
    ServedReply reply;
    reply.body = content;
    reply.headers << qMakePair(QByteArray("Content-Length"), length);
    m_road->server.setReply("/camera.zip", reply);
    download(path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    const bool enough = contentOf(path("a.zip")).size() >= 100;
    QCOMPARE(m_events->list.at(1), enough ? QString("downloadSuccess camera a.zip")
                                          : QString("downloadFailure camera a.zip"));
    QTEST(enough, "success");
}

void DownloadFaultsTest::unreachableHost()
{
    m_road->server.stop();
    download(path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 0"));
    QCOMPARE(contentOf(path("a.zip")), QByteArray());
}

void DownloadFaultsTest::urlWithoutHost_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("empty") << QString();
    QTest::newRow("a path") << "/camera.zip";
    QTest::newRow("a file") << "file:///etc/hostname";
    QTest::newRow("nonsense") << "http://[::/x";
}

void DownloadFaultsTest::urlWithoutHost()
{
    QFETCH(QString, url);
    m_engine->startDownload(packageAt(url, 1), path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 0"));
    QCOMPARE(contentOf(path("a.zip")), QByteArray());
    QVERIFY(m_watch->allFreed());
}

void DownloadFaultsTest::unusableNamesEndInFailure_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("dot") << QString(".");
    QTest::newRow("two dots") << QString("..");
    QTest::newRow("folder") << QString("folder");
    QTest::newRow("slash at the end") << QString("folder/");
    QTest::newRow("missing folder") << QString("none/a.zip");
    QTest::newRow("line feed") << QString("a\nb.zip");
    QTest::newRow("escape") << QString("a\x1b[2J.zip");
    QTest::newRow("delete") << QString("a\x7f.zip");
    QTest::newRow("C1 control") << QString("a") + QChar(0x85) + QString(".zip");
    QTest::newRow("null") << QString("a") + QChar(QChar::Null) + QString(".zip");
    QTest::newRow("null above") << QString("folder/b") + QChar(QChar::Null) + QString("/../a.zip");
    QTest::newRow("256 letters") << QString(256, 'x');
    QTest::newRow("200 letters of two bytes") << QString(200, QChar(0xe4));
    QTest::newRow("longer than any path") << QString(5000, 'x');
}

void DownloadFaultsTest::unusableNamesEndInFailure()
{
    QFETCH(QString, name);
    const QString fileName = path(name);
    const QStringList before = snapshot(m_folder->path());
    download(fileName);
    QTRY_COMPARE(m_events->list.size(), 3);
    QVERIFY(m_events->list.at(0).startsWith("downloadStarted"));
    QVERIFY(m_events->list.at(1).startsWith("downloadFailure"));
    QCOMPARE(m_events->list.at(2), QString("downloadFailure 200"));
    QCOMPARE(m_events->fileName, fileName);
    QCOMPARE(snapshot(m_folder->path()), before);
    QVERIFY(m_watch->allFreed());
    QCOMPARE(warnings.join("|"), QString());
}

void DownloadFaultsTest::plantedLinkIsNotFollowed()
{
    const QString precious = m_folder->filePath("precious");
    writeFile(precious, QByteArray(1000, 'p'));
    QVERIFY(QFile::link(precious, path("a.zip")));
    QVERIFY(QFile::link(m_folder->filePath("absent"), path("b.zip")));
    const QStringList before = snapshot(m_folder->path());
    download(path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    // The file behind the link is large enough; it is not the download.
    QCOMPARE(m_events->list.last(), QString("downloadFailure 200"));
    download(path("b.zip"));
    QTRY_COMPARE(m_events->list.size(), 6);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 200"));
    QCOMPARE(contentOf(precious), QByteArray(1000, 'p'));
    QCOMPARE(snapshot(m_folder->path()), before);
}

void DownloadFaultsTest::plantedPipeDoesNotBlock()
{
    QCOMPARE(mkfifo(QFile::encodeName(path("a.zip")).constData(), 0600), 0);
    download(path("a.zip"));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 200"));
    QCOMPARE(warnings.join("|"), QString());
}

// A folder has a size on disk, too, and is no download.
void DownloadFaultsTest::largeFileInTheWayIsNoSuccess()
{
    for (int i = 0; i < 200; ++i) {
        writeFile(path("folder/") + QString(100, 'f') + QString::number(i), "x");
    }
    QVERIFY(QFileInfo(path("folder")).size() >= 100);
    download(path("folder"));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 200"));
}

void DownloadFaultsTest::fullDisk()
{
    download("/dev/full");
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.at(1), QString("downloadFailure camera full"));
    QCOMPARE(m_events->list.at(2), QString("downloadFailure 200"));
    QVERIFY(m_watch->allFreed());
    QVERIFY(!m_engine->isQueryBusy());
    QCOMPARE(warnings.join("|"), QString());
}

void DownloadFaultsTest::withoutRights_data()
{
    QTest::addColumn<QString>("closed");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("former");
    QTest::newRow("folder") << "folder"
                            << "folder/new.zip" << QByteArray("<no file>");
    QTest::newRow("file") << "folder/a.zip"
                          << "folder/a.zip" << QByteArray(1000, 'f');
}

// The file that cannot be written is large enough, and is not the download. For the superuser
// nothing is closed; there the download takes the file's place.
void DownloadFaultsTest::withoutRights()
{
    QFETCH(QString, closed);
    QFETCH(QString, file);
    QFETCH(QByteArray, former);
    writeFile(path("folder/a.zip"), QByteArray(1000, 'f'));
    QVERIFY(QFile::setPermissions(path(closed), QFile::ReadOwner | QFile::ExeOwner));
    const bool mayWrite = QFileInfo(path(closed)).isWritable();
    download(path(file));
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString(mayWrite ? "downloadSuccess" : "downloadFailure 200"));
    QCOMPARE(contentOf(path(file)), mayWrite ? content : former);
    QCOMPARE(warnings.join("|"), QString());
    QVERIFY(QFile::setPermissions(path("folder"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void DownloadFaultsTest::folderVanishesMeanwhile()
{
    m_road->serveFault("/camera.zip", content, ServedReply::Stall, 50);
    m_engine->httpClient.setIdleTimeout(idleTimeout);
    download(path("folder/a.zip"));
    QTRY_VERIFY(!m_events->progress.isEmpty());
    QVERIFY(QDir(path("folder")).removeRecursively());
    QTRY_COMPARE(m_events->list.size(), 3);
    QCOMPARE(m_events->list.last(), QString("downloadFailure 200"));
}

VX_TEST_MAIN(DownloadFaultsTest)
#include "tst_DownloadFaults.moc"
