#include <QtTest>

#include "host/FileFormatsZip/Unzipper.h"
#include "host/IO/FileUtils.h"
#include "tests/download/EngineEvents.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

/** The path that a host returns for a temporary folder, which need not exist. */
QString givenFolder;

} // namespace

// Goes before the one in the library, which it stands for.
QString FileUtils::createTempDir()
{
    return givenFolder;
}

class UnpackingFolderTest : public QObject
{
    Q_OBJECT

private slots:
    void missingFolderIsMade();
};

void UnpackingFolderTest::missingFolderIsMade()
{
    const QTemporaryDir surroundings;
    const QString archive = surroundings.filePath("p.zip");
    FileUtils::writeBytes(ZipBuilder({file("a.txt", "one")}).bytes(), archive);
    givenFolder = surroundings.filePath("new");
    const LogCapture log;
    EngineProbe engine;
    const EngineEvents events(&engine);
    engine.unzipPackage(archive);
    const QScopedPointer<Unzipper> job(engine.unzipper);
    QVERIFY(QDir(givenFolder).exists());
    QCOMPARE(log.count(1, "DownloadManager::installPackage() -> trying to extract " + archive +
                              " to " + givenFolder),
             1);
    QCOMPARE(log.lines(3), QStringList());
    QTRY_COMPARE(events.list, QStringList("unzippingDone"));
    QCOMPARE(events.fileName, givenFolder);
    QCOMPARE(FileUtils::readBytes(givenFolder + "/a.txt"), QByteArray("one"));
}

VX_TEST_MAIN(UnpackingFolderTest)
#include "tst_UnpackingFolder.moc"
