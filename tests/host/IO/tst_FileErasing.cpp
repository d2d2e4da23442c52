#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <thread>

#include "host/IO/FileUtils.h"
#include "tests/support/FileRights.h"
#include "tests/support/TestMain.h"

using vx::FileUtils;

namespace {

void write(const QString& path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write("content");
}

bool isThere(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

/** Whether it is erased for somebody whom the permissions of files bind, which they do not root. */
bool eraseWithFileRights(const QString& path)
{
    bool isBound = false;
    bool isErased = false;
    std::thread([&] {
        isBound = vx::test::submitToFileRights();
        isErased = isBound && FileUtils::erase(path);
    }).join();
    if (!isBound) {
        qFatal("The rights of root cannot be given up.");
    }
    return isErased;
}

} // namespace

class FileErasingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void erasesAFile();
    void erasesAnEmptyFolder();
    void erasesAFolderWithAllThatIsInIt();
    void erasesNamesOfAllKinds_data();
    void erasesNamesOfAllKinds();
    void takesAnyFormOfThePath_data();
    void takesAnyFormOfThePath();
    void sparesWhatALinkPointsTo_data();
    void sparesWhatALinkPointsTo();
    void sparesWhatLinksInAFolderPointTo();
    void followsLinksOnTheWay();
    void refusesWhatIsNotThere_data();
    void refusesWhatIsNotThere();
    void refuses_data();
    void refuses();
    void erasesALinkToAProtectedFolder();
    void refusesAProtectedLink();
    void erasesBelowAProtectedFolder();
    void erasesReadOnlyContent();
    void failsWithoutRights();

private:
    QString path(const char* relative) const { return m_folder->filePath(QLatin1String(relative)); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_currentBefore;
};

/** In the folder: "current/deep" is the current folder; home and temporary folder lie elsewhere. */
void FileErasingTest::init()
{
    m_currentBefore = QDir::currentPath();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("current/deep")));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("folder/sub/.hidden")));
    write(path("folder/file"));
    write(path("folder/sub/.hidden/file"));
    write(path("file"));
    QVERIFY(QDir::setCurrent(path("current/deep")));
}

void FileErasingTest::cleanup()
{
    QDir::setCurrent(m_currentBefore);
    m_folder.reset();
}

void FileErasingTest::erasesAFile()
{
    QVERIFY(FileUtils::erase(path("file")));
    QVERIFY(!isThere(path("file")));
    QVERIFY(isThere(path("folder/file")));
}

void FileErasingTest::erasesAnEmptyFolder()
{
    QVERIFY(QDir().mkpath(path("empty")));
    QVERIFY(FileUtils::erase(path("empty")));
    QVERIFY(!isThere(path("empty")));
}

void FileErasingTest::erasesAFolderWithAllThatIsInIt()
{
    QVERIFY(FileUtils::erase(path("folder")));
    QVERIFY(!isThere(path("folder")));
    QVERIFY(isThere(path("file")));
    QVERIFY(isThere(path("current/deep")));
}

void FileErasingTest::erasesNamesOfAllKinds_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {" ", "...", ".hidden", "a b", "Gr\xc3\xb6\xc3\x9f\x65", "*", "-rf",
                             "~", "a\nb", "a\\b", ":x", "%1", "..x"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void FileErasingTest::erasesNamesOfAllKinds()
{
    QFETCH(QString, name);
    const QString file = m_folder->path() + QLatin1Char('/') + name;
    write(file);
    QVERIFY(FileUtils::erase(file));
    QVERIFY(!isThere(file));
    QVERIFY(isThere(path("file")));
}

void FileErasingTest::takesAnyFormOfThePath_data()
{
    QTest::addColumn<QString>("form");
    QTest::newRow("absolute") << "%1/folder";
    QTest::newRow("slash at the end") << "%1/folder/";
    QTest::newRow("slashes at the end") << "%1/folder///";
    QTest::newRow("slashes within") << "%1//./folder";
    QTest::newRow("relative") << "../../folder";
    QTest::newRow("dots on the way") << "%1/current/../folder";
}

void FileErasingTest::takesAnyFormOfThePath()
{
    QFETCH(QString, form);
    QVERIFY(FileUtils::erase(form.replace(QLatin1String("%1"), m_folder->path())));
    QVERIFY(!isThere(path("folder")));
    QVERIFY(isThere(path("file")));
}

void FileErasingTest::sparesWhatALinkPointsTo_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("end");
    QTest::newRow("file") << "file"
                          << "";
    QTest::newRow("folder") << "folder"
                            << "";
    QTest::newRow("folder, slash at the end") << "folder"
                                              << "/";
    QTest::newRow("nothing") << "missing"
                             << "";
}

