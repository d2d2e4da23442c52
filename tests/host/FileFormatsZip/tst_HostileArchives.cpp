#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

ZipEntry encrypted(ZipEntry entry)
{
    entry.flags |= ZipEntry::encryptedFlag;
    return entry;
}

ZipEntry ofMethod(ZipEntry entry, quint16 method)
{
    entry.method = method;
    return entry;
}

ZipEntry madeOnDos(ZipEntry entry)
{
    entry.madeBy = ZipEntry::dos;
    return entry;
}

ZipEntry named(ZipEntry entry, const QByteArray& localName)
{
    entry.localName = localName;
    return entry;
}

ZipEntry ofMode(ZipEntry entry, unsigned mode)
{
    entry.mode = mode;
    return entry;
}

ZipEntry declaring(ZipEntry entry, quint32 size)
{
    entry.unpackedSize = size;
    return entry;
}

ZipEntry withChecksum(ZipEntry entry, quint32 crc32)
{
    entry.crc32 = crc32;
    return entry;
}

ZipEntry at(ZipEntry entry, quint32 offset)
{
    entry.localOffset = offset;
    return entry;
}

ZipEntry withPacked(ZipEntry entry, const QByteArray& packed)
{
    entry.packed = packed;
    return entry;
}

} // namespace

/** Archives that want more than to be unpacked: each is refused, says why, and leaves no trace. */
class HostileArchivesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void isRefused_data() { addArchives(); }
    void isRefused();
    void leavesWhatWasThere_data() { addArchives(); }
    void leavesWhatWasThere();
    void targetWithLinks_data();
    void targetWithLinks();
    void existingFilesStay();
    void namesAreShownHarmlessly();
    void bombs_data();
    void bombs();

private:
    static void addArchives();
    static void addNames();
    static void addClashes();
    static void addLinks();
    static void addKinds();
    static void addLies();

    QString path(const QString& name) const { return m_folder->filePath(name); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void HostileArchivesTest::init()
{
    m_folder.reset(new QTemporaryDir);
    writeFile(path("outside/secret.txt"), "secret");
}

void HostileArchivesTest::addArchives()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("reason");
    addNames();
    addClashes();
    addLinks();
    addKinds();
    addLies();
}

void HostileArchivesTest::addNames()
{
    const auto row = [](const char* tag, const ZipEntry& entry, const char* reason) {
        QTest::newRow(tag) << ZipBuilder{file("before.txt"), entry}.bytes() << QString(reason);
    };
    row("absolute", file("/tmp/evil"), "'/tmp/evil' has an absolute name");
    row("absolute folder", folder("/evil/"), "has an absolute name");
    row("up", file("../evil"), "'../evil' has a name that leads out of the folder");
    row("up later", file("a/../../evil"), "leads out of the folder");
    row("up and back", file("a/../b"), "leads out of the folder");
    row("up at the end", folder("a/.."), "leads out of the folder");
    row("up behind a dot", file("./../evil"), "leads out of the folder");
    row("up by a link", softLink("../evil", "before.txt"), "leads out of the folder");
    row("backslashes", file("..\\evil"), "'..\\evil' has a name with a backslash");
    row("backslashes and slashes", file("a/..\\..\\evil"), "has a name with a backslash");
    row("backslashes from DOS", madeOnDos(file("..\\..\\evil")), "leads out of the folder");
    row("absolute from DOS", madeOnDos(file("\\evil")), "has an absolute name");
    row("network share", madeOnDos(file("\\\\server\\share")), "has an absolute name");
    row("drive", file("C:/evil"), "has a name with a drive letter");
    row("drive, relative", file("c:evil"), "has a name with a drive letter");
    row("drive from DOS", madeOnDos(file("C:\\evil")), "has a name with a drive letter");
    row("NUL", file(QByteArray("a.txt\0.exe", 10)), "has a name with control characters");
    row("NUL in front", file(QByteArray("\0a", 2)), "has a name with control characters");
    row("bell", file("a\007b"), "'a?b' has a name with control characters");
    row("line feed", file("a\nb"), "has a name with control characters");
    row("delete", file("a\177b"), "has a name with control characters");
    row("C1 control",
        inUtf8(file("a\xc2\x9b"
                    "b")),
        "has a name with control characters");
    row("empty", file(""), "'' has an empty name");
    row("only a dot", file("."), "has an empty name");
    row("long part", file(QByteArray(256, 'a')), "has a name that is too long");
    row("long part, in bytes", inUtf8(file(QByteArray("\xc3\xa4").repeated(128))), "too long");
    row("deep", file(QByteArray("a/").repeated(128) + "b"), "has a name with too many parts");
    row("very deep", file(QByteArray("a/").repeated(2000) + "b"), "too many parts");
    row("long path", file(QByteArray("abcdefgh/").repeated(500) + "a"), "too long");
}

