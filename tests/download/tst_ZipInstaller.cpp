#include <QFileDialog>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QtTest>

#include "host/CoreQt/IOException.h"
#include "tests/download/ChildProcess.h"
#include "tests/download/DialogDriver.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/BoxWatcher.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

/** What the user does, and what there was to see. */
struct User
{
    /** The folder to choose; empty accepts the one that is offered. */
    QString folder;
    bool rejectsFolder = false;
    bool cancelsUnpacking = false;

    QString folderTitle;
    QString folderAcceptLabel;
    bool folderHasParent = true;
    QString offeredFolder;
    QString progressLabel;
    bool progressHasParent = true;
    /** The message boxes, each left with Escape. */
    BoxWatcher boxes;

    bool answer(QDialog* dialog);

private:
    bool chooseFolder(QFileDialog* dialog);
    bool watchProgress(QProgressDialog* dialog);
};

bool User::answer(QDialog* dialog)
{
    if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
        return chooseFolder(files);
    }
    if (auto* progress = qobject_cast<QProgressDialog*>(dialog)) {
        return watchProgress(progress);
    }
    return false;
}

bool User::chooseFolder(QFileDialog* dialog)
{
    if (!dialog->isVisible()) {
        return false;
    }
    folderTitle = dialog->windowTitle();
    folderAcceptLabel = dialog->labelText(QFileDialog::Accept);
    folderHasParent = dialog->parent() != nullptr;
    offeredFolder = dialog->directory().absolutePath();
    if (rejectsFolder) {
        dialog->reject();
        return true;
    }
    if (!folder.isEmpty()) {
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(folder);
    }
    QMetaObject::invokeMethod(dialog, "accept");
    return true;
}

bool User::watchProgress(QProgressDialog* dialog)
{
    progressLabel = dialog->labelText();
    progressHasParent = dialog->parent() != nullptr;
    if (cancelsUnpacking) {
        dialog->findChild<QPushButton*>()->click();
    }
    return true;
}

/** What the button that accepts is called where nobody gives it a name. */
QString usualAcceptLabel()
{
    QFileDialog dialog(nullptr, QString(), QCoreApplication::applicationDirPath());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.show();
    return dialog.labelText(QFileDialog::Accept);
}

QStringList temporaryFolders()
{
    return QDir(QDir::tempPath()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

QString writeArchive(const QString& path, const QByteArray& bytes)
{
    QFile archive(path);
    archive.open(QIODevice::WriteOnly);
    archive.write(bytes);
    return path;
}

constexpr int slowArchiveFiles = 400;

/** Small, and long enough in unpacking for a user to step in. */
QByteArray slowArchive()
{
    ZipEntry entry = deflate(file("f", QByteArray(20000, 'x')));
    entry.crc32 = checksum(entry.content); // once instead of each time
    ZipBuilder archive;
    for (int i = 0; i < slowArchiveFiles; ++i) {
        entry.name = "f" + QByteArray::number(i);
        archive.add(entry);
    }
    return archive.bytes();
}

constexpr int stillAlive = 7;

/** The child's part: installs an archive into a folder. */
int installInChild(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList texts = childArguments();
    User user;
    user.folder = texts.value(1);
    const DialogDriver driver([&user](QDialog* dialog) { return user.answer(dialog); });
    DownloadManager engine;
    engine.runInstaller(texts.value(0));
    return stillAlive;
}

} // namespace

class ZipInstallerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void folderIsAskedFor_data();
    void folderIsAskedFor();
    void withoutAFolderNothingHappens();
    void progressNamesTheArchive();
    void failingStartReturnsSilently();
    void cancelLeavesTheFolder();
    void brokenArchiveIsToldAndThrown_data();
    void brokenArchiveIsToldAndThrown();
    void exceptionCrossesAnInvocation();
    void copyStepTakesTheProcess_data();
    void copyStepTakesTheProcess();
    void temporaryFolderMayHaveAnyName();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    void install(User& user, const QString& archive) const;

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_workingFolder;
    QByteArray m_archive;
};

void ZipInstallerTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(QDir(m_folder->path()).mkdir("work"));
    // There is no "sh" here, so that the last step fails and the process goes on.
    m_workingFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(path("work")));
    m_archive = ZipBuilder({file("bin/program", "#!", 0755), file("readme.txt")}).bytes();
}

void ZipInstallerTest::cleanup()
{
    QVERIFY(QDir::setCurrent(m_workingFolder));
    while (QApplication::overrideCursor() != nullptr) {
        QApplication::restoreOverrideCursor();
    }
}

