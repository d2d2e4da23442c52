#include <QtTest>

#include <sys/stat.h>

#include "tests/support/TestMain.h"
#include "trust/internal/PrivateFile.h"

using namespace vx;

namespace {

constexpr auto everybody = QFile::Permissions(0x7777);
constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

QString write(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write("package") != 7) {
        qFatal("cannot write %s", qPrintable(path));
    }
    return path;
}

bool opens(const QString& path)
{
    QFile file;
    return openPrivately(file, path) && file.readAll() == "package";
}

} // namespace

// A file that somebody else could exchange is not even read.
class PrivateFileTest : public QObject
{
    Q_OBJECT

private slots:
    void inAPrivateFolder();
    void inAFolderOfOthers_data();
    void inAFolderOfOthers();
    void noPlainFile();
    void folderThatCanBeMoved();
};

void PrivateFileTest::inAPrivateFolder()
{
    const QTemporaryDir folder;
    const QString path = write(folder.filePath("package.zip"));
    QVERIFY(opens(path));
    // Nobody else gets as far as the file.
    QVERIFY(QFile::setPermissions(path, everybody));
    QVERIFY(opens(path));
}

void PrivateFileTest::inAFolderOfOthers_data()
{
    QTest::addColumn<int>("folderMode");
    QTest::addColumn<int>("fileMode");
    QTest::addColumn<bool>("isOpened");
    QTest::newRow("readable by all") << 0755 << 0644 << true;
    QTest::newRow("file writable by the group") << 0755 << 0664 << false;
    QTest::newRow("file writable by all") << 0755 << 0646 << false;
    QTest::newRow("folder writable by the group") << 0775 << 0644 << false;
    QTest::newRow("folder writable by all") << 0757 << 0644 << false;
    QTest::newRow("sticky folder") << 01777 << 0644 << false;
}

void PrivateFileTest::inAFolderOfOthers()
{
    QFETCH(int, folderMode);
    QFETCH(int, fileMode);
    const QTemporaryDir folder;
    const QString path = write(folder.filePath("package.zip"));
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode_t(fileMode)), 0);
    QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), mode_t(folderMode)), 0);
    QTEST(opens(path), "isOpened");
}

void PrivateFileTest::noPlainFile()
{
    const QTemporaryDir folder;
    write(folder.filePath("package.zip"));
    QVERIFY(QFile::link(folder.filePath("package.zip"), folder.filePath("link.zip")));
    QVERIFY(!opens(folder.filePath("link.zip")));
    QVERIFY(!opens(folder.filePath("missing.zip")));
    QVERIFY(!opens(folder.path()));
    QVERIFY(!opens("package.zip"));
    QVERIFY(!opens(QString()));
    const QByteArray pipe = QFile::encodeName(folder.filePath("pipe.zip"));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    QVERIFY(!opens(QFile::decodeName(pipe)));
    const QTemporaryDir place;
    QVERIFY(QFile::link(folder.path(), place.filePath("folder")));
    QVERIFY(!opens(place.filePath("folder/package.zip")));
}

// Whoever may rename the folder may put another one in its place; not in one like /tmp.
void PrivateFileTest::folderThatCanBeMoved()
{
    const QTemporaryDir above;
    const QByteArray path = QFile::encodeName(above.path());
    QVERIFY(QDir(above.path()).mkdir("private"));
    QVERIFY(QFile::setPermissions(above.filePath("private"), owner));
    const QString file = write(above.filePath("private/package.zip"));
    QVERIFY(opens(file));
    QCOMPARE(::chmod(path.constData(), 0777), 0);
    QVERIFY(!opens(file));
    QCOMPARE(::chmod(path.constData(), 01777), 0);
    QVERIFY(opens(file));
}

VX_TEST_MAIN(PrivateFileTest)
#include "tst_PrivateFile.moc"