void HostileArchivesTest::addClashes()
{
    const auto row = [](const char* tag, const ZipBuilder& archive, const char* reason) {
        QTest::newRow(tag) << archive.bytes() << QString(reason);
    };
    row("twice", {file("a"), file("a")}, "'a' is contained twice");
    row("twice, with a dot", {file("a"), file("./a")}, "'./a' is contained twice");
    row("twice, with two slashes", {file("b/a"), file("b//a")}, "'b//a' is contained twice");
    row("twice, composed anew", {inUtf8(file("\xc3\xa4")), inUtf8(file("a\xcc\x88"))},
        "is contained twice");
    row("folder twice", {folder("a/"), folder("./a/")}, "'./a/' is contained twice");
    row("file and link", {file("a"), file("b"), softLink("./a", "b")}, "'./a' is contained twice");
    row("folder where a file is", {file("a"), file("a/b")},
        "'a/b' needs a folder where there is a file");
    row("file where a folder is", {file("a/b"), file("a")},
        "'a' is a file where a folder is needed");
    row("file behind a link", {folder("b/"), softLink("a", "b"), file("a/evil")},
        "'a/evil' lies behind a symbolic link");
    row("file behind a later link", {folder("b/"), file("a/evil"), softLink("a", "b")},
        "'a' is a file where a folder is needed");
    row("folder behind a link", {folder("b/"), softLink("a", "b"), folder("./a/")},
        "'./a/' lies behind a symbolic link");
    row("link behind a link", {folder("b/"), softLink("a", "b"), softLink("a/c", "d")},
        "'a/c' lies behind a symbolic link");
}

void HostileArchivesTest::addLinks()
{
    const auto row = [](const char* tag, const ZipBuilder& archive, const char* reason) {
        QTest::newRow(tag) << archive.bytes() << QString(reason);
    };
    row("link out", {softLink("a", "../outside")},
        "'a' is a symbolic link that leads out of the folder");
    row("link out of a folder", {softLink("b/a", "../../outside")},
        "'b/a' is a symbolic link that leads out of the folder");
    row("link out and in", {softLink("a", "../target/b"), file("b")}, "leads out of the folder");
    row("absolute link", {softLink("a", "/etc/passwd")},
        "'a' is a symbolic link, and what it points at");
    row("link through a link out",
        {softLink("d/up", ".."), softLink("x/y", "../d/up/../secret"), folder("d/e/")},
        "'x/y' is a symbolic link that leads up again behind a name");
    row("link through a later link out", {softLink("a", "b/../outside"), softLink("b", ".")},
        "'a' is a symbolic link that leads up again behind a name");
    row("link up behind a folder", {file("c/d/e"), softLink("a", "c/d/../../x")},
        "'a' is a symbolic link that leads up again behind a name");
    row("circle", {softLink("a", "b"), softLink("b", "a")}, "leads in a circle");
    row("circle of one", {softLink("a", "a")}, "leads in a circle");
    row("circle in a folder", {softLink("a/b", "../a/b/c")}, "leads in a circle");
    ZipBuilder chain;
    ZipBuilder longWays{folder("d/")};
    for (int i = 0; i < 5000; ++i) {
        const QByteArray next = "l" + QByteArray::number(i + 1);
        chain.add(softLink("l" + QByteArray::number(i), next));
        longWays.add(softLink("l" + QByteArray::number(i),
                              i < 39 ? QByteArray("d/../").repeated(800) + next : "l0"));
    }
    row("long chain", chain, "leads in a circle");
    row("long chain of long ways", longWays, "too many parts");
    row("empty target", {softLink("a", "")}, "an empty name");
    row("target with NUL", {softLink("a", QByteArray("b\0c", 3))},
        "'a' is a symbolic link, and what it points at has a name with control characters");
    row("target with a control character", {softLink("a", "b\033c")}, "control characters");
    row("target with a backslash", {softLink("a", "..\\outside")}, "a backslash");
    row("target with a drive", {softLink("a", "C:/outside")}, "a drive letter");
    row("long target", {softLink("a", QByteArray("b/").repeated(3000))}, "too long");
    row("huge target", {softLink("a", QByteArray("b/").repeated(40000))}, "damaged");
    row("checksum of the target", {withChecksum(softLink("a", "b"), 1)}, "its checksum is wrong");
}

