#include <QPointer>
#include <QProgressDialog>
#include <QSemaphore>
#include <QtTest>

#include <memory>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/client/InstallationFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content(5000, 'x');
const QString host = QStringLiteral("http://download.example.com");
const QString firstPath = QStringLiteral("/files/first.msi");
const QString secondPath = QStringLiteral("/files/second.deb");
const QString debLine =
    QStringLiteral("SoftwareUpdateClient::installDEBPackage() -> trying to run ");

/** Holds the answers to paths that have none of their own back until release(). */
class HeldAnswers
{
public:
    explicit HeldAnswers(UpdateServer& server)
    {
        const std::shared_ptr<QSemaphore> gate = m_gate;
        server.setHandler([gate](const ServedRequest&) {
            gate->acquire();
            ServedReply reply;
            reply.body = content;
            return reply;
        });
    }
    ~HeldAnswers() { release(); }
    HeldAnswers(const HeldAnswers&) = delete;
    HeldAnswers& operator=(const HeldAnswers&) = delete;

    void release() { m_gate->release(10); }

private:
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
};

void openTwo(InstallationFixture& fixture)
{
    fixture.openList({host + firstPath, host + secondPath}, content.size());
}

} // namespace

// What one installation leaves behind for the next, and what two at once do to each other.
class ClientSeveralInstallationsTest : public QObject
{
    Q_OBJECT

private slots:
    void sameRowAfterAFailure();
    void anotherRowAfterAFailure();
    void refusingAnotherRowDuringADownload();
    void anotherRowDuringADownload();
    void secondDownloadRunsUnobserved();
};

void ClientSeveralInstallationsTest::sameRowAfterAFailure()
{
    InstallationFixture fixture;
    openTwo(fixture);
    fixture.proceedWith(1);
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QTRY_VERIFY(!progressDialog());
    const QString first = fixture.downloadPath();
    fixture.serve(secondPath, content);
    fixture.proceedWith(1);
    QVERIFY(fixture.downloadPath() != first);
    QTRY_VERIFY(fixture.log.contains(1, debLine + fixture.downloadPath()));
}

void ClientSeveralInstallationsTest::anotherRowAfterAFailure()
{
    InstallationFixture fixture;
    fixture.serve(secondPath, content);
    openTwo(fixture);
    fixture.proceedWith(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QTRY_VERIFY(!progressDialog());
    fixture.proceedWith(1);
    QTRY_VERIFY(!availableDialog());
    QVERIFY(fixture.log.contains(1, debLine + fixture.downloadPath()));
}

// The row counts from the click on, before the user has confirmed anything.
void ClientSeveralInstallationsTest::refusingAnotherRowDuringADownload()
{
    InstallationFixture fixture;
    HeldAnswers answers(fixture.server);
    openTwo(fixture);
    fixture.proceedWith(0);
    fixture.boxes.willClick("Cancel Install");
    clickInstall(1);
    QCOMPARE(fixture.boxes.seen().size(), 2);
    answers.release();
    QTRY_VERIFY(!availableDialog());
    QVERIFY(fixture.downloadPath().endsWith("/first.msi"));
    QVERIFY(fixture.log.contains(1, debLine + fixture.downloadPath()));
}

void ClientSeveralInstallationsTest::anotherRowDuringADownload()
{
    InstallationFixture fixture;
    HeldAnswers answers(fixture.server);
    fixture.serve(secondPath, content);
    openTwo(fixture);
    fixture.proceedWith(0);
    const QString first = fixture.downloadPath();
    fixture.proceedWith(1);
    const QString second = fixture.downloadPath();
    QVERIFY(second.endsWith("/second.deb"));
    QTRY_COMPARE(QFileInfo(second).size(), content.size());
    QVERIFY(availableDialog()->isVisible());

    answers.release();
    QTRY_VERIFY(!availableDialog());
    QCOMPARE(QFileInfo(first).size(), content.size());
    QVERIFY(fixture.log.contains(1, debLine + second));
    QCOMPARE(fixture.log.lines(1).filter("trying to run").size(), 1);
}

void ClientSeveralInstallationsTest::secondDownloadRunsUnobserved()
{
    InstallationFixture fixture;
    ServedReply stalled;
    stalled.body = content;
    stalled.fault = ServedReply::Stall;
    stalled.bytesBeforeFault = 1000;
    fixture.serve(firstPath, stalled);
    fixture.serve(secondPath, content);
    openTwo(fixture);
    fixture.proceedWith(0);
    QTRY_COMPARE(progressDialog()->value(), 1000);
    const QPointer<QProgressDialog> first = progressDialog();

    fixture.proceedWith(1);
    const QString second = fixture.downloadPath();
    QTRY_COMPARE(QFileInfo(second).size(), content.size());
    QCOMPARE(progressDialog(), first.data());
    QCOMPARE(first->value(), 1000);
    QVERIFY(availableDialog()->isVisible());
    QVERIFY(!fixture.log.lines(1).join('\n').contains("trying to run"));
}

VX_TEST_MAIN(ClientSeveralInstallationsTest)
#include "tst_ClientSeveralInstallations.moc"
