#include <QtTest>

#include "tests/download/EngineProbe.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

class Finder : public DownloadManager
{
public:
    using DownloadManager::findDefaultExecutable;
};

constexpr auto readable = QFile::ReadOwner | QFile::WriteOwner;
constexpr auto runnable = readable | QFile::ExeOwner;

} // namespace

class DefaultExecutableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void emptyTreeGivesNothing();
    void missingFolderGivesNothing();
    void largestWins();
    void equalSizesGoByName();
    void bitDecidesAndNotTheName();
    void ownFilesWinOverDeeperOnes();
    void subfolderNameStandsInFront();
    void firstListedFolderWins();
    void depthGoesFirst();
    void deepTree();
    void namesKeepBlanksAndLetters();
    void hiddenFilesCount();
    void linkToAProgramCounts();
    void brokenLinkDoesNot();
    void linkedFoldersAreEntered();
    void linkToAFolderWithNothingIsPassedOver();
    void linksOutOfThePackageAreNotEntered();
    void linkToANeighbourIsNotEntered();
    void manyWaysToOneFolderEnd();
    void circlesOfLinksEnd();
    void foldersWithoutRightsAreEmpty();
    void calledByName();

private:
    void add(const QString& path, int size, QFile::Permissions permissions);
    QString find() const { return Finder().findDefaultExecutable(QDir(m_folder->path())); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void DefaultExecutableTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

void DefaultExecutableTest::add(const QString& path, int size, QFile::Permissions permissions)
{
    QFile file(m_folder->filePath(path));
    QVERIFY(QDir(m_folder->path()).mkpath(QFileInfo(file.fileName()).path()));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(QByteArray(size, 'x')), qint64(size));
    QVERIFY(file.setPermissions(permissions));
}

void DefaultExecutableTest::emptyTreeGivesNothing()
{
    QCOMPARE(find(), QString());
    QVERIFY(QDir(m_folder->path()).mkpath("a/b/c"));
    QVERIFY(QDir(m_folder->path()).mkpath("d"));
    add("a/readme.txt", 100, readable);
    QCOMPARE(find(), QString());
}

void DefaultExecutableTest::missingFolderGivesNothing()
{
    QCOMPARE(Finder().findDefaultExecutable(QDir(m_folder->filePath("none"))), QString());
}

void DefaultExecutableTest::largestWins()
{
    add("small", 10, runnable);
    add("large", 1000, runnable);
    add("middle", 100, runnable);
    add("document", 100000, readable);
    QCOMPARE(find(), QString("large"));
}

void DefaultExecutableTest::equalSizesGoByName()
{
    add("zebra", 50, runnable);
    add("apple", 50, runnable);
    add("mango", 50, runnable);
    QCOMPARE(find(), QString("apple"));
}

void DefaultExecutableTest::bitDecidesAndNotTheName()
{
    add("setup.exe", 5000, readable);
    add("notes.txt", 5, runnable);
    QCOMPARE(find(), QString("notes.txt"));
}

void DefaultExecutableTest::ownFilesWinOverDeeperOnes()
{
    add("bin/huge", 100000, runnable);
    add("tiny", 1, runnable);
    QCOMPARE(find(), QString("tiny"));
}

void DefaultExecutableTest::subfolderNameStandsInFront()
{
    add("bin/program", 10, runnable);
    add("readme", 10, readable);
    QCOMPARE(find(), QString("bin/program"));
}