void HostileArchivesTest::addKinds()
{
    const auto row = [](const char* tag, const ZipBuilder& archive, const char* reason) {
        QTest::newRow(tag) << archive.bytes() << QString(reason);
    };
    const char neither[] = "'a' is neither a file nor a folder nor a symbolic link";
    row("fifo", {special("a", S_IFIFO)}, neither);
    row("character device", {special("a", S_IFCHR)}, neither);
    row("block device", {special("a", S_IFBLK)}, neither);
    row("socket", {special("a", S_IFSOCK)}, neither);
    row("unknown type", {special("a", 0150000)}, neither);
    ZipEntry filled = folder("a/");
    filled.content = "content";
    row("folder with content", {filled}, "'a/' is a folder, but has content");
    row("encrypted", {encrypted(file("a"))}, "'a' is encrypted");
    row("encrypted link", {encrypted(softLink("a", "b"))}, "'a' is encrypted");
    row("method Shrink", {ofMethod(file("a"), 1)}, "a method that is not supported");
    row("method bzip2", {ofMethod(file("a"), 12)}, "a method that is not supported");
    row("method LZMA", {ofMethod(file("a"), 14)}, "a method that is not supported");
    row("method PPMd", {ofMethod(file("a"), 98)}, "a method that is not supported");
    row("method AES", {ofMethod(file("a"), 99)}, "a method that is not supported");
}

void HostileArchivesTest::addLies()
{
    const auto row = [](const char* tag, const ZipBuilder& archive, const char* reason) {
        QTest::newRow(tag) << archive.bytes() << QString(reason);
    };
    const QByteArray zeros(100000, '\0');
    const QByteArray text = QByteArray("all work and no play ").repeated(50000);
    row("other name in front", {named(file("a"), "b")}, "disagree about names");
    row("evil name in front", {named(file("a.txt"), "../../evil")}, "disagree about names");
    row("names exchanged", {named(file("a", "1"), "b"), named(file("b", "2"), "a")},
        "disagree about names");
    row("a slash more in front", {named(file("a", ""), "a/")}, "disagree about names");
    row("a slash less in front", {named(ofMode(folder("a/"), 0), "a")}, "disagree about names");
    row("NUL in front", {named(file("a.txt"), QByteArray("a.txt\0.exe", 10))},
        "disagree about names");
    row("NUL at the end in front", {named(file("a.txt"), QByteArray("a.txt\0", 6))},
        "disagree about names");
    row("checksum of nothing", {withChecksum(file("a", ""), 0x12345678)},
        "'a' is damaged: its checksum is wrong");
    row("checksum of nothing, deflated", {withChecksum(deflate(file("a", "")), 1)},
        "'a' is damaged: its checksum is wrong");
    row("more than declared", {declaring(deflate(file("a", text)), 10)},
        "'a' holds more than it declares");
    row("more zeros than declared", {declaring(deflate(file("a", zeros)), 10)}, "damaged");
    row("more than declared, stored", {declaring(file("a", text), 10)},
        "'a' holds more than it declares");
    row("less than declared", {declaring(deflate(file("a", text)), 2000000)}, "damaged");
    row("less than declared, stored", {declaring(file("a", "abc"), 2000)}, "damaged");
    row("content without data", {withPacked(file("a", "abc"), QByteArray())},
        "'a' holds less than it declares");
    row("checksum", {withChecksum(file("a"), 12345)}, "damaged");
    row("checksum, deflated", {withChecksum(deflate(file("a", text)), 12345)}, "damaged");
    row("not a deflate stream", {withPacked(deflate(file("a", "abc")), "\xff\xff\xff")}, "damaged");
    row("two names for one content", {file("a"), at(file("b"), 0)}, "disagree about");
    row("content outside", {at(file("a"), 4000000000U)}, "damaged");
    row("too few announced", ZipBuilder{file("a"), file("b")}.announce(1), "");
    row("too many announced", ZipBuilder{file("a")}.announce(9), "another number of entries");
    row("more than the disk holds", {declaring(deflate(file("a", text)), 4000000000U)},
        "it declares 4.0 GB");
}

