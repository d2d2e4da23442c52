#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/CheckTexts.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QString performed = QStringLiteral("SoftwareUpdateClient::performUpdateCheck() -> ");

ServedReply redirect(int status, const QByteArray& location)
{
    ServedReply reply;
    reply.status = status;
    if (!location.isNull()) {
        reply.headers.append(qMakePair(QByteArray("Location"), location));
    }
    return reply;
}

/** One whose body is longer than what is taken, and never ends. */
ServedReply endlessReply(int status)
{
    ServedReply reply;
    reply.status = status;
    reply.body = QByteArray(80 * 1024 * 1024, ' ');
    reply.fault = ServedReply::Stall;
    reply.bytesBeforeFault = reply.body.size() - 1;
    return reply;
}

QString notification()
{
    return settingsDialog()->findChild<QLabel*>("updateNotificationLabel")->text();
}

bool isProgressShown()
{
    const auto* bar = settingsDialog()->findChild<QProgressBar*>("progressBar");
    return bar->isVisible() && bar->isEnabled();
}

void clickCheckNow()
{
    QTest::mouseClick(settingsDialog()->findChild<QPushButton*>("updatePushButton"),
                      Qt::LeftButton);
}

QString errorTextInLog(const LogCapture& log)
{
    return log.lines(1).last().section(evaluation + "reply->errorString(): ", 1);
}

} // namespace

class ClientCheckOutcomeTest : public QObject
{
    Q_OBJECT

private slots:
    void upToDate_data();
    void upToDate();
    void updateAvailable();
    void redirectIsFollowed_data();
    void redirectIsFollowed();
    void otherStatusIsNoRedirect();
    void redirectWithoutTarget_data();
    void redirectWithoutTarget();
    void relativeTargetStandsAsItIs();
    void redirectToItselfHasNoEnd();
    void eachHopGetsItsOwnTime();
    void progressStaysOnDuringARedirect();
    void redirectToAnotherScheme();
    void failingServer_data();
    void failingServer();
    void unreachableServer();
    void answerThatShrinksWell();
    void answerTooLongToParse();
    void errorWithALongBody_data();
    void errorWithALongBody();
    void headerWithoutEnd();
    void timeout_data();
    void timeout();
    void dialogShowsTheFormerCheck();
    void dialogShowsThisCheckAfterARedirect();
    void betaBoxOfTheDialogCounts();
    void textsOfADialogThatClosesMeanwhile();
};

void ClientCheckOutcomeTest::upToDate_data()
{
    QTest::addColumn<bool>("dialogOpen");
    QTest::newRow("in the background") << false;
    QTest::newRow("settings dialog open") << true;
}

void ClientCheckOutcomeTest::upToDate()
{
    QFETCH(bool, dialogOpen);
    ClientFixture fixture;
    fixture.start();
    fixture.offer(nothingNew());
    if (dialogOpen) {
        fixture.openSettingsDialog();
        clickCheckNow();
        QVERIFY(isProgressShown());
        QTRY_VERIFY(!isProgressShown());
        QCOMPARE(notification(), QStringLiteral("Congratulations! Your product is up-to-date!"));
    } else {
        QVERIFY(fixture.check());
        QVERIFY(!settingsDialog());
    }
    QVERIFY(fixture.log.lines(1).at(1).endsWith(evaluation + "product is up-to-date "));
    QVERIFY(fixture.log.lines(1).at(2).endsWith(upToDateLine));
    QVERIFY(fixture.log.lines(3).isEmpty());
    QVERIFY(!availableDialog());
    QVERIFY(fixture.boxes.seen().isEmpty());
}

void ClientCheckOutcomeTest::updateAvailable()
{
    ClientFixture fixture;
    fixture.start();
    QVERIFY(fixture.openAvailableDialog({applicationPackage()}));
    QVERIFY(fixture.log.contains(1, evaluation + "update available"));
    QVERIFY(!fixture.log.contains(1, upToDateLine));
}

void ClientCheckOutcomeTest::redirectIsFollowed_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {301, 302, 303, 307}) {
        QTest::addRow("%d", status) << status;
    }
}

