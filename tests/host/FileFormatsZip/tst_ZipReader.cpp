#include <QTemporaryDir>
#include <QtTest>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;
using vx::IOException;
using vx::ZipReader;

/** Opening, listing and choosing; what comes out is looked at in other tests. */
class ZipReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void isADevice();
    void listsAll();
    void listsWhatMatches_data();
    void listsWhatMatches();
    void listsFoldersWithSlash();
    void opensOnlyForReading_data();
    void opensOnlyForReading();
    void unopenedReaderListsNothingAndThrows();
    void brokenArchiveListsNothingAndThrows();
    void missingArchive();
    void folderAsArchive();
    void fifoAsArchive();
    void opensAgain();
    void extractsChosenNames();
    void extractsNothing();
    void unknownName();
    void refusesOnlyWhatIsChosen();
    void linkToWhatIsNotChosen();
    void exceptionIsCopyable();
    void extractsTwice();
    void createsTheTarget();
    void targetThatCannotBe_data();
    void targetThatCannotBe();
    void archiveReplacedAfterOpening();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void ZipReaderTest::init()
{
    m_folder.reset(new QTemporaryDir);
    ZipBuilder{file("b.txt", "b"), folder("a/"), file("a/c.txt", "c"), file("a/d.bin", "d")}.write(
        path("a.zip"));
}

void ZipReaderTest::isADevice()
{
    QObject parent;
    vx::ZipDevice* const device = new ZipReader(path("a.zip"), &parent);
    QCOMPARE(device->parent(), &parent);
    QCOMPARE(device->path(), path("a.zip"));
    QVERIFY(!device->wasCanceled());
}

void ZipReaderTest::listsAll()
{
    ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(reader.isOpen());
    QCOMPARE(reader.fileList(QRegExp()), QStringList({"b.txt", "a/", "a/c.txt", "a/d.bin"}));
}

void ZipReaderTest::listsWhatMatches_data()
{
    QTest::addColumn<QRegExp>("pattern");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("part of the name") << QRegExp("txt") << QStringList{"b.txt", "a/c.txt"};
    QTest::newRow("anchored") << QRegExp("^b\\.txt$") << QStringList{"b.txt"};
    QTest::newRow("wildcard") << QRegExp("*.bin", Qt::CaseSensitive, QRegExp::Wildcard)
                              << QStringList{"a/d.bin"};
    QTest::newRow("any case") << QRegExp("TXT", Qt::CaseInsensitive)
                              << QStringList{"b.txt", "a/c.txt"};
    QTest::newRow("nothing") << QRegExp("nothing") << QStringList();
    QTest::newRow("invalid") << QRegExp("(") << QStringList();
}

void ZipReaderTest::listsWhatMatches()
{
    QFETCH(QRegExp, pattern);
    QFETCH(QStringList, names);
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    QCOMPARE(reader.fileList(pattern), names);
}

