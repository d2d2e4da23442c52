#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <iterator>

#include <sys/stat.h>

#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

QMap<QByteArray, QByteArray> linksOf(const QString& folder)
{
    QMap<QByteArray, QByteArray> links = treeOf(folder);
    for (auto it = links.begin(); it != links.end();) {
        it = it->startsWith("link ") ? std::next(it) : links.erase(it);
    }
    return links;
}

} // namespace

/**
 * What was packed comes out as it was. The program runs twice, under a UTF-8 locale and under "C",
 * in which Qt knows no letters but ASCII by itself.
 */
class UnpackedContentsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void bundleOf_data();
    void bundleOf();
    void bundleRuns();
    void modificationTimes();
    void modificationTimeOfRecord();
    void permissions_data();
    void permissions();
    void readOnlyFolder();
    void packedFromAPipe();
    void customIconOfABundle();
    void foldersWithoutEntry();
    void names_data();
    void names();
    void unicodePathField();
    void linksThatStayInside_data();
    void linksThatStayInside();
    void decomposedLinkTarget();
    void emptyArchive();
    void emptyFile();
    void zerosAndText();
    void archiveBehindSomethingElse();
    void aroundTheEnd_data();
    void aroundTheEnd();
    void directoryInAnotherOrder();
    void flat();
    void existingFolderKeepsItsMode();

private:
    void makeBundle();
    QString path(const QString& name) const { return m_folder->filePath(name); }
    struct stat statusOf(const QString& name) const;

    QScopedPointer<QTemporaryDir> m_folder;
};

void UnpackedContentsTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

struct stat UnpackedContentsTest::statusOf(const QString& name) const
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path(name)).constData(), &status) != 0) {
        qWarning("no %s", qPrintable(name));
    }
    return status;
}

/** An installer bundle, made as such bundles are: folders, programs, links, nothing regular. */
void UnpackedContentsTest::makeBundle()
{
    const QString bundle = path("packed/Product.mpkg/Contents");
    writeFile(bundle + "/MacOS/installer", "#!/bin/sh\necho installed from \"$1\"\n");
    writeFile(bundle + "/Resources/readme.txt", "read me\n");
    writeFile(bundle + "/Resources/big.bin", QByteArray("0123456789").repeated(300000));
    writeFile(bundle + "/Frameworks/Core.framework/Versions/A/Core", "library");
    QDir().mkpath(bundle + "/Resources/empty/inner");
    QVERIFY(QFile::setPermissions(bundle + "/MacOS/installer", QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(bundle + "/Resources/readme.txt", QFile::Permissions(0x6440)));
    const QString framework = bundle + "/Frameworks/Core.framework/";
    QVERIFY(QFile::link("A", framework + "Versions/Current"));
    QVERIFY(QFile::link("Versions/Current/Core", framework + "Core"));
    QVERIFY(QFile::link("../MacOS/installer", bundle + "/Resources/start"));
}

void UnpackedContentsTest::bundleOf_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("zip") << "zip" << QStringList{"-qry", "../a.zip", "Product.mpkg"};
    QTest::newRow("zip, stored") << "zip" << QStringList{"-qry0", "../a.zip", "Product.mpkg"};
    QTest::newRow("bsdtar") << "bsdtar"
                            << QStringList{"-cf", "../a.zip", "--format", "zip", "Product.mpkg"};
}

void UnpackedContentsTest::bundleOf()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    makeBundle();
    runTool(path("packed"), program, arguments);

    QCOMPARE(unpackWithReader(path("a.zip"), path("read")), QString());
    QCOMPARE(treeOf(path("read")), treeOf(path("packed")));
    QCOMPARE(unpackWithUnzipper(path("a.zip"), path("unzipped")), QString());
    QCOMPARE(treeOf(path("unzipped")), treeOf(path("packed")));
}

