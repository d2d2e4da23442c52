// A program of its own: what it gives up, the process does not get back.

#include <QTemporaryDir>
#include <QtTest>

#include "tests/client/ClientFixture.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/FileRights.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

class ClientUnreadableBundleTest : public QObject
{
    Q_OBJECT

private slots:
    void isNotOpened();
};

void ClientUnreadableBundleTest::isNotOpened()
{
    QVERIFY(submitToFileRights());
    QTemporaryDir folder;
    const QString locked = folder.filePath("Locked.mpkg");
    QVERIFY(QDir(folder.path()).mkdir("Locked.mpkg"));
    QVERIFY(QDir(folder.path()).mkdir("Open.mpkg"));
    QVERIFY(QFile::setPermissions(locked, QFile::WriteOwner | QFile::ExeOwner));
    ClientFixture fixture;
    const UrlRecorder desktop;
    QVERIFY(QMetaObject::invokeMethod(&fixture.start(), "unzippedMPKGPackage", Qt::DirectConnection,
                                      Q_ARG(QString, folder.path())));
    QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(desktop.opened().size(), 1);
    QCOMPARE(QFileInfo(desktop.opened().first().toLocalFile()).fileName(), QString("Open.mpkg"));
    QVERIFY(fixture.log.lines(3).isEmpty());
}

VX_TEST_MAIN(ClientUnreadableBundleTest)
#include "tst_ClientUnreadableBundle.moc"