void FileErasingTest::sparesWhatALinkPointsTo()
{
    QFETCH(QString, target);
    QFETCH(QString, end);
    QVERIFY(QFile::link(m_folder->filePath(target), path("link")));
    QVERIFY(FileUtils::erase(path("link") + end));
    QVERIFY(!isThere(path("link")));
    QVERIFY(isThere(path("file")));
    QVERIFY(isThere(path("folder/file")));
}

void FileErasingTest::sparesWhatLinksInAFolderPointTo()
{
    QVERIFY(QDir().mkpath(path("linking/sub")));
    QVERIFY(QFile::link(path("folder"), path("linking/sub/toFolder")));
    QVERIFY(QFile::link(path("file"), path("linking/toFile")));
    QVERIFY(QFile::link(path("linking"), path("linking/sub/toItself")));
    QVERIFY(QFile::link(path("missing"), path("linking/toNothing")));
    QVERIFY(QFile::link(QDir::homePath(), path("linking/toHome")));
    write(QDir::homePath() + QStringLiteral("/kept"));
    QVERIFY(FileUtils::erase(path("linking")));
    QVERIFY(!isThere(path("linking")));
    QVERIFY(isThere(path("file")));
    QVERIFY(isThere(path("folder/sub/.hidden/file")));
    QVERIFY(isThere(QDir::homePath() + QStringLiteral("/kept")));
}

void FileErasingTest::followsLinksOnTheWay()
{
    QVERIFY(QFile::link(path("folder"), path("link")));
    QVERIFY(FileUtils::erase(path("link/sub")));
    QVERIFY(!isThere(path("folder/sub")));
    QVERIFY(isThere(path("folder/file")));
    // The system goes to the folder that the link points to and up from there.
    QVERIFY(QDir().mkpath(path("current/other")));
    QVERIFY(QFile::link(path("current/deep"), path("deepLink")));
    QVERIFY(FileUtils::erase(path("deepLink/../other")));
    QVERIFY(!isThere(path("current/other")));
}

void FileErasingTest::refusesWhatIsNotThere_data()
{
    QTest::addColumn<QString>("form");
    QTest::newRow("missing") << "%1/missing";
    QTest::newRow("in a missing folder") << "%1/missing/file";
    QTest::newRow("below a file") << "%1/file/x";
    QTest::newRow("up from a missing folder") << "%1/missing/../file";
    QTest::newRow("NUL at the end") << QStringLiteral("%1/file") + QChar(QChar::Null);
    QTest::newRow("NUL within") << QStringLiteral("%1/file") + QChar(QChar::Null) + "/x";
}

void FileErasingTest::refusesWhatIsNotThere()
{
    QFETCH(QString, form);
    QVERIFY(!FileUtils::erase(form.replace(QLatin1String("%1"), m_folder->path())));
    QVERIFY(isThere(path("file")));
    QVERIFY(isThere(path("folder/sub/.hidden/file")));
}

void FileErasingTest::refuses_data()
{
    QTest::addColumn<QString>("form");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << "";
    QTest::newRow("dot") << ".";
    QTest::newRow("two dots") << "..";
    QTest::newRow("dot and slash") << "./";
    QTest::newRow("two dots and slash") << "../";
    QTest::newRow("further up") << "../..";
    QTest::newRow("dot at the end") << "%folder/.";
    QTest::newRow("dots at the end") << "%folder/sub/..";
    QTest::newRow("dots and slashes at the end") << "%folder/sub/..//";
    QTest::newRow("root") << "/";
    QTest::newRow("root, two slashes") << "//";
    QTest::newRow("root, with a dot") << "/./";
    QTest::newRow("home") << "%home";
    QTest::newRow("home, with slashes") << "%home///";
    QTest::newRow("home, from within") << "%home/x/../../home";
    QTest::newRow("above home") << "%home.parent";
    QTest::newRow("temporary folder") << "%temp";
    QTest::newRow("temporary folder, with slashes") << "%temp.parent//tmp/";
    QTest::newRow("current folder") << "%current";
    QTest::newRow("current folder, with slash") << "%current/";
    QTest::newRow("current folder, relative") << "../deep";
    QTest::newRow("current folder, through a link") << "%link/current/deep";
    QTest::newRow("above the current folder") << "%folder/current";
    QTest::newRow("above the current folder, relative") << "../../current";
    QTest::newRow("above the current folder, through a link") << "%link/current//";
}