void UnpackedContentsTest::bundleRuns()
{
    makeBundle();
    runTool(path("packed"), "zip", {"-qry", "../a.zip", "Product.mpkg"});
    QCOMPARE(unpackWithUnzipper(path("a.zip"), path("target")), QString());

    QProcess installer;
    installer.start(path("target/Product.mpkg/Contents/Resources/start"), {"here"});
    QVERIFY(installer.waitForFinished());
    QCOMPARE(installer.readAllStandardOutput(), QByteArray("installed from here\n"));
}

void UnpackedContentsTest::modificationTimes()
{
    makeBundle();
    runTool(path("packed"), "touch", {"-d", "2001-02-03 04:05:06 UTC", "Product.mpkg/Contents"});
    runTool(path("packed"), "touch",
            {"-d", "2011-12-13 14:15:16 UTC", "Product.mpkg/Contents/Resources/readme.txt"});
    runTool(path("packed"), "touch",
            {"-hd", "2005-05-05 05:05:05 UTC", "Product.mpkg/Contents/Resources/start"});
    runTool(path("packed"), "zip", {"-qry", "../a.zip", "Product.mpkg"});
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());

    for (const QString name :
         {"", "/Resources/readme.txt", "/Resources/start", "/Resources/empty", "/MacOS"}) {
        const QString below = "/Product.mpkg/Contents" + name;
        QCOMPARE(statusOf("target" + below).st_mtime, statusOf("packed" + below).st_mtime);
    }
}

/** Without an extended time, the entry's own counts, in local time and steps of two seconds. */
void UnpackedContentsTest::modificationTimeOfRecord()
{
    ZipBuilder{file("a")}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    const QDateTime expected(QDate(2020, 2, 2), QTime(2, 2, 2));
    QCOMPARE(qint64(statusOf("target/a").st_mtime), expected.toSecsSinceEpoch());
}

void UnpackedContentsTest::permissions_data()
{
    QTest::addColumn<unsigned>("packed");
    QTest::addColumn<unsigned>("unpacked");
    QTest::newRow("program") << 0755U << 0755U;
    QTest::newRow("private") << 0600U << 0600U;
    QTest::newRow("read-only") << 0444U << 0444U;
    QTest::newRow("for all, whatever the umask") << 0777U << 0777U;
    QTest::newRow("setuid is dropped") << 04755U << 0755U;
    QTest::newRow("setgid is dropped") << 02755U << 0755U;
    QTest::newRow("sticky is dropped") << 01644U << 0644U;
}

void UnpackedContentsTest::permissions()
{
    QFETCH(unsigned, packed);
    QFETCH(unsigned, unpacked);
    ZipBuilder{file("a", "x", packed), folder("b/", packed | 0700)}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(statusOf("target/a").st_mode & 07777U, unpacked);
    QCOMPARE(statusOf("target/b").st_mode & 07777U, unpacked | 0700);
}

