#include <QApplication>
#include <QMessageBox>
#include <QWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "download/DownloadManager.h"
#include "tests/client/InstallationFixture.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

const QString unzippedLine =
    QStringLiteral("SoftwareUpdateClient::unzippedMPKGPackage() -> unzipped succesfully to ");
const QString bundleLine = QStringLiteral("SoftwareUpdateClient::installMPKGPackage ");
const QString cannotStartLine =
    QStringLiteral("SoftwareUpdateClient::installMPKGPackage, can't start package installer!");

QString unzippedFolder(const LogCapture& log)
{
    const QStringList lines = log.lines(1).filter(unzippedLine);
    return lines.isEmpty() ? QString() : lines.last().section(unzippedLine, 1);
}

QStringList fileNames(const QList<QUrl>& urls)
{
    QStringList names;
    for (const QUrl& url : urls) {
        names << QFileInfo(url.toLocalFile()).fileName();
    }
    names.sort();
    return names;
}

/** Counts the engines that were left to the event loop to delete while the object lives. */
class DeletedManagers : public QObject
{
public:
    DeletedManagers() { qApp->installEventFilter(this); }

    int count() const { return m_count; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::DeferredDelete && qobject_cast<DownloadManager*>(watched)) {
            ++m_count;
        }
        return false;
    }

private:
    int m_count = 0;
};

/** A folder of the temporary ones that holds what an archive unpacks to. */
QString folderWith(const QString& fileName)
{
    const QDir temporary(QDir::tempPath());
    for (const QString& folder : temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (QFile::exists(temporary.filePath(folder) + '/' + fileName)) {
            return temporary.filePath(folder);
        }
    }
    return QString();
}

} // namespace

class ClientInstallersTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void onlyLogged_data();
    void onlyLogged();
    void unknownType_data();
    void unknownType();
    void unknownTypeWithoutAClient();
    void finishedWithoutAnInstallation();
    void programIsStarted();
    void bundles_data();
    void bundles();
    void bundlesAreOpenedAsTheyLie();
    void openingStopsAtTheFirstFailure();
    void bundlesOfAFolderThatIsGone();
    void damagedArchive();
    void managerIsReused();
    void eachInstallationHasItsOwnManager();
    void restartLater_data();
    void restartLater();
    void restartBoxUsesParentAndFlags();
    void clientDestroyedBeforeTheRestartBox();
    void helperMissing();
};

void ClientInstallersTest::cleanup()
{
    QDir temporary(QDir::tempPath());
    for (const QString& folder : temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QDir(temporary.filePath(folder)).removeRecursively();
    }
}

void ClientInstallersTest::onlyLogged_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("operation");
    QTest::newRow("msi") << "mini-12.msi"
                         << "installMSIPackage";
    QTest::newRow("deb") << "mini-12.deb"
                         << "installDEBPackage";
    QTest::newRow("rpk") << "mini-12.rpk"
                         << "installRPKPackage";
    QTest::newRow("tar.gz") << "mini-12.tar.gz"
                            << "installTARGZPackage";
    QTest::newRow("blanks and letters")
        << QString::fromUtf8("M 15 größer.deb") << "installDEBPackage";
}

void ClientInstallersTest::onlyLogged()
{
    QFETCH(QString, fileName);
    QFETCH(QString, operation);
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install(fileName, "content");
    QTRY_VERIFY(!availableDialog());
    QVERIFY(fixture.log.lines(1).last().contains("SoftwareUpdateClient::" + operation +
                                                 "() -> trying to run " + QDir::tempPath()));
    QVERIFY(QFile::exists(folderWith(fileName) + '/' + fileName));
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QVERIFY(desktop.opened().isEmpty());
    QVERIFY(fixture.log.lines(3).isEmpty());
}

void ClientInstallersTest::unknownType_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("listed but not installed") << "mini-12.dmg";
    QTest::newRow("in another case") << "mini-12.MPKG";
    QTest::newRow("anything") << "mini-12.bin";
}