void ClientCheckOutcomeTest::redirectIsFollowed()
{
    QFETCH(int, status);
    ClientFixture fixture;
    fixture.start();
    const QString target = fixture.server.url("/moved").toString();
    fixture.server.setReply("/", redirect(status, target.toLatin1()));
    ServedReply catalogue;
    catalogue.body = catalogueXml(nothingNew());
    fixture.server.setReply("/moved", catalogue);
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(1, evaluation + "redirect url " + target));
    QVERIFY(fixture.log.contains(1, performed + target));
    QVERIFY(fixture.log.contains(1, upToDateLine));
    QCOMPARE(fixture.server.requests().size(), 2);
    QCOMPARE(fixture.server.requests().last().headers.value("content-type"),
             QByteArray("text/xml"));
}

void ClientCheckOutcomeTest::otherStatusIsNoRedirect()
{
    ClientFixture fixture;
    fixture.start();
    ServedReply reply = redirect(308, fixture.server.url("/moved").toString().toLatin1());
    reply.body = catalogueXml(nothingNew());
    fixture.server.setReply("/", reply);
    QVERIFY(fixture.check());
    QCOMPARE(fixture.server.requests().size(), 1);
    QVERIFY(fixture.log.contains(1, upToDateLine));
}

void ClientCheckOutcomeTest::redirectWithoutTarget_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::newRow("no header") << QByteArray();
    QTest::newRow("empty header") << QByteArray("");
}

void ClientCheckOutcomeTest::redirectWithoutTarget()
{
    QFETCH(QByteArray, location);
    ClientFixture fixture;
    fixture.start();
    ServedReply reply = redirect(302, location);
    reply.body = catalogueXml(nothingNew());
    fixture.server.setReply("/", reply);
    QVERIFY(fixture.check());
    QVERIFY(
        fixture.log.contains(3, evaluation + "could not obtain redirect url from server response"));
    QCOMPARE(fixture.log.lines(3).size(), 1);
    QVERIFY(fixture.log.contains(1, upToDateLine));
}

void ClientCheckOutcomeTest::relativeTargetStandsAsItIs()
{
    ClientFixture fixture;
    fixture.start();
    fixture.openSettingsDialog();
    fixture.server.setReply("/", redirect(302, "/moved"));
    clickCheckNow();
    QTRY_VERIFY(fixture.log.contains(3, timeoutLine));
    QVERIFY(fixture.log.contains(1, evaluation + "redirect url /moved"));
    QVERIFY(fixture.log.contains(1, performed + "/moved"));
    QCOMPARE(fixture.server.requests().size(), 1);
    QVERIFY(!isProgressShown());
    QVERIFY(!notification().isEmpty());
}

void ClientCheckOutcomeTest::redirectToItselfHasNoEnd()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", redirect(302, fixture.server.url().toString().toLatin1()));
    fixture.client().checkForUpdate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture.server.requests().size() > 60, 20000);
    QVERIFY(fixture.client().requestTimer()->isActive());
    fixture.offer(nothingNew());
    QTRY_VERIFY(fixture.log.contains(1, upToDateLine));
}

void ClientCheckOutcomeTest::eachHopGetsItsOwnTime()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply moved = redirect(302, fixture.server.url("/moved").toString().toLatin1());
    fixture.server.setReply("/", moved);
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    fixture.server.setReply("/moved", silent);
    client.checkForUpdate();
    client.requestTimer()->start(5000);
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    QVERIFY(client.requestTimer());
    QVERIFY(client.requestTimer()->remainingTime() > 14000);
}

void ClientCheckOutcomeTest::progressStaysOnDuringARedirect()
{
    ClientFixture fixture;
    fixture.start();
    fixture.openSettingsDialog();
    fixture.server.setReply("/", redirect(302, fixture.server.url("/moved").toString().toLatin1()));
    ServedReply slow;
    slow.body = catalogueXml(nothingNew());
    slow.delayMs = 200;
    fixture.server.setReply("/moved", slow);
    clickCheckNow();
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    QVERIFY(isProgressShown());
    QTRY_VERIFY(!isProgressShown());
    QCOMPARE(notification(), QStringLiteral("Congratulations! Your product is up-to-date!"));
}

void ClientCheckOutcomeTest::redirectToAnotherScheme()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", redirect(302, "nowhere:/else"));
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(3, timeoutLine));
    QVERIFY(fixture.log.contains(1, performed + "nowhere:/else"));
}

