#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include <random>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/InstallationFixture.h"
#include "tests/client/SilentServer.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

QByteArray archive()
{
    ZipBuilder builder;
    for (int i = 0; i < 50; ++i) {
        builder.add(file("Setup.mpkg/" + QByteArray::number(i), QByteArray(1000, 'x')));
    }
    return builder.bytes();
}

/** Does what users, hosts and servers do, at moments of its own choosing. */
class Chance
{
public:
    explicit Chance(quint32 seed)
        : m_random(seed)
    {}

    int below(int limit) { return int(m_random() % quint32(limit)); }

    void letTimePass(int upTo)
    {
        QElapsedTimer clock;
        clock.start();
        const int milliseconds = below(upTo);
        do {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        } while (clock.elapsed() < milliseconds);
    }

    void act(InstallationFixture& fixture)
    {
        switch (below(9)) {
        case 0:
            fixture.client().checkForUpdate();
            break;
        case 1:
            fixture.client().checkForUpdate(below(4));
            break;
        case 2:
            fixture.client().queryForUpdate();
            break;
        case 3:
            fixture.client().call("updateAvailable");
            break;
        case 4:
            closeSomething();
            break;
        case 5:
            cutTheTime(fixture.client());
            break;
        case 6:
            redirect(fixture);
            break;
        default:
            download(fixture);
        }
    }

private:
    void closeSomething()
    {
        if (settingsDialog() && below(2) == 0) {
            settingsDialog()->accept();
        } else if (availableDialog()) {
            availableDialog()->reject();
        }
    }

    void cutTheTime(const TestClient& client)
    {
        if (client.requestTimer() && client.requestTimer()->isActive()) {
            client.requestTimer()->start(below(5));
        }
    }

    void redirect(InstallationFixture& fixture)
    {
        ServedReply reply;
        reply.status = 302;
        reply.headers.append(
            qMakePair(QByteArray("Location"), QByteArray("http://update.example.com/")));
        fixture.serve("/", reply);
        fixture.client().checkForUpdate();
    }

    void download(InstallationFixture& fixture)
    {
        ServedReply reply;
        reply.body = archive();
        reply.fault = below(3) == 0 ? ServedReply::Stall : ServedReply::NoFault;
        reply.bytesBeforeFault = 1000;
        reply.delayMs = below(20);
        fixture.serve("/files/mini-12.mpkg.zip", reply);
        const bool during = below(6) == 0;
        fixture.boxes.willDo([&fixture, during](QMessageBox* box) {
            if (during) {
                fixture.deleteClient();
            }
            box->done(1);
        });
        QMetaObject::invokeMethod(&fixture.client(), "installPackage", Q_ARG(int, 0));
    }

    std::mt19937 m_random;
};

} // namespace

class ClientDestructionTest : public QObject
{
    Q_OBJECT

private slots:
    void atAnyMoment_data();
    void atAnyMoment();
    void withinASignalOfItsDialog();
    void duringACheck();
    void duringADownload();
    void nothingIsWritten();
};

void ClientDestructionTest::atAnyMoment_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 40; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void ClientDestructionTest::atAnyMoment()
{
    QFETCH(quint32, seed);
    Chance chance(seed);
    QWidget window;
    const UrlRecorder desktop;
    InstallationFixture fixture(chance.below(2) == 0 ? &window : nullptr);
    fixture.openList({"http://download.example.com/files/mini-12.mpkg.zip"}, archive().size());
    const QPointer<TestClient> client = &fixture.client();
    for (int actions = chance.below(6); actions > 0 && client; --actions) {
        chance.act(fixture);
        chance.letTimePass(15);
    }
    fixture.deleteClient();
    chance.letTimePass(40);
    QVERIFY(!client);

    // What is left can still be used by the one in front of it.
    if (progressDialog()) {
        emit progressDialog()->canceled();
    }
    if (settingsDialog()) {
        QTest::mouseClick(settingsDialog()->findChild<QPushButton*>("updatePushButton"),
                          Qt::LeftButton);
    }
    fixture.offer({});
    fixture.startBehindProxy();
    QVERIFY(fixture.check());
}

void ClientDestructionTest::withinASignalOfItsDialog()
{
    InstallationFixture fixture;
    fixture.client().queryForUpdate();
    QObject::connect(settingsDialog(), &QDialog::rejected, [&fixture] { fixture.deleteClient(); });
    settingsDialog()->reject();
    QTRY_VERIFY(!settingsDialog());
}

void ClientDestructionTest::duringACheck()
{
    ClientFixture fixture;
    SilentServer silent;
    fixture.start();
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    dialog->findChild<QLineEdit*>("updateServerLineEdit")->setText(silent.url());
    fixture.client().checkForUpdate();
    QTRY_VERIFY(silent.isAwaited());
    fixture.deleteClient();
    QVERIFY(dialog->isVisible());
    deleteDeferred();
    // A whole check of another client leaves a request that was aborted the time to vanish.
    fixture.start();
    QVERIFY(fixture.check());
    QVERIFY(silent.isAwaited());
    QVERIFY(dialog->isVisible());
    QCOMPARE(fixture.log.lines(3).size(), 1); // the second check's, which found nothing
}

void ClientDestructionTest::duringADownload()
{
    InstallationFixture fixture;
    ServedReply stalled;
    stalled.body = QByteArray(5000, 'x');
    stalled.fault = ServedReply::Stall;
    stalled.bytesBeforeFault = 1000;
    fixture.serve("/files/mini-12.msi", stalled);
    fixture.openList({"http://download.example.com/files/mini-12.msi"}, 5000);
    fixture.proceedWith(0);
    QTRY_COMPARE(progressDialog()->value(), 1000);
    const QString path = fixture.downloadPath();
    fixture.deleteClient();
    QVERIFY(progressDialog());
    QVERIFY(availableDialog()->isVisible());
    emit progressDialog()->canceled();
    QVERIFY(QFile::exists(path));
    QCOMPARE(fixture.boxes.seen().size(), 1);
}

void ClientDestructionTest::nothingIsWritten()
{
    ClientFixture fixture;
    fixture.start();
    writeStored("product", "changed by somebody else");
    const QStringList keys = storedKeys();
    fixture.deleteClient();
    QCOMPARE(stored("product").toString(), QStringLiteral("changed by somebody else"));
    QCOMPARE(storedKeys(), keys);
}

VX_TEST_MAIN(ClientDestructionTest)
#include "tst_ClientDestruction.moc"