void ZipInstallerTest::install(User& user, const QString& archive) const
{
    const DialogDriver driver([&user](QDialog* dialog) { return user.answer(dialog); });
    DownloadManager engine;
    engine.runInstaller(archive);
}

void ZipInstallerTest::folderIsAskedFor_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("zip") << "package.zip";
    QTest::newRow("without a dot") << "packagezip";
    QTest::newRow("the letters alone") << "zip";
    QTest::newRow("compound") << "package.mpkg.zip";
    QTest::newRow("letters") << QString::fromUtf8("K\xc3\xa4mera 1.zip");
    QTest::newRow("a place marker") << "%1 %2.zip";
}

void ZipInstallerTest::folderIsAskedFor()
{
    QFETCH(QString, file);
    User user;
    user.rejectsFolder = true;
    install(user, path(file));
    QCOMPARE(user.folderTitle, QString("Select Installation Path for '") + file + "'");
    QCOMPARE(user.offeredFolder, QCoreApplication::applicationDirPath());
    QCOMPARE(user.folderAcceptLabel, usualAcceptLabel());
    QVERIFY(!user.folderHasParent);
}

void ZipInstallerTest::withoutAFolderNothingHappens()
{
    const QStringList before = temporaryFolders();
    User user;
    user.rejectsFolder = true;
    install(user, writeArchive(path("package.zip"), m_archive));
    QCOMPARE(temporaryFolders(), before);
    QCOMPARE(user.progressLabel, QString());
    QVERIFY(QApplication::overrideCursor() == nullptr);
}

void ZipInstallerTest::progressNamesTheArchive()
{
    User user;
    const QString archive = writeArchive(path("package.zip"), slowArchive());
    install(user, archive);
    QCOMPARE(user.progressLabel, "Unpacking '" + archive + "'");
    QVERIFY(!user.progressHasParent);
}

// The cursor stays as it is: on success there is nobody left to see it.
void ZipInstallerTest::failingStartReturnsSilently()
{
    const QStringList before = temporaryFolders();
    User user;
    install(user, writeArchive(path("package.zip"), m_archive));
    QVERIFY(user.boxes.seen().isEmpty());
    QCOMPARE(temporaryFolders().size(), before.size() + 1);
    QVERIFY(QApplication::overrideCursor() != nullptr);
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QVERIFY(QFile::exists(path("package.zip")));
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        QVERIFY(qobject_cast<QProgressDialog*>(widget) == nullptr);
    }
}

void ZipInstallerTest::cancelLeavesTheFolder()
{
    writeArchive(path("package.zip"), slowArchive());
    installArgumentWriter(path("work/sh")); // would tell if the process were replaced
    const QStringList before = temporaryFolders();
    User user;
    user.cancelsUnpacking = true;
    install(user, path("package.zip"));
    QVERIFY(!user.progressLabel.isEmpty());
    QStringList added = temporaryFolders();
    for (const QString& folder : before) {
        added.removeOne(folder);
    }
    QCOMPARE(added.size(), 1);
    const QDir unpacked(QDir::temp().filePath(added.first()));
    QVERIFY(unpacked.entryList(QDir::Files).size() < slowArchiveFiles);
    QVERIFY(QApplication::overrideCursor() != nullptr);
}

void ZipInstallerTest::brokenArchiveIsToldAndThrown_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no archive") << QByteArray("this is no archive");
    QTest::newRow("cut off") << ZipBuilder({file("a")}).bytes().chopped(30);
    QTest::newRow("climbs out") << ZipBuilder({file("../../evil")}).bytes();
}

void ZipInstallerTest::brokenArchiveIsToldAndThrown()
{
    QFETCH(QByteArray, bytes);
    const QString archive = writeArchive(path("package.zip"), bytes);
    User user;
    QString message;
    try {
        install(user, archive);
        QFAIL("no exception");
    } catch (const IOException& exception) {
        message = exception.message();
    }
    QVERIFY(!message.isEmpty());
    QCOMPARE(user.boxes.seen().size(), 1);
    const SeenBox box = user.boxes.seen().first();
    QCOMPARE(box.title, QString("Unpacking failed"));
    QCOMPARE(box.text, message);
    QCOMPARE(box.buttons, QStringList("OK"));
    QCOMPARE(box.icon, QMessageBox::Critical);
    QVERIFY(box.modal);
    QVERIFY(box.parent == nullptr);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        QVERIFY(qobject_cast<QProgressDialog*>(widget) == nullptr);
    }
}

