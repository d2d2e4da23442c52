#include <QTemporaryDir>
#include <QtTest>

#include <numeric>
#include <sys/stat.h>
#include <vector>

#include "host/FileFormatsZip/ZipReader.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

constexpr int manyEntries = 66000;

ZipBuilder manyFiles(int count = manyEntries)
{
    ZipBuilder archive;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        archive.add(file("d" + QByteArray::number(i / 1000) + "/f" + number, number));
    }
    return archive;
}

/** Bytes of which no part is like another, five megabytes of them and no round number. */
QByteArray content()
{
    std::vector<quint32> numbers(1200001);
    std::iota(numbers.begin(), numbers.end(), 0U);
    return {reinterpret_cast<const char*>(numbers.data()),
            static_cast<int>(numbers.size() * sizeof(quint32))};
}

} // namespace

/** Archives beyond the limits of the first ZIP format, and contents of many pieces. */
class LargeArchivesTest : public QObject
{
    Q_OBJECT

private slots:
    void moreEntriesThan16Bits();
    void moreEntriesThanAnnounced();
    void asManyEntriesAs16Bits_data();
    void asManyEntriesAs16Bits();
    void fileBeyond4GiB();
    void contentOfManyPieces_data();
    void contentOfManyPieces();
    void damagedBehindManyPieces_data();
    void damagedBehindManyPieces();
    void smallArchiveInZip64();
    void zip64BehindSomethingElse();
    void offsetInZip64();
    void tooManyEntries();
};

