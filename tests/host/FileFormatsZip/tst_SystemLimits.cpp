#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/Unzipper.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

/** Lets no file of this process grow beyond a size while the object lives. */
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit = {bytes, m_previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_previous); }

private:
    rlimit m_previous = {};
};

/** Lets this process start no more threads while the object lives: their stacks would not fit. */
class NoMoreThreads
{
public:
    NoMoreThreads()
    {
        ::pthread_getattr_default_np(&m_previous);
        pthread_attr_t huge;
        ::pthread_attr_init(&huge);
        ::pthread_attr_setstacksize(&huge, size_t(1) << 47);
        ::pthread_setattr_default_np(&huge);
        ::pthread_attr_destroy(&huge);
    }

    ~NoMoreThreads()
    {
        ::pthread_setattr_default_np(&m_previous);
        ::pthread_attr_destroy(&m_previous);
    }

private:
    pthread_attr_t m_previous = {};
};

/**
 * Takes the rights of root from this process while the object lives, if it has them. What is
 * above the given folder may be closed to such a user: inside, use relative paths.
 */
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QString& folder)
        : m_previousFolder(QDir::currentPath())
    {
        QDir::setCurrent(folder);
        if (::geteuid() == 0) {
            m_isChanged = ::seteuid(65534) == 0;
        }
    }

    ~OrdinaryUser()
    {
        if (m_isChanged && ::seteuid(0) != 0) {
            qFatal("the rights of root do not come back");
        }
        QDir::setCurrent(m_previousFolder);
    }

private:
    const QString m_previousFolder;
    bool m_isChanged = false;
};

QString reasonOf(vx::ZipReader& reader, const QString& target)
{
    try {
        reader.extractFiles(reader.fileList(QRegExp()), target, false);
    } catch (const vx::IOException& exception) {
        return exception.message();
    }
    return {};
}

/** The permissions of what is there, or -1. */
int modeOf(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777U) : -1;
}

/** Whether this system lets an ordinary program mount a file system of its own. */
bool canMount()
{
    return QProcess::execute("unshare", {"-rm", "mount", "-t", "tmpfs", "none", "/mnt"}) == 0;
}

} // namespace

/** What the system refuses: each ends in a reason, and leaves nothing. */
class SystemLimitsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void fileSize_data();
    void fileSize();
    void noRightToWrite();
    void noRightToWriteInAFolder();
    void noRightToRead();
    void readOnlyFoldersAreRemovedAgain();
    void destroyedWhileFoldersAreShut();
    void noMoreThreads();
    void notEnoughSpace();
    void fullDisk_data();
    void fullDisk();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void SystemLimitsTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

void SystemLimitsTest::fileSize_data()
{
    QTest::addColumn<QByteArray>("archive");
    const auto row = [](const char* tag, const ZipBuilder& archive) {
        QTest::newRow(tag) << archive.bytes();
    };
    const QByteArray text = QByteArray("0123456789").repeated(100000);
    row("a file", {file("before"), deflate(file("a", text))});
    row("a large file", {file("before"), deflate(file("a", text.repeated(8)))});
    row("zeros", {file("before"), deflate(file("a", QByteArray(1000000, '\0')))});
    row("in folders", {folder("b/c/", 0500), deflate(file("b/c/a", text)), softLink("d", "b")});
}

/** The system's default answer is a signal that ends the process; here it must be a reason. */
void SystemLimitsTest::fileSize()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    const auto before = treeOf(m_folder->path());
    {
        const FileSizeLimit limit(100000);
        const QString reason = unpackWithReader(path("a.zip"), path("target"));
        QVERIFY2(reason.contains("larger than the system allows"), qPrintable(reason));
        QVERIFY2(reason.contains("'a'"), qPrintable(reason));
        QCOMPARE(unpackWithUnzipper(path("a.zip"), path("target")), reason);
    }
    QCOMPARE(treeOf(m_folder->path()), before);
}

void SystemLimitsTest::noRightToWrite()
{
    ZipBuilder{file("a")}.write(path("a.zip"));
    vx::ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x5555)));
    QString reason;
    {
        const OrdinaryUser user(m_folder->path());
        reason = reasonOf(reader, "target");
    }
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7700)));
    QVERIFY2(reason.startsWith("Cannot create the folder"), qPrintable(reason));
    QVERIFY2(reason.contains("Permission denied"), qPrintable(reason));
}

void SystemLimitsTest::noRightToWriteInAFolder()
{
    ZipBuilder{file("a"), file("locked/b")}.write(path("a.zip"));
    vx::ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QDir().mkpath(path("target/locked"));
    for (const QString name : {"", "target"}) {
        QVERIFY(QFile::setPermissions(path(name), QFile::Permissions(0x7777)));
    }
    QVERIFY(QFile::setPermissions(path("target/locked"), QFile::Permissions(0x5555)));
    const auto before = treeOf(m_folder->path());
    QString reason;
    {
        const OrdinaryUser user(m_folder->path());
        reason = reasonOf(reader, "target");
    }
    QVERIFY2(reason.startsWith("Cannot create the file 'b'"), qPrintable(reason));
    QVERIFY2(reason.contains("Permission denied"), qPrintable(reason));
    QCOMPARE(treeOf(m_folder->path()), before);
    QVERIFY(QFile::setPermissions(path("target/locked"), QFile::Permissions(0x7777)));
}

void SystemLimitsTest::noRightToRead()
{
    ZipBuilder{file("a")}.write(path("a.zip"));
    QVERIFY(QFile::setPermissions(path("a.zip"), QFile::Permissions()));
    QString reason;
    {
        const OrdinaryUser user(m_folder->path());
        reason = unpackWithReader("a.zip", "target");
    }
    QVERIFY2(reason.startsWith("Cannot open the archive"), qPrintable(reason));
    QVERIFY2(reason.contains("Permission denied"), qPrintable(reason));
}

