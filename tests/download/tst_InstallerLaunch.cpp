#include <QtTest>

#include "host/CoreQt/ExceptionQt.h"
#include "host/CoreQt/IOException.h"
#include "tests/download/ChildProcess.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"

using namespace vx;
using namespace vx::test;

namespace {

// Of the child, where nothing has replaced it.
constexpr int stillAlive = 7;

int startUpdateInChild(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList texts = childArguments();
    DownloadManager::startUpdate(texts.value(0), texts.value(1), texts.value(2), texts.value(3));
    return stillAlive;
}

} // namespace

class InstallerLaunchTest : public QObject
{
    Q_OBJECT

private slots:
    void helperTakesTheProcess_data();
    void helperTakesTheProcess();
    void failingStartReturns_data();
    void failingStartReturns();
    void otherInstallersEndInAnException_data();
    void otherInstallersEndInAnException();
    void exceptionReachesACallerByName();
};

void InstallerLaunchTest::helperTakesTheProcess_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<QString>("oldFolder");
    QTest::addColumn<QString>("newFolder");
    QTest::addColumn<QString>("program");
    QTest::newRow("plain") << "UpdateInstaller"
                           << "/opt/app"
                           << "/tmp/new"
                           << "App";
    QTest::newRow("nothing unpacked") << "UpdateInstaller"
                                      << "/opt/app"
                                      << ""
                                      << "App";
    QTest::newRow("all empty") << "UpdateInstaller"
                               << ""
                               << ""
                               << "";
    QTest::newRow("blanks") << "Update Installer"
                            << "/opt/my app"
                            << " "
                            << "My App";
    QTest::newRow("letters") << QString::fromUtf8("\xc3\x9c"
                                                  "berbringer \xe6\x97\xa5")
                             << QString::fromUtf8("/opt/K\xc3\xa4mera")
                             << QString::fromUtf8("/tmp/\xd0\xbd\xd0\xbe\xd0\xb2\xd1\x8b\xd0\xb9")
                             << QString::fromUtf8("Za\xc5\xbc\xc3\xb3\xc5\x82\xc4\x87");
    QTest::newRow("for a shell") << "Helper"
                                 << "$HOME;`id`"
                                 << "-newDir"
                                 << "a'b\"c\\d *";
    QTest::newRow("line feed") << "Helper"
                               << "/opt/a\nb"
                               << "/tmp"
                               << "App";
}

void InstallerLaunchTest::helperTakesTheProcess()
{
    QFETCH(QString, helper);
    QFETCH(QString, oldFolder);
    QFETCH(QString, newFolder);
    QFETCH(QString, program);
    const QTemporaryDir folder;
    const QString path = folder.filePath(helper);
    installArgumentWriter(path);
    const ChildEnd end = runChild({path, oldFolder, newFolder, program}, folder.path());
    QCOMPARE(end.exitCode, 0);
    const QByteArrayList expected{
        path.toLocal8Bit(),      "-oldDir", oldFolder.toLocal8Bit(), "-newDir",
        newFolder.toLocal8Bit(), "-exe",    program.toLocal8Bit()};
    QCOMPARE(end.arguments, expected);
}

void InstallerLaunchTest::failingStartReturns_data()
{
    QTest::addColumn<QString>("helper");
    QTest::newRow("missing") << "none";
    QTest::newRow("not executable") << "text";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("empty") << "";
}

void InstallerLaunchTest::failingStartReturns()
{
    QFETCH(QString, helper);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("folder"));
    QFile text(folder.filePath("text"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    const ChildEnd end = runChild({helper, "/opt/app", "", "App"}, folder.path());
    QCOMPARE(end.exitCode, stillAlive);
    QCOMPARE(end.arguments, QByteArrayList());
    QCOMPARE(end.output, QByteArray());
}

void InstallerLaunchTest::otherInstallersEndInAnException_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("exe") << "/tmp/setup.exe";
    QTest::newRow("capitals") << "/tmp/package.ZIP";
    QTest::newRow("mixed") << "/tmp/package.Zip";
    QTest::newRow("mpkg") << "/tmp/package.mpkg";
    QTest::newRow("a blank behind") << "/tmp/package.zip ";
    QTest::newRow("zip inside") << "/tmp/package.zip.gz";
    QTest::newRow("no suffix") << "/tmp/zi";
    QTest::newRow("empty") << "";
}

void InstallerLaunchTest::otherInstallersEndInAnException()
{
    QFETCH(QString, file);
    DownloadManager engine;
    QString message;
    try {
        engine.runInstaller(file);
    } catch (const IOException&) {
        QFAIL("an exception of the archive reader's kind");
    } catch (const ExceptionQt& exception) {
        message = exception.message();
    }
    QCOMPARE(message, QString("execl() failed"));
}

void InstallerLaunchTest::exceptionReachesACallerByName()
{
    DownloadManager engine;
    VX_VERIFY_THROWS(QMetaObject::invokeMethod(&engine, "runInstaller", Qt::DirectConnection,
                                               Q_ARG(QString, "/tmp/setup.exe")),
                     ExceptionQt);
}

int main(int argc, char** argv)
{
    if (isChild(argc, argv)) {
        return startUpdateInChild(argc, argv);
    }
    return vx::test::runTest(argc, argv, []() -> QObject* { return new InstallerLaunchTest; });
}
#include "tst_InstallerLaunch.moc"