void FileErasingTest::refuses()
{
    QFETCH(QString, form);
    const QString home = QDir::homePath();
    QVERIFY(QDir().mkpath(home + QStringLiteral("/x")));
    QVERIFY(QFile::link(m_folder->path(), path("link")));
    form.replace(QLatin1String("%home.parent"), QFileInfo(home).path());
    form.replace(QLatin1String("%home"), home);
    form.replace(QLatin1String("%temp.parent"), QFileInfo(QDir::tempPath()).path());
    form.replace(QLatin1String("%temp"), QDir::tempPath());
    form.replace(QLatin1String("%current"), QDir::currentPath());
    form.replace(QLatin1String("%folder/current"), path("current"));
    form.replace(QLatin1String("%folder"), path("folder"));
    form.replace(QLatin1String("%link"), path("link"));

    QVERIFY2(!FileUtils::erase(form), qPrintable(form));
    for (const QString& kept : {path("file"), path("folder/file"), path("folder/sub/.hidden/file"),
                                path("current/deep"), path("link"), home + "/x"}) {
        QVERIFY2(isThere(kept), qPrintable(kept));
    }
}

void FileErasingTest::erasesALinkToAProtectedFolder()
{
    write(QDir::homePath() + QStringLiteral("/kept"));
    QVERIFY(QFile::link(QDir::homePath(), path("toHome")));
    QVERIFY(FileUtils::erase(path("toHome")));
    QVERIFY(!isThere(path("toHome")));
    QVERIFY(isThere(QDir::homePath() + QStringLiteral("/kept")));
}

/** A home that is known by a link: without the link it would be gone, too. */
void FileErasingTest::refusesAProtectedLink()
{
    const QByteArray homeBefore = qgetenv("HOME");
    QVERIFY(QDir().mkpath(path("real/home")));
    QVERIFY(QFile::link(path("real"), path("homes")));
    qputenv("HOME", QFile::encodeName(path("homes/home")));
    const bool erasedLink = FileUtils::erase(path("homes"));
    const bool erasedReal = FileUtils::erase(path("real"));
    const bool erasedHome = FileUtils::erase(path("real/home"));
    qputenv("HOME", homeBefore);
    QVERIFY(!erasedLink);
    QVERIFY(!erasedReal);
    QVERIFY(!erasedHome);
    QVERIFY(isThere(path("homes/home")));
}

void FileErasingTest::erasesBelowAProtectedFolder()
{
    for (const QString& folder : {QDir::homePath(), QDir::tempPath(), QDir::currentPath()}) {
        QVERIFY(QDir(folder).mkpath(QStringLiteral("below/sub")));
        QVERIFY(FileUtils::erase(folder + QStringLiteral("/below")));
        QVERIFY(!isThere(folder + QStringLiteral("/below")));
    }
    // A name that only begins like that of a protected folder.
    QVERIFY(QDir().mkpath(QDir::currentPath() + QStringLiteral("er")));
    QVERIFY(FileUtils::erase(QDir::currentPath() + QStringLiteral("er")));
}

void FileErasingTest::erasesReadOnlyContent()
{
    QTemporaryDir folder;
    const QString target = folder.filePath(QStringLiteral("target"));
    const QString sub = target + QStringLiteral("/sub/deeper");
    QVERIFY(QDir().mkpath(sub));
    write(sub + QStringLiteral("/file"));
    QVERIFY(QFile::setPermissions(sub + QStringLiteral("/file"), QFile::ReadOwner));
    QVERIFY(QFile::setPermissions(sub, QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(QFile::setPermissions(target + QStringLiteral("/sub"), QFile::Permissions()));
    QVERIFY(QFile::setPermissions(target, QFile::ReadOwner));
    QVERIFY(eraseWithFileRights(target));
    QVERIFY(!isThere(target));
}

void FileErasingTest::failsWithoutRights()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    write(file);
    QVERIFY(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(!eraseWithFileRights(file));
    QVERIFY(isThere(file));
    QVERIFY(QFile::setPermissions(folder.path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    // Nothing but the right was missing.
    QVERIFY(eraseWithFileRights(file));
    QVERIFY(!isThere(file));
}

VX_TEST_MAIN(FileErasingTest)
#include "tst_FileErasing.moc"