void HostileArchivesTest::isRefused()
{
    QFETCH(QByteArray, archive);
    QFETCH(QString, reason);
    writeFile(path("a.zip"), archive);
    const auto before = treeOf(m_folder->path());

    const QString readersReason = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(readersReason.contains(reason), qPrintable(readersReason));
    QVERIFY(!readersReason.isEmpty());
    QCOMPARE(treeOf(m_folder->path()), before);

    QCOMPARE(unpackWithUnzipper(path("a.zip"), path("target")), readersReason);
    QCOMPARE(treeOf(m_folder->path()), before);
}

void HostileArchivesTest::leavesWhatWasThere()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    writeFile(path("target/kept/kept.txt"), "kept");
    const auto before = treeOf(m_folder->path());

    QVERIFY(!unpackWithReader(path("a.zip"), path("target")).isEmpty());
    QCOMPARE(treeOf(m_folder->path()), before);
    QVERIFY(!unpackWithUnzipper(path("a.zip"), path("target")).isEmpty());
    QCOMPARE(treeOf(m_folder->path()), before);
}

void HostileArchivesTest::targetWithLinks_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("reason");

    const auto row = [](const char* tag, const ZipBuilder& archive, const char* reason) {
        QTest::newRow(tag) << archive.bytes() << QString(reason);
    };
    row("file behind it", {file("way/evil.txt")}, "Cannot open the folder 'way'");
    row("folder behind it", {folder("way/evil/")}, "Cannot open the folder 'way'");
    row("folder in its place", {folder("way/")}, "Cannot open the folder 'way'");
    row("file in its place", {file("way")}, "Cannot create the file 'way'");
    row("link in its place", {softLink("way", "a"), file("a")}, "Cannot create the link 'way'");
    row("link through it", {softLink("a", "way/secret.txt")}, "leads through an existing one");
    row("link to it", {softLink("a", "way")}, "leads through an existing one");
}

/** A link that somebody laid into the target folder before is no way out either. */
void HostileArchivesTest::targetWithLinks()
{
    QFETCH(QByteArray, archive);
    QFETCH(QString, reason);
    writeFile(path("a.zip"), archive);
    QDir().mkpath(path("target"));
    QVERIFY(QFile::link(path("outside"), path("target/way")));
    const auto before = treeOf(m_folder->path());

    const QString failure = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(failure.contains(reason), qPrintable(failure));
    QCOMPARE(treeOf(m_folder->path()), before);
    QCOMPARE(unpackWithUnzipper(path("a.zip"), path("target")), failure);
    QCOMPARE(treeOf(m_folder->path()), before);
}

void HostileArchivesTest::existingFilesStay()
{
    ZipBuilder{file("new.txt"), folder("shared/", 0700), file("shared/old.txt", "evil")}.write(
        path("a.zip"));
    writeFile(path("target/shared/old.txt"), "old");
    const auto before = treeOf(m_folder->path());

    const QString failure = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(failure.contains("'old.txt'"), qPrintable(failure));
    QCOMPARE(treeOf(m_folder->path()), before);
}

void HostileArchivesTest::namesAreShownHarmlessly()
{
    ZipBuilder{file("../" + QByteArray(5000, 'x') + "\033[31m")}.write(path("a.zip"));
    const QString failure = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(failure.size() < 250, qPrintable(failure));
    QVERIFY(!failure.contains(QChar(27)));
}

void HostileArchivesTest::bombs_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("reason");
    QTest::newRow("links") << linkBomb().bytes()
                           << "The archive is refused: it takes more than 4000000 steps to follow "
                              "its symbolic links.";
    QTest::newRow("folders") << folderBomb().bytes()
                             << "The archive is refused: it needs more than 1000000 folders.";
}

/** Small archives that would take hours or the whole memory. */
void HostileArchivesTest::bombs()
{
    QFETCH(QByteArray, archive);
    QFETCH(QString, reason);
    writeFile(path("a.zip"), archive);
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), reason);
    QVERIFY(!QFileInfo::exists(path("target")));
}

VX_TEST_MAIN(HostileArchivesTest)
#include "tst_HostileArchives.moc"