/** Some writers mark a folder by its mode alone. */
void ZipReaderTest::listsFoldersWithSlash()
{
    ZipBuilder{folder("a")}.write(path("b.zip"));
    ZipReader reader(path("b.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    QCOMPARE(reader.fileList(QRegExp()), QStringList{"a/"});
}

void ZipReaderTest::opensOnlyForReading_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("not at all") << int(QIODevice::NotOpen);
    QTest::newRow("writing") << int(QIODevice::WriteOnly);
    QTest::newRow("both") << int(QIODevice::ReadWrite);
    QTest::newRow("as text") << int(QIODevice::ReadOnly | QIODevice::Text);
}

void ZipReaderTest::opensOnlyForReading()
{
    QFETCH(int, mode);
    ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(!reader.open(QIODevice::OpenMode(mode)));
    QVERIFY(!reader.isOpen());
    VX_VERIFY_THROWS(reader.extractFiles({"b.txt"}, path("target"), false), IOException);
}

void ZipReaderTest::unopenedReaderListsNothingAndThrows()
{
    ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(!reader.isOpen());
    QVERIFY(reader.fileList(QRegExp()).isEmpty());
    VX_VERIFY_THROWS(reader.extractFiles({}, path("target"), false), IOException);
    QVERIFY(!QFileInfo::exists(path("target")));
}

void ZipReaderTest::brokenArchiveListsNothingAndThrows()
{
    writeFile(path("b.zip"), "nonsense");
    ZipReader reader(path("b.zip"), nullptr);
    QVERIFY(!reader.open(QIODevice::ReadOnly));
    QVERIFY(reader.fileList(QRegExp()).isEmpty());
    QCOMPARE(unpackWithReader(path("b.zip"), path("target")),
             QString("The file is not a ZIP archive, or it is incomplete."));
}

void ZipReaderTest::missingArchive()
{
    const QString reason = unpackWithReader(path("missing.zip"), path("target"));
    QVERIFY2(reason.contains("missing.zip"), qPrintable(reason));
    QVERIFY2(reason.contains("No such file"), qPrintable(reason));
}

void ZipReaderTest::folderAsArchive()
{
    const QString reason = unpackWithReader(m_folder->path(), path("target"));
    QVERIFY2(reason.contains("is not a file"), qPrintable(reason));
}

/** Must not wait for a writer. */
void ZipReaderTest::fifoAsArchive()
{
    runTool(m_folder->path(), "mkfifo", {"fifo.zip"});
    const QString reason = unpackWithReader(path("fifo.zip"), path("target"));
    QVERIFY2(reason.contains("is not a file"), qPrintable(reason));
}

void ZipReaderTest::opensAgain()
{
    ZipReader reader(path("b.zip"), nullptr);
    QVERIFY(!reader.open(QIODevice::ReadOnly));
    ZipBuilder{file("new.txt")}.write(path("b.zip"));
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(reader.fileList(QRegExp()), QStringList{"new.txt"});
    QVERIFY(QFile::remove(path("b.zip")));
    QVERIFY(!reader.open(QIODevice::ReadOnly));
    QVERIFY(reader.fileList(QRegExp()).isEmpty());
}

void ZipReaderTest::extractsChosenNames()
{
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    reader.extractFiles({"a/d.bin", "b.txt"}, path("target"), false);
    QCOMPARE(treeOf(path("target")).keys(), QList<QByteArray>({"a", "a/d.bin", "b.txt"}));
    QCOMPARE(contentOf(path("target/a/d.bin")), QByteArray("d"));
}

void ZipReaderTest::extractsNothing()
{
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    reader.extractFiles({}, path("target"), false);
    QVERIFY(QFileInfo(path("target")).isDir());
    QVERIFY(treeOf(path("target")).isEmpty());
}

void ZipReaderTest::unknownName()
{
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    try {
        reader.extractFiles({"b.txt", "z.txt"}, path("target"), false);
        QFAIL("no exception");
    } catch (const IOException& exception) {
        QCOMPARE(exception.message(), QString("The archive does not contain 'z.txt'."));
    }
    QVERIFY(!QFileInfo::exists(path("target")));
}

void ZipReaderTest::refusesOnlyWhatIsChosen()
{
    ZipBuilder{file("../evil"), file("good")}.write(path("b.zip"));
    ZipReader reader(path("b.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(reader.fileList(QRegExp()), QStringList({"../evil", "good"}));
    reader.extractFiles({"good"}, path("target"), false);
    QCOMPARE(treeOf(path("target")).keys(), QList<QByteArray>{"good"});
    VX_VERIFY_THROWS(reader.extractFiles({"../evil"}, path("other"), false), IOException);
}

void ZipReaderTest::linkToWhatIsNotChosen()
{
    ZipBuilder{file("file"), softLink("link", "file")}.write(path("b.zip"));
    ZipReader reader(path("b.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    reader.extractFiles({"link"}, path("target"), false);
    QCOMPARE(treeOf(path("target")).value("link"), QByteArray("link file"));
}

void ZipReaderTest::exceptionIsCopyable()
{
    ZipReader reader(path("a.zip"), nullptr);
    try {
        reader.extractFiles({}, path("target"), false);
        QFAIL("no exception");
    } catch (const IOException& exception) {
        const IOException copy = exception;
        QCOMPARE(copy.message(), QString("The archive is not open."));
        QVERIFY(dynamic_cast<const vx::ExceptionQt*>(&copy) != nullptr);
    }
}

void ZipReaderTest::extractsTwice()
{
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    reader.extractFiles({"b.txt"}, path("first"), false);
    reader.extractFiles({"b.txt"}, path("second"), false);
    QCOMPARE(treeOf(path("first")), treeOf(path("second")));
    // What is there already is not overwritten.
    VX_VERIFY_THROWS(reader.extractFiles({"b.txt"}, path("first"), false), IOException);
    QCOMPARE(treeOf(path("first")), treeOf(path("second")));
}

void ZipReaderTest::createsTheTarget()
{
    QCOMPARE(unpackWithReader(path("a.zip"), path("target/")), QString());
    QVERIFY(QFileInfo(path("target/a/c.txt")).isFile());
}

void ZipReaderTest::targetThatCannotBe_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no folder above") << "missing/target"
                                     << "Cannot create the folder";
    QTest::newRow("under a file") << "a.zip/target"
                                  << "Cannot create the folder";
    QTest::newRow("a file") << "a.zip"
                            << "Cannot open the folder";
    QTest::newRow("no name") << QString() << "Cannot create the folder";
}

void ZipReaderTest::targetThatCannotBe()
{
    QFETCH(QString, target);
    QFETCH(QString, reason);
    const QString full = target.isEmpty() ? target : path(target);
    const auto before = treeOf(m_folder->path());
    const QString failure = unpackWithReader(path("a.zip"), full);
    QVERIFY2(failure.startsWith(reason), qPrintable(failure));
    QCOMPARE(unpackWithUnzipper(path("a.zip"), full), failure);
    QCOMPARE(treeOf(m_folder->path()), before);
}

/** What was listed is what is unpacked, whatever stands at the path by then. */
void ZipReaderTest::archiveReplacedAfterOpening()
{
    ZipReader reader(path("a.zip"), nullptr);
    reader.open(QIODevice::ReadOnly);
    QVERIFY(QFile::remove(path("a.zip")));
    ZipBuilder{file("b.txt", "another")}.write(path("a.zip"));
    reader.extractFiles({"b.txt"}, path("target"), false);
    QCOMPARE(contentOf(path("target/b.txt")), QByteArray("b"));
}

VX_TEST_MAIN(ZipReaderTest)
#include "tst_ZipReader.moc"