void ClientCheckOutcomeTest::failingServer_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("fault");
    QTest::addColumn<bool>("dialogOpen");
    QTest::newRow("404") << 404 << int(ServedReply::NoFault) << true;
    QTest::newRow("500") << 500 << int(ServedReply::NoFault) << true;
    QTest::newRow("503 in the background") << 503 << int(ServedReply::NoFault) << false;
    QTest::newRow("closes early") << 200 << int(ServedReply::CloseEarly) << true;
    QTest::newRow("resets") << 200 << int(ServedReply::Reset) << true;
    QTest::newRow("resets in the background") << 200 << int(ServedReply::Reset) << false;
}

void ClientCheckOutcomeTest::failingServer()
{
    QFETCH(int, status);
    QFETCH(int, fault);
    QFETCH(bool, dialogOpen);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply reply;
    reply.status = status;
    reply.body = catalogueXml({applicationPackage()});
    reply.fault = static_cast<ServedReply::Fault>(fault);
    reply.bytesBeforeFault = 20;
    fixture.server.setReply("/", reply);
    if (dialogOpen) {
        fixture.openSettingsDialog();
    }
    QVERIFY(fixture.check());

    const QStringList lines = fixture.log.allLines();
    QVERIFY(lines.value(lines.size() - 2).startsWith('3'));
    QVERIFY(lines.value(lines.size() - 2).endsWith(timeoutLine));
    QVERIFY(lines.last().startsWith('1'));
    QVERIFY(!errorTextInLog(fixture.log).isEmpty());
    QCOMPARE(fixture.log.lines(3).size(), 2); // the first tells the reason
    if (dialogOpen) {
        QVERIFY(!isProgressShown());
        QCOMPARE(notification(), errorTextInLog(fixture.log));
    }
    QVERIFY(!client.record().lastCheck.isNull());
    QVERIFY(!availableDialog());
    QVERIFY(fixture.boxes.seen().isEmpty());
}

void ClientCheckOutcomeTest::unreachableServer()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.stop();
    fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(3, timeoutLine));
    QCOMPARE(notification(), errorTextInLog(fixture.log));
    QVERIFY(!notification().isEmpty());
}

void ClientCheckOutcomeTest::answerThatShrinksWell()
{
    ClientFixture fixture;
    fixture.start();
    const QByteArray catalogue =
        catalogueXml({applicationPackage()}) + QByteArray(12 * 1024 * 1024, ' ');
    constexpr int sizeInFront = 4; // which qCompress adds
    ServedReply reply;
    reply.body = qCompress(catalogue).mid(sizeInFront);
    QVERIFY(reply.body.size() < catalogue.size() / 100);
    reply.headers.append(qMakePair(QByteArray("Content-Encoding"), QByteArray("deflate")));
    fixture.server.setReply("/", reply);
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(1, evaluation + "update available"));
}

void ClientCheckOutcomeTest::answerTooLongToParse()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", endlessReply(200));
    fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.contains(2, "XML parser error"));
    QVERIFY(fixture.log.contains(
        3, "SoftwareUpdateClient::parseServerResponse() -> no update available"));
    QCOMPARE(notification(), "No update available!");
}

void ClientCheckOutcomeTest::errorWithALongBody_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("400") << 400;
    QTest::newRow("404") << 404;
    QTest::newRow("500") << 500;
}

// What the server says about its error is not read, however much it is.
void ClientCheckOutcomeTest::errorWithALongBody()
{
    QFETCH(int, status);
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", endlessReply(status));
    fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QVERIFY(fixture.log.lines(2).isEmpty());
    QCOMPARE(fixture.log.lines(3).size(), 2); // the first tells the reason
    QVERIFY(fixture.log.contains(3, timeoutLine));
    QVERIFY(!errorTextInLog(fixture.log).isEmpty());
    QCOMPARE(notification(), errorTextInLog(fixture.log));
}

void ClientCheckOutcomeTest::headerWithoutEnd()
{
    ClientFixture fixture;
    fixture.start();
    ServedReply endless;
    endless.fault = ServedReply::EndlessHeader;
    endless.body = "HTTP/1.1 200 OK\r\n";
    fixture.server.setReply("/", endless);
    fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QCOMPARE(fixture.log.lines(3).size(), 2);
    const QString reason =
        evaluation + QString("127.0.0.1:%1 sent a header of more than 262144 bytes and was cut off")
                         .arg(fixture.server.port());
    QVERIFY2(fixture.log.lines(3).first().contains(reason),
             qPrintable(fixture.log.lines(3).first()));
    QVERIFY(fixture.log.contains(3, timeoutLine));
    QCOMPARE(errorTextInLog(fixture.log), "Operation canceled");
    QCOMPARE(notification(), errorTextInLog(fixture.log));
    QVERIFY(!isProgressShown());
}

