#include <QtTest>

#include "tests/download/EngineProbe.h"
#include "tests/support/TestMain.h"

using namespace vx;
using vx::test::EngineProbe;

namespace {

QString writeFile(const QTemporaryDir& folder, int size)
{
    QFile file(folder.filePath(QString::fromUtf8("p\xc3\xa4ket 1.zip")));
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray(size, 'x'));
    return file.fileName();
}

} // namespace

class PendingInstallationTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingAtFirst();
    void recordIsTakenWithItsFlag_data();
    void recordIsTakenWithItsFlag();
    void fourTextsLeaveTheRest();
    void applicationMayBeLeftOut();
    void neitherFormUndoesTheOther();
    void packageIsChangedInPlace();
    void fileMustHaveTheSize_data();
    void fileMustHaveTheSize();
    void fileMustBeThere();
    void folderIsNoPackage();
    void unknownSizeMeetsAnEmptyFile();
};

void PendingInstallationTest::nothingAtFirst()
{
    const EngineProbe engine;
    QVERIFY(!engine.hasInstallPackage());
    QCOMPARE(engine.installPackage().localFile, QString());
    QCOMPARE(engine.pendingInstall.updaterExe, QString());
    QCOMPARE(engine.pendingInstall.targetFolder, QString());
    QCOMPARE(engine.pendingInstall.applicationExe, QString());
}

void PendingInstallationTest::recordIsTakenWithItsFlag_data()
{
    QTest::addColumn<bool>("own");
    QTest::addColumn<bool>("given");
    QTest::newRow("set") << false << true;
    QTest::newRow("cleared") << true << false;
}

void PendingInstallationTest::recordIsTakenWithItsFlag()
{
    QFETCH(bool, own);
    QFETCH(bool, given);
    PackageInfo info("Application", "camera", "1.2", "BETA");
    info.confirmInstall = own;
    info.localFile = "/tmp/p.zip";
    info.fileSize = 77;
    EngineProbe engine;
    engine.installLater(info, given);
    QCOMPARE(engine.installPackage().confirmInstall, given);
    QCOMPARE(engine.installPackage().name, QString("camera"));
    QCOMPARE(engine.installPackage().localFile, QString("/tmp/p.zip"));
    QCOMPARE(engine.installPackage().fileSize, quintptr(77));
    QCOMPARE(info.confirmInstall, own);
}

void PendingInstallationTest::fourTextsLeaveTheRest()
{
    EngineProbe engine;
    PackageInfo info("Application", "camera");
    info.fileSize = 77;
    engine.installLater(info, true);
    engine.installLater("/tmp/q.zip", "/opt/updater", "/opt/app", "/opt/app/run");
    QCOMPARE(engine.installPackage().localFile, QString("/tmp/q.zip"));
    QCOMPARE(engine.installPackage().name, QString("camera"));
    QCOMPARE(engine.installPackage().fileSize, quintptr(77));
    QVERIFY(engine.installPackage().confirmInstall);
    QCOMPARE(engine.pendingInstall.updaterExe, QString("/opt/updater"));
    QCOMPARE(engine.pendingInstall.targetFolder, QString("/opt/app"));
    QCOMPARE(engine.pendingInstall.applicationExe, QString("/opt/app/run"));
}

void PendingInstallationTest::applicationMayBeLeftOut()
{
    EngineProbe engine;
    engine.installLater("/a", "/b", "/c", "/d");
    engine.installLater("/e", "/f", "/g");
    QCOMPARE(engine.pendingInstall.applicationExe, QString());
    QCOMPARE(engine.pendingInstall.targetFolder, QString("/g"));
}

void PendingInstallationTest::neitherFormUndoesTheOther()
{
    EngineProbe engine;
    engine.installLater("/a", "/b", "/c", "/d");
    engine.installLater(PackageInfo("Application", "camera"), false);
    QCOMPARE(engine.installPackage().localFile, QString());
    QCOMPARE(engine.pendingInstall.updaterExe, QString("/b"));
    QCOMPARE(engine.pendingInstall.targetFolder, QString("/c"));
    QCOMPARE(engine.pendingInstall.applicationExe, QString("/d"));
}

void PendingInstallationTest::packageIsChangedInPlace()
{
    EngineProbe engine;
    engine.installPackage().localFile = "/changed";
    const EngineProbe& constant = engine;
    QCOMPARE(constant.installPackage().localFile, QString("/changed"));
    QCOMPARE(&constant.installPackage(), &engine.installPackage());
}

void PendingInstallationTest::fileMustHaveTheSize_data()
{
    QTest::addColumn<quint64>("size");
    QTest::addColumn<bool>("ready");
    QTest::newRow("exact") << quint64(1000) << true;
    QTest::newRow("file too short") << quint64(1001) << false;
    QTest::newRow("file too long") << quint64(999) << false;
    QTest::newRow("unknown") << quint64(0) << false;
    QTest::newRow("the largest number") << ~quint64(0) << false;
}

void PendingInstallationTest::fileMustHaveTheSize()
{
    QFETCH(quint64, size);
    const QTemporaryDir folder;
    PackageInfo info;
    info.localFile = writeFile(folder, 1000);
    info.fileSize = static_cast<quintptr>(size);
    EngineProbe engine;
    engine.installLater(info, false);
    QTEST(engine.hasInstallPackage(), "ready");
}

void PendingInstallationTest::fileMustBeThere()
{
    const QTemporaryDir folder;
    PackageInfo info;
    info.localFile = writeFile(folder, 10);
    info.fileSize = 10;
    EngineProbe engine;
    engine.installLater(info, false);
    QVERIFY(engine.hasInstallPackage());
    QVERIFY(QFile::remove(info.localFile));
    QVERIFY(!engine.hasInstallPackage());
    engine.installPackage().localFile.clear();
    engine.installPackage().fileSize = 0;
    QVERIFY(!engine.hasInstallPackage());
}

void PendingInstallationTest::folderIsNoPackage()
{
    const QTemporaryDir folder;
    PackageInfo info;
    info.localFile = folder.path();
    info.fileSize = static_cast<quintptr>(QFileInfo(folder.path()).size());
    EngineProbe engine;
    engine.installLater(info, false);
    QVERIFY(!engine.hasInstallPackage());
}

void PendingInstallationTest::unknownSizeMeetsAnEmptyFile()
{
    const QTemporaryDir folder;
    EngineProbe engine;
    engine.installLater(writeFile(folder, 1), "/updater", "/target");
    QVERIFY(!engine.hasInstallPackage());
    engine.installLater(writeFile(folder, 0), "/updater", "/target");
    QVERIFY(engine.hasInstallPackage());
}

VX_TEST_MAIN(PendingInstallationTest)
#include "tst_PendingInstallation.moc"