void ClientInstallersTest::unknownType()
{
    QFETCH(QString, fileName);
    QWidget window;
    InstallationFixture fixture(&window);
    fixture.client().setWindowFlags(Qt::Dialog | Qt::WindowStaysOnTopHint);
    fixture.boxes.willClick("Proceed");
    fixture.boxes.willDo([&fixture](QMessageBox* box) {
        QVERIFY(!availableDialog() || !availableDialog()->isVisible());
        QVERIFY(QFile::exists(fixture.downloadPath()));
        QTest::keyClick(box, Qt::Key_Return);
    });
    fixture.serve("/files/" + fileName, QByteArray("content"));
    fixture.openList({"http://download.example.com/files/" + fileName}, 7);
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QTRY_VERIFY(!availableDialog());

    const SeenBox box = fixture.boxes.seen().last();
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.title, QStringLiteral("Download Error"));
    QCOMPARE(box.text, QStringLiteral("Unknown package type! Installation cannot proceed!"));
    QCOMPARE(box.buttons, QStringList{"OK"});
    QCOMPARE(box.parent, &window);
    QVERIFY(box.flags & Qt::WindowStaysOnTopHint);
    QVERIFY(!QFile::exists(fixture.downloadPath()));
    QVERIFY(fixture.log.lines(3).isEmpty());
}

void ClientInstallersTest::unknownTypeWithoutAClient()
{
    InstallationFixture fixture;
    fixture.boxes.willClick("Proceed");
    fixture.boxes.willDo([&fixture](QMessageBox*) { fixture.deleteClient(); });
    fixture.serve("/files/mini-12.bin", QByteArray("content"));
    fixture.openList({"http://download.example.com/files/mini-12.bin"}, 7);
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 3);
    QVERIFY(QFile::exists(folderWith("mini-12.bin") + "/mini-12.bin"));
}

void ClientInstallersTest::finishedWithoutAnInstallation()
{
    ClientFixture fixture;
    fixture.start().call("downloadFinished");
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QVERIFY(fixture.log.contains(
        3, "SoftwareUpdateClient::abortDownload() -> could not remove downloaded files: "));
}

void ClientInstallersTest::programIsStarted()
{
    InstallationFixture fixture;
    const QString result = QDir::tempPath() + "/result of the program";
    const QByteArray program = "#!/bin/sh\necho \"$# $0\" > '" + result.toUtf8() + ".part'\nmv '" +
                               result.toUtf8() + ".part' '" + result.toUtf8() + "'\n";
    // A download is no program by itself: permission to run it is given before it has ended.
    fixture.server.setHandler([program](const ServedRequest&) {
        const QString folder = folderWith("set up.exe");
        QFile::setPermissions(folder + "/set up.exe",
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ServedReply reply;
        reply.body = program;
        return reply;
    });
    fixture.openList({"http://download.example.com/files/set up.exe"}, program.size());
    fixture.proceedWith(0);
    QTRY_VERIFY(QFile::exists(result));
    QFile file(result);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "0 " + fixture.downloadPath().toUtf8() + '\n');
    QVERIFY(fixture.log.contains(1, "SoftwareUpdateClient::installEXEPackage() -> trying to run " +
                                        fixture.downloadPath()));
    QCOMPARE(fixture.boxes.seen().size(), 1);
    file.remove();
}

void ClientInstallersTest::bundles_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QStringList>("opened");
    const ZipEntry first = file("First.mpkg/Contents/x");
    const ZipEntry second = file(QByteArray("Zweites Größe.mpkg/Contents/x"));
    QTest::newRow("one") << ZipBuilder{first}.bytes() << QStringList{"First.mpkg"};
    QTest::newRow("two") << ZipBuilder{first, inUtf8(second)}.bytes()
                         << QStringList{"First.mpkg", QString::fromUtf8("Zweites Größe.mpkg")};
    QTest::newRow("none") << ZipBuilder{file("readme.txt")}.bytes() << QStringList();
    QTest::newRow("a file of that name is not a bundle")
        << ZipBuilder{file("Flat.mpkg"), first}.bytes() << QStringList{"First.mpkg"};
    QTest::newRow("a link is not a bundle")
        << ZipBuilder{first, softLink("Link.mpkg", "First.mpkg")}.bytes()
        << QStringList{"First.mpkg"};
    QTest::newRow("a hidden one is not listed")
        << ZipBuilder{file(".Hidden.mpkg/x"), first}.bytes() << QStringList{"First.mpkg"};
    QTest::newRow("deeper ones are not looked for")
        << ZipBuilder{file("folder/Deep.mpkg/x")}.bytes() << QStringList();
    QTest::newRow("other folders") << ZipBuilder{file("First.pkg/x")}.bytes() << QStringList();
}