void ClientCheckOutcomeTest::timeout_data()
{
    upToDate_data();
}

void ClientCheckOutcomeTest::timeout()
{
    QFETCH(bool, dialogOpen);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    fixture.server.setReply("/", silent);
    if (dialogOpen) {
        fixture.openSettingsDialog();
    }
    client.checkForUpdate();
    const QDateTime lastCheck = client.record().lastCheck;
    QVERIFY(lastCheck.isValid());
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    QTimer* timer = client.requestTimer();
    QCOMPARE(timer->interval(), 15000);
    timer->start(20);
    QTRY_VERIFY(fixture.log.contains(3, timeoutLine));

    if (dialogOpen) {
        QVERIFY(!isProgressShown());
        QCOMPARE(notification(), QStringLiteral("Timeout error! Update server unreachable!"));
    }
    deleteDeferred();
    fixture.server.stop();
    QCoreApplication::processEvents();
    QVERIFY(!fixture.log.lines(1).join('\n').contains(evaluation));
    QCOMPARE(fixture.log.lines(3).size(), 2); // the first tells the reason
    QCOMPARE(client.record().lastCheck, lastCheck);
    QVERIFY(!timer->isActive());
}

void ClientCheckOutcomeTest::dialogShowsTheFormerCheck()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QDateTime former(QDate(2012, 3, 4), QTime(5, 6));
    writeStored("lastCheck", former);
    fixture.openSettingsDialog();
    auto* dialog = settingsDialog();
    dialog->setNotificationText("left over");
    dialog->findChild<QLabel*>("lastCheckDateLabel")->clear();
    fixture.offer(nothingNew());
    clickCheckNow();
    QCOMPARE(notification(), QString());
    QCOMPARE(dialog->getDialogSettings().lastCheckText,
             QLocale::system().toString(former, QLocale::LongFormat));
    QVERIFY(client.record().lastCheck > former);
    QTRY_VERIFY(!isProgressShown());
    QCOMPARE(dialog->getDialogSettings().lastCheckText,
             QLocale::system().toString(former, QLocale::LongFormat));
}

void ClientCheckOutcomeTest::dialogShowsThisCheckAfterARedirect()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    writeStored("lastCheck", QDateTime(QDate(2012, 3, 4), QTime(5, 6)));
    fixture.openSettingsDialog();
    fixture.server.setReply("/", redirect(302, fixture.server.url("/moved").toString().toLatin1()));
    ServedReply catalogue;
    catalogue.body = catalogueXml(nothingNew());
    fixture.server.setReply("/moved", catalogue);
    clickCheckNow();
    QTRY_VERIFY(!isProgressShown());
    QCOMPARE(settingsDialog()->getDialogSettings().lastCheckText,
             QLocale::system().toString(client.record().lastCheck, QLocale::LongFormat));
}

void ClientCheckOutcomeTest::betaBoxOfTheDialogCounts()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    PackageFields beta = applicationPackage();
    beta["status"] = "BETA";
    fixture.offer({beta});
    QVERIFY(fixture.check());
    QVERIFY(!availableDialog());

    fixture.openSettingsDialog();
    settingsDialog()->findChild<QCheckBox*>("checkForBetaCheckBox")->setChecked(true);
    clickCheckNow();
    QTRY_VERIFY(availableDialog());
    QCOMPARE(client.record().checkForBeta, false);
}

void ClientCheckOutcomeTest::textsOfADialogThatClosesMeanwhile()
{
    ClientFixture fixture;
    fixture.start();
    fixture.openSettingsDialog();
    ServedReply reply;
    reply.body = catalogueXml(nothingNew());
    reply.delayMs = 50;
    fixture.server.setReply("/", reply);
    clickCheckNow();
    settingsDialog()->reject();
    QTRY_VERIFY(!settingsDialog());
    QTRY_VERIFY(fixture.log.contains(1, upToDateLine));
}

VX_TEST_MAIN(ClientCheckOutcomeTest)
#include "tst_ClientCheckOutcome.moc"