void LargeArchivesTest::moreEntriesThan16Bits()
{
    const QTemporaryDir folder;
    manyFiles().useZip64().write(folder.filePath("a.zip"));
    vx::ZipReader reader(folder.filePath("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(reader.fileList(QRegExp()).size(), manyEntries);
    const QStringList some = reader.fileList(QRegExp("^d(0|65)/"));
    reader.extractFiles(some, folder.filePath("target"), false);
    const auto tree = treeOf(folder.filePath("target"));
    QCOMPARE(tree.size(), 2 + 2 * 1000);
    QCOMPARE(tree.value("d0/f0"), QByteArray("file 644 0"));
    QCOMPARE(tree.value("d65/f65999"), QByteArray("file 644 65999"));
}

/** Writers that know no Zip64 let the count overflow. */
void LargeArchivesTest::moreEntriesThanAnnounced()
{
    const QTemporaryDir folder;
    manyFiles().write(folder.filePath("a.zip"));
    vx::ZipReader reader(folder.filePath("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(reader.fileList(QRegExp()).size(), manyEntries);
}

void LargeArchivesTest::asManyEntriesAs16Bits_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("zip64");
    for (const int count : {65535, 65536}) {
        QTest::addRow("%d", count) << count << false;
        QTest::addRow("%d in Zip64", count) << count << true;
    }
}

/** The largest count of 16 bits stands for Zip64, and is a count all the same. */
void LargeArchivesTest::asManyEntriesAs16Bits()
{
    QFETCH(int, count);
    QFETCH(bool, zip64);
    const QTemporaryDir folder;
    ZipBuilder archive = manyFiles(count);
    (zip64 ? archive.useZip64() : archive).write(folder.filePath("a.zip"));
    vx::ZipReader reader(folder.filePath("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    const QStringList names = reader.fileList(QRegExp());
    QCOMPARE(names.size(), count);
    reader.extractFiles({names.first(), names.last()}, folder.filePath("target"), false);
    QCOMPARE(contentOf(folder.filePath("target/d0/f0")), QByteArray("0"));
    QCOMPARE(contentOf(folder.filePath("target/") + names.last()), QByteArray::number(count - 1));
}

void LargeArchivesTest::fileBeyond4GiB()
{
    const QTemporaryDir folder;
    ZipBuilder{file("before"), fileOfZeros("huge", beyond4GiB), file("after")}.useZip64().write(
        folder.filePath("a.zip"));
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")), QString());
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(folder.filePath("target/huge")).constData(), &status), 0);
    QCOMPARE(quint64(status.st_size), beyond4GiB.count);
    // Zeros take no room.
    QVERIFY(status.st_blocks * 512 < 100 * 1024 * 1024);
    QCOMPARE(contentOf(folder.filePath("target/after")), QByteArray("content"));
}

void LargeArchivesTest::contentOfManyPieces_data()
{
    QTest::addColumn<bool>("isDeflated");
    QTest::newRow("stored") << false;
    QTest::newRow("deflated") << true;
}

/** One piece is written while the next one is read: each must come out once, whole and in order. */
void LargeArchivesTest::contentOfManyPieces()
{
    QFETCH(bool, isDeflated);
    const QTemporaryDir folder;
    const ZipEntry large = file("large", content());
    ZipBuilder{file("before"), isDeflated ? deflate(large) : large, file("after")}.write(
        folder.filePath("a.zip"));
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")), QString());
    QVERIFY(contentOf(folder.filePath("target/large")) == large.content);
    QCOMPARE(contentOf(folder.filePath("target/after")), QByteArray("content"));
}

void LargeArchivesTest::damagedBehindManyPieces_data()
{
    contentOfManyPieces_data();
}

void LargeArchivesTest::damagedBehindManyPieces()
{
    QFETCH(bool, isDeflated);
    const QTemporaryDir folder;
    ZipEntry large = file("large", content());
    large = isDeflated ? deflate(large) : large;
    large.crc32 = 7;
    ZipBuilder{file("before"), large}.write(folder.filePath("a.zip"));
    const QString reason = unpackWithReader(folder.filePath("a.zip"), folder.filePath("target"));
    QVERIFY2(reason.contains("its checksum is wrong"), qPrintable(reason));
    QVERIFY(!QFileInfo::exists(folder.filePath("target")));
}

void LargeArchivesTest::smallArchiveInZip64()
{
    const QTemporaryDir folder;
    ZipBuilder{file("a"), declareZip64(file("b"), 7)}.useZip64().write(folder.filePath("a.zip"));
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")), QString());
    QCOMPARE(contentOf(folder.filePath("target/b")), QByteArray("content"));
}

/** The offsets within the archive, its locator's included, know nothing of what is in front. */
void LargeArchivesTest::zip64BehindSomethingElse()
{
    const QTemporaryDir folder;
    const QByteArray before = QByteArray("#!/bin/sh\n").repeated(1000);
    ZipBuilder{file("a"), declareZip64(file("b"), 7)}.useZip64().write(folder.filePath("a.zip"),
                                                                       before);
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")), QString());
    QCOMPARE(contentOf(folder.filePath("target/b")), QByteArray("content"));
}

/** Where the data lies may stand in the extra field, alone or behind the sizes. */
void LargeArchivesTest::offsetInZip64()
{
    const QTemporaryDir folder;
    ZipEntry alone = file("b", "2");
    alone.localOffset = 0xFFFFFFFF;
    alone.centralExtra = QByteArray("\1\0\10\0\40\0\0\0\0\0\0\0", 12); // 32
    ZipEntry behind = declareZip64(file("c", "3"), 1);
    behind.localOffset = 0xFFFFFFFF;
    behind.centralExtra = QByteArray("\1\0\20\0\1\0\0\0\0\0\0\0\100\0\0\0\0\0\0\0", 20); // 64
    ZipBuilder{file("a", "1"), alone, behind}.write(folder.filePath("a.zip"));
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")), QString());
    QCOMPARE(contentOf(folder.filePath("target/a")), QByteArray("1"));
    QCOMPARE(contentOf(folder.filePath("target/b")), QByteArray("2"));
    QCOMPARE(contentOf(folder.filePath("target/c")), QByteArray("3"));
}

void LargeArchivesTest::tooManyEntries()
{
    const QTemporaryDir folder;
    QByteArray archive = ZipBuilder({file("a")}).useZip64().bytes();
    const int count = archive.lastIndexOf("PK\6\6") + 32;
    archive.replace(count, 3, "\x41\x42\x0f", 3); // 1000001
    writeFile(folder.filePath("a.zip"), archive);
    QCOMPARE(unpackWithReader(folder.filePath("a.zip"), folder.filePath("target")),
             QString("The archive is refused: it holds more than 1000000 entries."));
}

VX_TEST_MAIN(LargeArchivesTest)
#include "tst_LargeArchives.moc"