void ClientInstallersTest::bundles()
{
    QFETCH(QByteArray, archive);
    QFETCH(QStringList, opened);
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install("M 15.mpkg.zip", archive);
    QTRY_VERIFY(fixture.log.lines(1).join('\n').contains(unzippedLine));
    const QString folder = unzippedFolder(fixture.log);
    QVERIFY(folder.startsWith(QDir::tempPath() + '/'));
    QCOMPARE(fileNames(desktop.opened()), opened);
    for (const QUrl& url : desktop.opened()) {
        QCOMPARE(url.scheme(), QStringLiteral("file"));
        QVERIFY(QFileInfo(url.toLocalFile()).isDir());
        // The log is narrow, and its lines are read as UTF-8 here.
        const QString logged = QString::fromUtf8(url.toLocalFile().toLatin1());
        QVERIFY(fixture.log.contains(1, bundleLine + logged));
    }
    QCOMPARE(fixture.log.lines(1).filter(bundleLine).size(), opened.size());
    QVERIFY(fixture.log.lines(3).isEmpty());
    QVERIFY(!QFile::exists(fixture.downloadPath()));
    QCOMPARE(fixture.boxes.seen().size(), 1);
}

void ClientInstallersTest::bundlesAreOpenedAsTheyLie()
{
    ZipBuilder archive;
    for (int i = 0; i < 20; ++i) {
        archive.add(file(QByteArray::number(i * 7 % 20) + ".mpkg/x"));
    }
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install("many.mpkg.zip", archive.bytes());
    QTRY_COMPARE(desktop.opened().size(), 20);
    QStringList opened;
    for (const QUrl& url : desktop.opened()) {
        opened << url.toLocalFile();
    }
    QStringList lying;
    QDirIterator entries(unzippedFolder(fixture.log), QDir::Dirs | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        lying << entries.next();
    }
    QCOMPARE(opened, lying);
}

void ClientInstallersTest::openingStopsAtTheFirstFailure()
{
    // Without a handler this platform opens nothing.
    InstallationFixture fixture;
    fixture.install("mini-12.mpkg.zip", ZipBuilder{file("A.mpkg/x"), file("B.mpkg/x")}.bytes());
    QTRY_VERIFY(fixture.log.contains(3, cannotStartLine));
    QCOMPARE(fixture.log.lines(3).size(), 1);
    QCOMPARE(fixture.log.lines(1).filter(bundleLine).size(), 1);
    QCOMPARE(fixture.boxes.seen().size(), 1);
}

void ClientInstallersTest::bundlesOfAFolderThatIsGone()
{
    ClientFixture fixture;
    const UrlRecorder desktop;
    const QString gone = QDir::tempPath() + "/gone";
    QVERIFY(QMetaObject::invokeMethod(&fixture.start(), "unzippedMPKGPackage", Qt::DirectConnection,
                                      Q_ARG(QString, gone)));
    QVERIFY(fixture.log.contains(1, unzippedLine + gone));
    QCOMPARE(fixture.log.lines(1).size(), 1);
    QVERIFY(desktop.opened().isEmpty());
}

void ClientInstallersTest::damagedArchive()
{
    InstallationFixture fixture;
    fixture.install("mini-12.mpkg.zip", "no archive at all");
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QVERIFY(
        fixture.boxes.seen().last().text.startsWith("Downloaded file could not be unpacked:<br>"));
    QVERIFY(unzippedFolder(fixture.log).isNull());
    QVERIFY(QFile::exists(fixture.downloadPath()));
}

void ClientInstallersTest::managerIsReused()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    // A type for which nothing is run leaves a downloaded file to work with.
    fixture.install("mini-12.msi", ZipBuilder{file("A.mpkg/x")}.bytes());
    QTRY_VERIFY(!availableDialog());
    fixture.client().installMPKGPackage();
    fixture.client().installMPKGPackage();
    QTRY_COMPARE(fixture.log.lines(1).filter(unzippedLine).size(), 2);
    QCOMPARE(desktop.opened().size(), 2);
    QCOMPARE(desktop.opened().first(), desktop.opened().last());
    QCOMPARE(fixture.log.lines(1).filter("trying to extract").size(), 2);
}

void ClientInstallersTest::eachInstallationHasItsOwnManager()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    const DeletedManagers deleted;
    fixture.install("a.mpkg.zip", ZipBuilder{file("A.mpkg/x")}.bytes());
    QTRY_COMPARE(fileNames(desktop.opened()), QStringList{"A.mpkg"});
    QTRY_COMPARE(deleted.count(), 1);
    QTRY_VERIFY(!availableDialog());
    fixture.install("b.mpkg.zip", ZipBuilder{file("B.mpkg/x")}.bytes());
    QTRY_COMPARE(fileNames(desktop.opened()), QStringList({"A.mpkg", "B.mpkg"}));
    QTRY_COMPARE(deleted.count(), 2);
    QCOMPARE(fixture.log.lines(1).filter(unzippedLine).size(), 2);
}