void UnpackedContentsTest::readOnlyFolder()
{
    ZipBuilder{folder("a/", 0500), file("a/b"), folder("a/c/", 0500), file("a/c/d")}.write(
        path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(statusOf("target/a").st_mode & 07777U, 0500U);
    QCOMPARE(contentOf(path("target/a/c/d")), QByteArray("content"));
    for (const QString name : {"target/a", "target/a/c"}) {
        QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

/** What zip packs from its standard input has the type of a pipe, and a content. */
void UnpackedContentsTest::packedFromAPipe()
{
    runTool(m_folder->path(), "sh", {"-c", "seq 1000 | zip -q - - > a.zip"});
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(contentOf(path("target/-")).size(), 3893);
    QVERIFY(S_ISREG(statusOf("target/-").st_mode));

    ZipEntry empty = special("a", S_IFIFO);
    ZipEntry filled = special("b", S_IFIFO);
    filled.content = "content";
    ZipBuilder{filled}.write(path("b.zip"));
    QCOMPARE(unpackWithReader(path("b.zip"), path("filled")), QString());
    QCOMPARE(treeOf(path("filled")).value("b"), QByteArray("file 644 content"));
    ZipBuilder{empty}.write(path("c.zip"));
    QVERIFY(unpackWithReader(path("c.zip"), path("empty")).contains("neither a file"));
}

/** macOS keeps the icon of a bundle in a file whose name ends in a carriage return. */
void UnpackedContentsTest::customIconOfABundle()
{
    ZipBuilder{folder("A.mpkg/"), file("A.mpkg/Icon\r", "icon")}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")).value("A.mpkg/Icon\r"), QByteArray("file 644 icon"));

    for (const QByteArray name : {"Icon\n", "icon\r", "Icon\r\r", "\r", "Icon\rs/a", "My Icon\r"}) {
        ZipBuilder{file(name)}.write(path("b.zip"));
        const QString reason = unpackWithReader(path("b.zip"), path("other"));
        QVERIFY2(reason.contains("control characters"), name.constData());
    }
}

void UnpackedContentsTest::foldersWithoutEntry()
{
    ZipBuilder{file("a/b/c.txt")}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(statusOf("target/a/b").st_mode & 07777U, 0755U);
    QVERIFY(qAbs(statusOf("target/a/b").st_mtime - time(nullptr)) < 100);
}

void UnpackedContentsTest::names_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<bool>("utf8");
    QTest::addColumn<QByteArray>("onDisk");
    QTest::newRow("ASCII") << QByteArray("a b(c)'d") << false << QByteArray("a b(c)'d");
    QTest::newRow("UTF-8") << QByteArray("Gr\xc3\xbc\xc3\x9f"
                                         "e.txt")
                           << true
                           << QByteArray("Gr\xc3\xbc\xc3\x9f"
                                         "e.txt");
    QTest::newRow("UTF-8, not flagged") << QByteArray("\xe6\x97\xa5\xe6\x9c\xac") << false
                                        << QByteArray("\xe6\x97\xa5\xe6\x9c\xac");
    QTest::newRow("UTF-8, beyond the basic plane")
        << QByteArray("\xf0\x9f\x8e\xa5") << true << QByteArray("\xf0\x9f\x8e\xa5");
    QTest::newRow("decomposed") << QByteArray("a\xcc\x88") << true << QByteArray("a\xcc\x88");
    QTest::newRow("code page 437") << QByteArray("Gr\x81\xe1"
                                                 "e.txt")
                                   << false
                                   << QByteArray("Gr\xc3\xbc\xc3\x9f"
                                                 "e.txt");
    QTest::newRow("code page 437, folder")
        << QByteArray("\x8e/\x9a.txt") << false << QByteArray("\xc3\x84/\xc3\x9c.txt");
    QTest::newRow("ends of code page 437")
        << QByteArray("\x80\xfe\xff") << false << QByteArray("\xc3\x87\xe2\x96\xa0\xc2\xa0");
    QTest::newRow("colon") << QByteArray("10:30.txt") << false << QByteArray("10:30.txt");
    QTest::newRow("dots") << QByteArray("..a/b../...") << false << QByteArray("..a/b../...");
    QTest::newRow("needless dot and slash") << QByteArray("./a//b") << false << QByteArray("a/b");
    const QByteArray deepest = QByteArray("a/").repeated(127) + "b";
    QTest::newRow("deepest") << deepest << false << deepest;
    QTest::newRow("longest") << QByteArray(255, 'x') << false << QByteArray(255, 'x');
}

void UnpackedContentsTest::names()
{
    QFETCH(QByteArray, stored);
    QFETCH(bool, utf8);
    QFETCH(QByteArray, onDisk);
    ZipBuilder{utf8 ? inUtf8(file(stored, "hello")) : file(stored, "hello")}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")).value(onDisk), QByteArray("file 644 hello"));
}

/** Info-ZIP's second name wins if its checksum belongs to the first. */
void UnpackedContentsTest::unicodePathField()
{
    const auto field = [](const QByteArray& raw, const QByteArray& name) {
        const quint32 crc = checksum(raw);
        QByteArray extra("up");
        extra += static_cast<char>(name.size() + 5);
        extra += QByteArray("\0\1", 2);
        for (int shift = 0; shift < 32; shift += 8) {
            extra += static_cast<char>(crc >> shift);
        }
        return extra + name;
    };
    ZipEntry right = file("raw", "right");
    right.localExtra = right.centralExtra = field("raw", "\xe2\x82\xac");
    ZipEntry stale = file("raw2", "stale");
    stale.localExtra = stale.centralExtra = field("another", "\xe2\x82\xac");
    ZipBuilder{right, stale}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")).value("\xe2\x82\xac"), QByteArray("file 644 right"));
    QCOMPARE(treeOf(path("target")).value("raw2"), QByteArray("file 644 stale"));
}

void UnpackedContentsTest::linksThatStayInside_data()
{
    QTest::addColumn<QByteArray>("archive");
    const auto row = [](const char* tag, const ZipBuilder& archive) {
        QTest::newRow(tag) << archive.bytes();
    };
    row("to a file", {file("b/c"), softLink("b/a", "c")});
    row("to a folder", {folder("b/"), softLink("a", "b/")});
    row("up, but inside", {file("b"), softLink("c/d/a", "../../b")});
    row("to the top", {softLink("b/a", "..")});
    row("to nothing", {softLink("a", "not/there")});
    row("of a shared library",
        {file("lib.so.1.2"), softLink("lib.so.1", "lib.so.1.2"), softLink("lib.so", "lib.so.1")});
    row("of a framework", {file("F/Versions/A/F"), softLink("F/Versions/Current", "A"),
                           softLink("F/F", "Versions/Current/F")});
    row("up, and down through a link",
        {file("c/d/e"), softLink("b", "c"), softLink("f/a", "../b/d/e")});
    row("deflated", {file("b"), deflate(softLink("a", QByteArray("./").repeated(50) + "b"))});
    row("not ASCII", {file("\xc3\xa4"), softLink("a", "\xc3\xa4")});
    ZipBuilder chain{file("l40/found")};
    for (int i = 0; i < 40; ++i) {
        chain.add(softLink("l" + QByteArray::number(i), "l" + QByteArray::number(i + 1)));
    }
    row("through as many links as the system follows", chain);
    row("through a link that was followed before",
        {folder("d/e/"), softLink("a", "d"), softLink("b", "a/e"), softLink("c", "a/e")});
    row("not ASCII, flagged", {inUtf8(file("\xc3\xa4")), inUtf8(softLink("\xc3\xb6", "\xc3\xa4"))});
}

void UnpackedContentsTest::linksThatStayInside()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QDir().mkpath(path("peer"));
    runTool(path("peer"), "bsdtar", {"-xpf", "../a.zip"});
    QCOMPARE(linksOf(path("target")), linksOf(path("peer")));
}

/** Names and targets stay as they are, byte for byte; macOS writes them decomposed. */
void UnpackedContentsTest::decomposedLinkTarget()
{
    const QByteArray name("a\xcc\x88");
    ZipBuilder{inUtf8(file(name, "found")), inUtf8(softLink("o\xcc\x88", name))}.write(
        path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")).value("o\xcc\x88"), "link " + name);
    QCOMPARE(treeOf(path("target")).value(name), QByteArray("file 644 found"));
}

void UnpackedContentsTest::emptyArchive()
{
    ZipBuilder().write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QVERIFY(QFileInfo(path("target")).isDir());
    QVERIFY(treeOf(path("target")).isEmpty());
}

void UnpackedContentsTest::emptyFile()
{
    ZipBuilder{file("a", ""), deflate(file("b", ""))}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")).value("a"), QByteArray("file 644 "));
    QCOMPARE(treeOf(path("target")).value("b"), QByteArray("file 644 "));
}

/** Pieces of nothing but zeros are left out on disk; what is read is the same. */
void UnpackedContentsTest::zerosAndText()
{
    const QByteArray zeros(1 << 20, '\0');
    const QByteArray content = zeros + "text" + zeros + QByteArray(1 << 20, 'x') + zeros;
    ZipBuilder{deflate(file("mixed", content)), deflate(file("zeros", zeros)),
               file("large", content.repeated(3))}
        .write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QVERIFY(contentOf(path("target/mixed")) == content);
    QVERIFY(contentOf(path("target/zeros")) == zeros);
    QVERIFY(contentOf(path("target/large")) == content.repeated(3));
}

void UnpackedContentsTest::archiveBehindSomethingElse()
{
    const ZipBuilder archive{file("a"), deflate(file("b", QByteArray(5000, 'b')))};
    archive.write(path("a.zip"), QByteArray("#!/bin/sh\n").repeated(1000));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(contentOf(path("target/b")), QByteArray(5000, 'b'));
}

void UnpackedContentsTest::aroundTheEnd_data()
{
    QTest::addColumn<QByteArray>("archive");
    ZipBuilder archive{file("a"), file("b", "hello")};
    const QByteArray plain = archive.bytes();
    const QByteArray emptyEnd = ZipBuilder().bytes();
    QTest::newRow("comment") << archive.comment("Made on a Monday").bytes();
    QTest::newRow("signature in the comment") << archive.comment("PK\5\6 and more").bytes();
    QTest::newRow("end record in the comment") << archive.comment(emptyEnd + "!").bytes();
    QTest::newRow("longest comment") << archive.comment(QByteArray(65535, 'c')).bytes();
    QTest::newRow("bytes behind it") << plain + QByteArray("garbage").repeated(1000);
    QTest::newRow("one byte behind it") << plain + '\0';
}

void UnpackedContentsTest::aroundTheEnd()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(treeOf(path("target")),
             (QMap<QByteArray, QByteArray>{{"a", "file 644 content"}, {"b", "file 644 hello"}}));
}

/** Nothing says that the directory has the order of the data. */
void UnpackedContentsTest::directoryInAnotherOrder()
{
    QByteArray archive = ZipBuilder{file("a", "1"), file("b", "22"), file("c", "333")}.bytes();
    const int first = archive.indexOf("PK\1\2");
    const int second = archive.indexOf("PK\1\2", first + 4);
    const int third = archive.indexOf("PK\1\2", second + 4);
    const int length = second - first;
    archive = archive.left(first) + archive.mid(third, length) + archive.mid(first, length) +
              archive.mid(second, length) + archive.mid(third + length);
    writeFile(path("a.zip"), archive);
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(contentOf(path("target/a")), QByteArray("1"));
    QCOMPARE(contentOf(path("target/b")), QByteArray("22"));
    QCOMPARE(contentOf(path("target/c")), QByteArray("333"));
}

void UnpackedContentsTest::flat()
{
    ZipBuilder{folder("a/"), file("a/b", "1"), file("c/d/e", "2"), softLink("c/f", "e")}.write(
        path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("read"), true), QString());
    QCOMPARE(treeOf(path("read")).keys(), QList<QByteArray>({"b", "e", "f"}));
    QCOMPARE(contentOf(path("read/f")), QByteArray("2"));
    QCOMPARE(unpackWithUnzipper(path("a.zip"), path("unzipped"), true), QString());
    QCOMPARE(treeOf(path("unzipped")), treeOf(path("read")));

    ZipBuilder{file("a/b"), file("c/b")}.write(path("b.zip"));
    QVERIFY(unpackWithReader(path("b.zip"), path("clash"), true).contains("contained twice"));
}

void UnpackedContentsTest::existingFolderKeepsItsMode()
{
    QDir().mkpath(path("target/a"));
    QVERIFY(QFile::setPermissions(path("target/a"), QFile::Permissions(0x7700)));
    ZipBuilder{folder("a/", 0755), file("a/b")}.write(path("a.zip"));
    QCOMPARE(unpackWithReader(path("a.zip"), path("target")), QString());
    QCOMPARE(statusOf("target/a").st_mode & 07777U, 0700U);
    QCOMPARE(contentOf(path("target/a/b")), QByteArray("content"));
}

VX_TEST_MAIN(UnpackedContentsTest)
#include "tst_UnpackedContents.moc"
