#include <QtTest>

#include <csignal>
#include <functional>

#include "download/DownloadManager.h"
#include "host/CoreQt/IOException.h"
#include "host/IO/FileUtils.h"
#include "tests/download/ChildProcess.h"
#include "tests/support/BoxWatcher.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

/** What the user's choice of a folder and the creation of a temporary one throw, if anything. */
std::function<void()> dialogFault;
std::function<void()> folderFault;

// Like markup, as the name of a file may be.
const QString reason("<b>because</b>");

void throwIOException()
{
    throw IOException(reason);
}

void throwExceptionQt()
{
    throw ExceptionQt(reason);
}

void throwStray()
{
    throw 1;
}

/** What becomes of an installation, by the type of its exception. */
QString install()
{
    DownloadManager engine;
    try {
        engine.runInstaller("package.zip");
    } catch (const IOException& exception) {
        return "IOException " + exception.message();
    } catch (const ExceptionQt& exception) {
        return "ExceptionQt " + exception.message();
    }
    return "no exception";
}

constexpr int caught = 8;

/** The child's part: installs while the host throws what is no ExceptionQt. */
int installInChild(int argc, char** argv)
{
    const QApplication application(argc, argv);
    (childArguments().contains("dialog") ? dialogFault : folderFault) = throwStray;
    try {
        install();
    } catch (...) {
        return caught;
    }
    return 0;
}

} // namespace

// These two go before those in the library, which they stand for.
bool FileUtils::openDirectoryDialog(QString&, const QString&, const QString&, QWidget*)
{
    if (dialogFault) {
        dialogFault();
    }
    return true;
}

QString FileUtils::createTempDir()
{
    if (folderFault) {
        folderFault();
    }
    return QString();
}

class ThrowingHostTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void failingFolderIsToldAndThrown();
    void onlyUnpackingTells_data();
    void onlyUnpackingTells();
    void otherExceptionsEndTheProcess_data();
    void otherExceptionsEndTheProcess();
};

void ThrowingHostTest::init()
{
    dialogFault = nullptr;
    folderFault = nullptr;
}

void ThrowingHostTest::failingFolderIsToldAndThrown()
{
    const BoxWatcher boxes;
    folderFault = throwIOException;
    QCOMPARE(install(), "IOException " + reason);
    QCOMPARE(boxes.seen().size(), 1);
    const SeenBox box = boxes.seen().first();
    QCOMPARE(box.title, QString("Unpacking failed"));
    QCOMPARE(box.text, reason);
    QCOMPARE(box.format, Qt::PlainText);
    QVERIFY(box.parent == nullptr);
}

void ThrowingHostTest::onlyUnpackingTells_data()
{
    QTest::addColumn<bool>("fromDialog");
    QTest::addColumn<bool>("isIOException");
    QTest::newRow("before it, of files") << true << true;
    QTest::newRow("before it, of anything") << true << false;
    QTest::newRow("within, of anything but files") << false << false;
}

// What else is thrown passes to the caller without a word to the user.
void ThrowingHostTest::onlyUnpackingTells()
{
    QFETCH(bool, fromDialog);
    QFETCH(bool, isIOException);
    const BoxWatcher boxes;
    (fromDialog ? dialogFault : folderFault) = isIOException ? throwIOException : throwExceptionQt;
    QCOMPARE(install(), (isIOException ? "IOException " : "ExceptionQt ") + reason);
    QCOMPARE(boxes.seen().size(), 0);
}

void ThrowingHostTest::otherExceptionsEndTheProcess_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("from the dialog") << "dialog";
    QTest::newRow("while unpacking") << "folder";
}

// What is not of ExceptionQt's kind must not reach a caller, who would not expect it.
void ThrowingHostTest::otherExceptionsEndTheProcess()
{
    QFETCH(QString, place);
    const ChildEnd end = runChild({place}, QDir::tempPath());
    QCOMPARE(end.signal, SIGABRT);
}

int main(int argc, char** argv)
{
    if (isChild(argc, argv)) {
        return installInChild(argc, argv);
    }
    return vx::test::runTest(argc, argv, []() -> QObject* { return new ThrowingHostTest; });
}
#include "tst_ThrowingHost.moc"
