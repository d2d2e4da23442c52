#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <thread>

#include <sys/resource.h>

#include "host/IO/FileUtils.h"
#include "tests/support/FileRights.h"
#include "tests/support/TestMain.h"

using vx::FileUtils;

namespace {

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.append(char(i));
    }
    return bytes + "\r\n\n\r";
}

/** Writes as somebody whom the permissions of files bind, which they do not with root. */
bool writeWithFileRights(const QByteArray& bytes, const QString& path)
{
    bool isBound = false;
    bool isWritten = false;
    std::thread writer([&] {
        isBound = vx::test::submitToFileRights();
        isWritten = isBound && FileUtils::writeBytes(bytes, path);
    });
    writer.join();
    if (!isBound) {
        qFatal("The rights of root cannot be given up.");
    }
    return isWritten;
}

/** While it lives, no file can grow beyond a few bytes, as on a full disk. */
class SmallDisk
{
public:
    SmallDisk()
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_handlerBefore = signal(SIGXFSZ, SIG_IGN);
        const rlimit small{1000, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        signal(SIGXFSZ, m_handlerBefore);
    }
    Q_DISABLE_COPY(SmallDisk)

private:
    rlimit m_before{};
    void (*m_handlerBefore)(int) = nullptr;
};

} // namespace

class FileUtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void createsATemporaryFolder();
    void createsAFolderOfItsOwnEachTime();
    void createsNothingWhereItCannot();
    void nativePath_data();
    void nativePath();
    void readsWhatWasWritten_data();
    void readsWhatWasWritten();
    void readsNothingFromWhatIsNoFile();
    void replacesTheContent();
    void keepsTheContentOnFailure();
    void leavesNoOtherFiles();
    void writesThroughALink();
    void writesWhereOnlyTheFileMayBeWritten();
    void failsToWriteWhereItCannot();
};

void FileUtilsTest::createsATemporaryFolder()
{
    const QString path = FileUtils::createTempDir();
    const QFileInfo folder(path);
    QVERIFY(folder.isDir());
    QVERIFY(folder.isAbsolute());
    QVERIFY(!path.endsWith(QLatin1Char('/')));
    QCOMPARE(folder.path(), QDir::tempPath());
    QCOMPARE(folder.fileName().left(15), QStringLiteral("SoftwareUpdate-"));
    QVERIFY(QDir(path).isEmpty());
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                      QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(folder.permissions() & others));
    QVERIFY(FileUtils::writeBytes("x", path + QStringLiteral("/file")));
    QVERIFY(FileUtils::erase(path));
}

void FileUtilsTest::createsAFolderOfItsOwnEachTime()
{
    QStringList paths;
    for (int i = 0; i < 20; ++i) {
        paths.append(FileUtils::createTempDir());
        QVERIFY(QFileInfo(paths.last()).isDir());
    }
    QCOMPARE(paths.removeDuplicates(), 0);
    for (const QString& path : qAsConst(paths)) {
        QVERIFY(FileUtils::erase(path));
    }
}

void FileUtilsTest::createsNothingWhereItCannot()
{
    const QByteArray before = qgetenv("TMPDIR");
    QVERIFY(FileUtils::writeBytes("x", QFile::decodeName(before + "/noFolder")));
    qputenv("TMPDIR", before + "/noFolder");
    const QString first = FileUtils::createTempDir();
    const QString second = FileUtils::createTempDir();
    qputenv("TMPDIR", before);
    QVERIFY(QFileInfo(first).isAbsolute());
    QVERIFY(!QFileInfo::exists(first));
    QVERIFY(!first.endsWith(QLatin1Char('/')));
    QVERIFY(first != second);
    QVERIFY(!QDir().mkdir(first));
}

void FileUtilsTest::nativePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("absolute") << "/a/b c/d.zip";
    QTest::newRow("relative") << "../a//b/";
    QTest::newRow("empty") << "";
}

void FileUtilsTest::nativePath()
{
    QFETCH(QString, path);
    QCOMPARE(FileUtils::nativePath(path), QDir::toNativeSeparators(path));
    QCOMPARE(QDir::fromNativeSeparators(FileUtils::nativePath(path)), path);
}

void FileUtilsTest::readsWhatWasWritten_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("<softwareList/>\n");
    QTest::newRow("all bytes") << allBytes();
    QTest::newRow("large") << allBytes().repeated(10000);
}

void FileUtilsTest::readsWhatWasWritten()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QString::fromUtf8("catalogue \xc3\xa4.xml"));
    QVERIFY(FileUtils::writeBytes(bytes, path));
    QCOMPARE(FileUtils::readBytes(path), bytes);
    QCOMPARE(QFileInfo(path).size(), qint64(bytes.size()));
}

void FileUtilsTest::readsNothingFromWhatIsNoFile()
{
    const QTemporaryDir folder;
    QVERIFY(FileUtils::readBytes(folder.filePath(QStringLiteral("missing"))).isEmpty());
    QVERIFY(FileUtils::readBytes(folder.path()).isEmpty());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No file name")));
    QVERIFY(FileUtils::readBytes(QString()).isEmpty());
}

void FileUtilsTest::replacesTheContent()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    QVERIFY(FileUtils::writeBytes("a long content", path));
    QVERIFY(FileUtils::writeBytes("short", path));
    QCOMPARE(FileUtils::readBytes(path), QByteArray("short"));
    QVERIFY(FileUtils::writeBytes(QByteArray(), path));
    QVERIFY(QFileInfo::exists(path));
    QCOMPARE(FileUtils::readBytes(path), QByteArray());
}

void FileUtilsTest::keepsTheContentOnFailure()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    QVERIFY(FileUtils::writeBytes("before", path));
    bool written = true;
    {
        const SmallDisk smallDisk;
        written = FileUtils::writeBytes(QByteArray(1000000, 'x'), path);
    }
    QVERIFY(!written);
    QCOMPARE(FileUtils::readBytes(path), QByteArray("before"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("file")});
}

void FileUtilsTest::leavesNoOtherFiles()
{
    const QTemporaryDir folder;
    QVERIFY(FileUtils::writeBytes("x", folder.filePath(QStringLiteral("file"))));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("file")});
}

void FileUtilsTest::writesThroughALink()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    const QString link = folder.filePath(QStringLiteral("link"));
    QVERIFY(FileUtils::writeBytes("before", file));
    QVERIFY(QFile::link(file, link));
    QVERIFY(FileUtils::writeBytes("after", link));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(FileUtils::readBytes(file), QByteArray("after"));
}

void FileUtilsTest::writesWhereOnlyTheFileMayBeWritten()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    QVERIFY(FileUtils::writeBytes("a long content", file));
    QVERIFY(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(writeWithFileRights("short", file));
    QCOMPARE(FileUtils::readBytes(file), QByteArray("short"));
    QVERIFY(!writeWithFileRights("x", folder.filePath(QStringLiteral("other"))));

    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner));
    QVERIFY(!writeWithFileRights("x", file));
    QCOMPARE(FileUtils::readBytes(file), QByteArray("short"));
    QVERIFY(QFile::setPermissions(folder.path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void FileUtilsTest::failsToWriteWhereItCannot()
{
    const QTemporaryDir folder;
    QVERIFY(!FileUtils::writeBytes("x", folder.filePath(QStringLiteral("missing/file"))));
    QVERIFY(!FileUtils::writeBytes("x", folder.path()));
    QVERIFY(!QFileInfo::exists(folder.filePath(QStringLiteral("missing"))));
}

VX_TEST_MAIN(FileUtilsTest)
#include "tst_FileUtils.moc"