/** Folders that the archive shuts are shut last, when nothing has to be removed any more. */
void SystemLimitsTest::readOnlyFoldersAreRemovedAgain()
{
    ZipBuilder{folder("a/", 0500), folder("a/b/", 0), file("a/b/c"), softLink("x", "a"), file("y")}
        .write(path("a.zip"));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    QDir().mkpath(path("target"));
    QVERIFY(QFile::setPermissions(path("target"), QFile::Permissions(0x7777)));
    // The link is made after all files, so that this is where the job fails.
    writeFile(path("target/x"), "in the way");
    const auto before = treeOf(path("target"));
    vx::ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QString reason;
    {
        const OrdinaryUser user(m_folder->path());
        reason = reasonOf(reader, "target");
    }
    QVERIFY2(reason.startsWith("Cannot create the link 'x'"), qPrintable(reason));
    QCOMPARE(treeOf(path("target")), before);
}

/** Shutting many folders takes a while, and the job must be able to remove those shut by then. */
void SystemLimitsTest::destroyedWhileFoldersAreShut()
{
    constexpr int count = 10000;
    const auto name = [](int i) { return "a/d" + QByteArray::number(i) + "/"; };
    ZipBuilder archive{folder("a/", 0500)};
    for (int i = 0; i < count; ++i) {
        archive.add(folder(name(i), i % 2 == 0 ? 0500 : 0)).add(file(name(i) + "f", ""));
    }
    archive.write(path("a.zip"));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    bool isRemoved = false;
    bool wasReady = false;
    {
        const OrdinaryUser user(m_folder->path());
        QScopedPointer<vx::Unzipper> unzipper(new vx::Unzipper("a.zip", "target", false));
        const QByteArray first = "target/" + name(count - 1);
        QElapsedTimer waiting;
        waiting.start();
        while (modeOf(first) != 0 && waiting.elapsed() < 60000) {
            QCoreApplication::processEvents();
        }
        unzipper.reset();
        isRemoved = QTest::qWaitFor([] { return !QFileInfo::exists("target"); }, 60000);
        // The folder around all others is the last.
        wasReady = modeOf("target/a") == 0500;
    }
    runTool(m_folder->path(), "chmod", {"-R", "u+rwX", "."});
    QVERIFY(isRemoved || wasReady);
}

/** The thread of the job has begun when no other is to be had any more. */
void SystemLimitsTest::noMoreThreads()
{
    const QByteArray content = QByteArray("0123456789").repeated(1000000);
    ZipBuilder archive;
    for (int i = 0; i < 3000; ++i) {
        archive.add(file("f" + QByteArray::number(i)));
    }
    archive.add(deflate(file("big", content))).write(path("a.zip"));
    vx::Unzipper unzipper(path("a.zip"), path("target"), false);
    QSignalSpy done(&unzipper, SIGNAL(unzippingDone(QString)));
    QSignalSpy failed(&unzipper, SIGNAL(unzippingFailed(QString)));
    QCoreApplication::processEvents();
    {
        const NoMoreThreads limit;
        QTRY_VERIFY_WITH_TIMEOUT(done.size() + failed.size() == 1, 60000);
    }
    QVERIFY2(failed.isEmpty(), qPrintable(failed.value(0).value(0).toString()));
    QVERIFY(contentOf(path("target/big")) == content);
}

void SystemLimitsTest::notEnoughSpace()
{
    // A hole in front makes the archive large enough for what it declares.
    QFile hole(path("a.zip"));
    QVERIFY(hole.open(QIODevice::WriteOnly) && hole.resize(Q_INT64_C(200) << 30));
    QVERIFY(hole.seek(hole.size()));
    hole.write(ZipBuilder{declareZip64(deflate(file("a")), quint64(200) << 40)}.bytes());
    hole.close();
    const QString reason = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(reason.startsWith("There is not enough space on the disk: 219.9 TB are needed"),
             qPrintable(reason));
    QVERIFY(!QFileInfo::exists(path("target")));
}

void SystemLimitsTest::fullDisk_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("reason");
    // Wherever the system allows no mount, the other tests stand for this one.
    if (canMount()) {
        QTest::newRow("too small") << "size=64k"
                                   << "There is not enough space on the disk";
        QTest::newRow("no more files") << "size=4m,nr_inodes=9"
                                       << "The disk is full";
    } else {
        QTest::newRow("no mount here") << QString() << QString();
    }
}

void SystemLimitsTest::fullDisk()
{
    QFETCH(QString, options);
    QFETCH(QString, reason);
    if (options.isEmpty()) {
        return;
    }
    ZipBuilder archive;
    for (int i = 0; i < 20; ++i) {
        archive.add(deflate(file("f" + QByteArray::number(i), QByteArray(9000, 'x'))));
    }
    archive.write(path("a.zip"));
    QDir().mkpath(path("disk"));
    const QString script = "mount -t tmpfs -o \"$1\" none \"$2/disk\" && \"$3\" unpack \"$2/a.zip\""
                           " \"$2/disk/target\"; echo; ls -A \"$2/disk\"";
    QProcess process;
    process.start("unshare",
                  {"-rm", "sh", "-c", script, "sh", options, m_folder->path(), ENDING_APPLICATION});
    QVERIFY(process.waitForFinished(60000));
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    QVERIFY2(lines.value(0).startsWith(reason.toLatin1()), lines.value(0).constData());
    QCOMPARE(lines.value(1), QByteArray());
}

VX_TEST_MAIN(SystemLimitsTest)
#include "tst_SystemLimits.moc"