void DefaultExecutableTest::firstListedFolderWins()
{
    add("one/program", 10, runnable);
    add("two/program", 9999, runnable);
    add("three/program", 500, runnable);
    const QStringList folders =
        QDir(m_folder->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    QCOMPARE(folders.size(), 3);
    QCOMPARE(find(), folders.first() + "/program");
}

// What is deep in the first folder goes before what is high up in the second.
void DefaultExecutableTest::depthGoesFirst()
{
    QVERIFY(QDir(m_folder->path()).mkpath("one"));
    QVERIFY(QDir(m_folder->path()).mkpath("two"));
    const QStringList folders =
        QDir(m_folder->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    add(folders.at(0) + "/x/y/z/deep", 1, runnable);
    add(folders.at(1) + "/high", 9999, runnable);
    QCOMPARE(find(), folders.at(0) + "/x/y/z/deep");
}

void DefaultExecutableTest::deepTree()
{
    QString path;
    for (int level = 0; level < 400; ++level) {
        path += "d/";
    }
    add(path + "program", 1, runnable);
    QCOMPARE(find(), path + "program");
}

void DefaultExecutableTest::namesKeepBlanksAndLetters()
{
    const QString name = QString::fromUtf8("K\xc3\xa4mera Ordner/Mein Programm \xe6\x97\xa5");
    add(name, 1, runnable);
    QCOMPARE(find(), name);
}

// The bit decides, and a dot at the beginning is part of the name.
void DefaultExecutableTest::hiddenFilesCount()
{
    add(".cache/program", 100, runnable);
    QCOMPARE(find(), QString(".cache/program"));
    add(".hook", 100, runnable);
    QCOMPARE(find(), QString(".hook"));
    add("program", 101, runnable);
    QCOMPARE(find(), QString("program"));
}

void DefaultExecutableTest::linkToAProgramCounts()
{
    add("lib/real", 10, runnable);
    QVERIFY(QFile::link(m_folder->filePath("lib/real"), m_folder->filePath("start")));
    QCOMPARE(find(), QString("start"));
}

void DefaultExecutableTest::brokenLinkDoesNot()
{
    QVERIFY(QFile::link(m_folder->filePath("none"), m_folder->filePath("start")));
    QCOMPARE(find(), QString());
}

void DefaultExecutableTest::linkedFoldersAreEntered()
{
    add("Versions/A/program", 10, runnable);
    QVERIFY(QFile::link("Versions/A", m_folder->filePath("Current")));
    const QStringList folders =
        QDir(m_folder->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    QCOMPARE(folders.size(), 2);
    QCOMPARE(find(), folders.first() == "Current" ? QString("Current/program")
                                                  : QString("Versions/A/program"));
}

void DefaultExecutableTest::linkToAFolderWithNothingIsPassedOver()
{
    QVERIFY(QDir(m_folder->path()).mkpath("empty"));
    QVERIFY(QFile::link("empty", m_folder->filePath("link")));
    add("bin/program", 10, runnable);
    QCOMPARE(find(), QString("bin/program"));
}

// What is there is not part of the package, and is not what the user installs.
void DefaultExecutableTest::linksOutOfThePackageAreNotEntered()
{
    const QTemporaryDir outside;
    QFile program(outside.filePath("foreign"));
    QVERIFY(program.open(QIODevice::WriteOnly));
    QVERIFY(program.setPermissions(runnable));
    QVERIFY(QFile::link(outside.path(), m_folder->filePath("link")));
    QVERIFY(QDir(m_folder->path()).mkpath("package/inner"));
    QVERIFY(QFile::link("..", m_folder->filePath("package/inner/up")));
    add("sibling", 1, runnable);
    QCOMPARE(Finder().findDefaultExecutable(QDir(m_folder->filePath("package"))), QString());
    QVERIFY(QFile::remove(m_folder->filePath("sibling")));
    QCOMPARE(find(), QString());
}

// A folder whose name begins like that of the package is not in it.
void DefaultExecutableTest::linkToANeighbourIsNotEntered()
{
    QVERIFY(QDir(m_folder->path()).mkpath("package"));
    add("package-other/program", 1, runnable);
    QVERIFY(QFile::link("../package-other", m_folder->filePath("package/link")));
    QCOMPARE(Finder().findDefaultExecutable(QDir(m_folder->filePath("package"))), QString());
}

// Followed one by one, these would be as many ways as two to the power of their number.
void DefaultExecutableTest::manyWaysToOneFolderEnd()
{
    constexpr int depth = 64;
    for (int level = 0; level < depth; ++level) {
        const QString folder = m_folder->filePath(QString::number(level));
        QVERIFY(QDir().mkpath(folder));
        for (const char* link : {"left", "right"}) {
            QVERIFY(QFile::link("../" + QString::number(level + 1), folder + '/' + link));
        }
    }
    QVERIFY(QDir(m_folder->path()).mkpath(QString::number(depth)));
    QCOMPARE(find(), QString());
}

void DefaultExecutableTest::circlesOfLinksEnd()
{
    QVERIFY(QDir(m_folder->path()).mkpath("a/b"));
    for (int i = 0; i < 20; ++i) {
        QVERIFY(QFile::link(m_folder->path(), m_folder->filePath(QStringLiteral("up%1").arg(i))));
        QVERIFY(QFile::link("..", m_folder->filePath(QStringLiteral("a/b/up%1").arg(i))));
    }
    QVERIFY(QFile::link("self", m_folder->filePath("self")));
    QCOMPARE(find(), QString());
    add("a/b/program", 1, runnable);
    QCOMPARE(find(), QString("a/b/program"));
}

// For the superuser there is no such folder; there the program in it is found.
void DefaultExecutableTest::foldersWithoutRightsAreEmpty()
{
    add("closed/program", 1, runnable);
    const QString folder = m_folder->filePath("closed");
    QVERIFY(QFile::setPermissions(folder, {}));
    const bool mayEnter = QFileInfo(folder).isReadable();
    const QString found = find();
    QVERIFY(QFile::setPermissions(folder, runnable));
    QCOMPARE(found, mayEnter ? QString("closed/program") : QString());
}

void DefaultExecutableTest::calledByName()
{
    add("program", 1, runnable);
    DownloadManager engine;
    QString found;
    QVERIFY(QMetaObject::invokeMethod(&engine, "findDefaultExecutable", Qt::DirectConnection,
                                      Q_RETURN_ARG(QString, found),
                                      Q_ARG(QDir, QDir(m_folder->path()))));
    QCOMPARE(found, QString("program"));
}

VX_TEST_MAIN(DefaultExecutableTest)
#include "tst_DefaultExecutable.moc"