void ClientInstallersTest::restartLater_data()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"Restart later", "Escape"}) {
        QTest::newRow(how) << how;
    }
}

void ClientInstallersTest::restartLater()
{
    QFETCH(QString, how);
    InstallationFixture fixture;
    fixture.boxes.willClick("Proceed");
    if (how == "Escape") {
        fixture.boxes.willPressEscape();
    } else {
        fixture.boxes.willClick(how);
    }
    const QByteArray archive = ZipBuilder{file("app/program")}.bytes();
    fixture.serve("/files/m 15.zip", archive);
    fixture.openList({"http://download.example.com/files/m 15.zip"}, archive.size());
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    const SeenBox box = fixture.boxes.seen().last();
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.title, QStringLiteral("Restart required"));
    QCOMPARE(box.text, QStringLiteral("Please restart your application to finish the installation "
                                      "process."));
    QCOMPARE(box.buttons, QStringList({"Restart later", "Restart now"}));
    QCOMPARE(box.parent, nullptr);
    const QString unzipping = "SoftwareUpdateClient::installZipPackage() -> unzipping ";
    QVERIFY(fixture.log.contains(1, unzipping + fixture.downloadPath() + " to "));
    const QStringList steps = fixture.log.lines(1).filter(QRegularExpression(
        "DownloadManager::installPackage|SoftwareUpdateClient::installZipPackage"));
    QCOMPARE(steps.size(), 2);
    QVERIFY(steps.first().contains("trying to extract " + fixture.downloadPath()));
    QVERIFY(steps.last().contains(unzipping));
    // Nobody is told, but the files are unpacked, and stay.
    QTRY_VERIFY(!folderWith("app/program").isEmpty());
    QTRY_VERIFY(!QFile::exists(fixture.downloadPath()));
    QCOMPARE(fixture.boxes.seen().size(), 2);
    QVERIFY(fixture.log.lines(3).isEmpty());
}

void ClientInstallersTest::restartBoxUsesParentAndFlags()
{
    QWidget window;
    InstallationFixture fixture(&window);
    fixture.client().setWindowFlags(Qt::Dialog | Qt::WindowStaysOnTopHint);
    fixture.install("mini-12.zip", ZipBuilder{file("program")}.bytes());
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QCOMPARE(fixture.boxes.seen().last().parent, &window);
    QVERIFY(fixture.boxes.seen().last().flags & Qt::WindowStaysOnTopHint);
}

void ClientInstallersTest::clientDestroyedBeforeTheRestartBox()
{
    InstallationFixture fixture;
    fixture.boxes.willClick("Proceed");
    fixture.boxes.willDo([&fixture](QMessageBox*) { fixture.deleteClient(); });
    fixture.boxes.willClick("Restart now");
    const QByteArray archive = ZipBuilder{file("program")}.bytes();
    fixture.serve("/files/mini-12.zip", archive);
    fixture.openList({"http://download.example.com/files/mini-12.zip"}, archive.size());
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 3);
    QVERIFY(fixture.log.lines(3).isEmpty());
}

void ClientInstallersTest::helperMissing()
{
    QWidget window;
    InstallationFixture fixture(&window);
    fixture.client().setWindowFlags(Qt::Dialog | Qt::WindowStaysOnTopHint);
    fixture.boxes.willClick("Proceed");
    fixture.boxes.willClick("Restart now");
    const QByteArray archive = ZipBuilder{file("program")}.bytes();
    fixture.serve("/files/mini-12.zip", archive);
    fixture.openList({"http://download.example.com/files/mini-12.zip"}, archive.size());
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 3);
    const SeenBox box = fixture.boxes.seen().last();
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.title, QStringLiteral("Installation failed"));
    QCOMPARE(box.text, QStringLiteral(
                           "Installation process failed. If problem persists try manual install."));
    QCOMPARE(box.buttons, QStringList{"OK"});
    QCOMPARE(box.parent, &window);
    QVERIFY(box.flags & Qt::WindowStaysOnTopHint);
    const QString folder = QCoreApplication::applicationDirPath();
    QCOMPARE(fixture.log.lines(3).size(), 1);
    QVERIFY(fixture.log.contains(3, "SoftwareUpdateClient::startInstallApplication() -> one of the "
                                    "following file/dir is missing: " +
                                        folder + "/UpdateInstaller or " + folder));
}

VX_TEST_MAIN(ClientInstallersTest)
#include "tst_ClientInstallers.moc"