// A host that calls the slot by its name, on the same thread, still gets the exception.
void ZipInstallerTest::exceptionCrossesAnInvocation()
{
    User user;
    const DialogDriver driver([&user](QDialog* dialog) { return user.answer(dialog); });
    DownloadManager engine;
    const QString archive = path("missing.zip");
    VX_VERIFY_THROWS(QMetaObject::invokeMethod(&engine, "runZipInstaller", Qt::DirectConnection,
                                               Q_ARG(QString, archive)),
                     IOException);
    QCOMPARE(user.boxes.seen().value(0).title, QString("Unpacking failed"));
}

void ZipInstallerTest::copyStepTakesTheProcess_data()
{
    QTest::addColumn<bool>("hasProgram");
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("target");
    QTest::newRow("program") << true << "package.zip"
                             << "target";
    QTest::newRow("no program") << false << "package.zip"
                                << "target";
    QTest::newRow("blanks and letters") << true << QString::fromUtf8("K\xc3\xa4mera 1.zip")
                                        << QString::fromUtf8("Mein Ordner \xe6\x97\xa5");
}

void ZipInstallerTest::copyStepTakesTheProcess()
{
    QFETCH(bool, hasProgram);
    QFETCH(QString, archive);
    QFETCH(QString, target);
    const QString program = QString::fromUtf8("b\xc3\xaen/my program");
    const ZipEntry entry = inUtf8(file(program.toUtf8(), "#!", hasProgram ? 0755 : 0644));
    writeArchive(path(archive), ZipBuilder({entry, file("readme.txt")}).bytes());
    QVERIFY(QDir(m_folder->path()).mkdir(target));
    QVERIFY(QDir(m_folder->path()).mkdir("tmp"));
    installArgumentWriter(path("work/sh"));

    const ChildEnd end =
        runChild({path(archive), path(target)}, path("work"), {{"TMPDIR", path("tmp")}});
    QCOMPARE(end.exitCode, 0);
    const QStringList unpacked = QDir(path("tmp")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCOMPARE(unpacked.size(), 1);
    const QByteArray folder = QFile::encodeName(path("tmp/") + unpacked.first());
    const QString started =
        hasProgram ? path(target + "/" + program) : QCoreApplication::applicationFilePath();
    QCOMPARE(end.arguments.size(), 10);
    QCOMPARE(end.arguments.at(0), QByteArray("sh"));
    QCOMPARE(end.arguments.at(1), QByteArray("cp"));
    QCOMPARE(end.arguments.at(2), QByteArray("-fr"));
    QCOMPARE(end.arguments.at(3), folder);
    // The bytes of the 16-bit text, up to the first that is zero.
    const QString install = path(target);
    QCOMPARE(end.arguments.at(4), QByteArray(reinterpret_cast<const char*>(install.utf16())));
    QCOMPARE(end.arguments.at(5), QByteArray("&&rm"));
    QCOMPARE(end.arguments.at(6), QByteArray("-fr"));
    QCOMPARE(end.arguments.at(7), folder);
    QCOMPARE(end.arguments.at(8), QByteArray("&&"));
    QCOMPARE(end.arguments.at(9), started.toLocal8Bit());
    QVERIFY(QFile::exists(path("tmp/") + unpacked.first() + "/readme.txt"));
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    QCOMPARE(end.arguments.at(4), QByteArray("/"));
#endif
}

void ZipInstallerTest::temporaryFolderMayHaveAnyName()
{
    const QString temporary = path(QString::fromUtf8("Zwischen ablage \xc3\xa4\xe6\x97\xa5"));
    QVERIFY(QDir().mkdir(temporary));
    writeArchive(path("package.zip"), m_archive);
    installArgumentWriter(path("work/sh"));
    const ChildEnd end =
        runChild({path("package.zip"), path("work")}, path("work"), {{"TMPDIR", temporary}});
    QCOMPARE(end.exitCode, 0);
    QVERIFY(end.arguments.value(3).startsWith(QFile::encodeName(temporary + "/")));
    QCOMPARE(end.arguments.value(7), end.arguments.value(3));
    QCOMPARE(end.arguments.value(9), QFile::encodeName(path("work/bin/program")));
}

int main(int argc, char** argv)
{
    if (isChild(argc, argv)) {
        return installInChild(argc, argv);
    }
    return vx::test::runTest(argc, argv, []() -> QObject* { return new ZipInstallerTest; });
}
#include "tst_ZipInstaller.moc"
