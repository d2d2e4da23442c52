#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/CheckTexts.h"
#include "tests/support/TestMain.h"
#include "tests/trust/TrustFixture.h"
#include "trust/UpdateTrust.h"
#include "trust/internal/TrustTexts.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content(2000, 'x');

QStringList memoryKeys()
{
    return storedKeys().filter(QStringLiteral("signedCatalogue-"));
}

int offeredRows()
{
    const auto* table = availableDialog()->findChild<QTableWidget*>("tableWidget");
    return table->rowCount();
}

} // namespace

// What a check does where signatures are required, beside the attacks.
class TrustedChecksTest : public QObject
{
    Q_OBJECT

private slots:
    void refusalEndsLikeAFailedRequest();
    void openOfferStaysAsItIs();
    void nothingNewIsSaidAsEver();
    void emptyCatalogueIsSaidAsEver();
    void equalTimeIsAccepted();
    void catalogueThatOffersNothingIsRemembered_data();
    void catalogueThatOffersNothingIsRemembered();
    void refusedCatalogueIsNotRemembered();
    void memoryIsForTheAskedAddress();
    void memoryFollowsNoRedirect();
    void damagedMemoryIsNone();
    void fromTheFuture();
    void nothingIsStoredByDefault();
    void sealIsIgnoredByDefault();
    void backToTheDefault();
    void onlySignedBytesAreRead();
    void requestStaysTheSame();
};

void TrustedChecksTest::refusalEndsLikeAFailedRequest()
{
    TrustFixture fixture;
    fixture.answer(fixture.catalogue({offeredFile("m15.msi", content)}));
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QVERIFY(fixture.check());
    QCOMPARE(dialog->findChild<QLabel*>("updateNotificationLabel")->text(),
             refusalText(SealOutcome::NoSeal));
    QVERIFY(!dialog->findChild<QProgressBar*>("progressBar")->isVisible());
    QCOMPARE(fixture.log.lines(3).size(), 1);
    QVERIFY(fixture.log.lines(3).first().endsWith(
        "SoftwareUpdateClient::parseServerResponse() -> catalogue refused: no seal"));
    QVERIFY(!availableDialog());
    QVERIFY(dialog->isVisible());
}

void TrustedChecksTest::openOfferStaysAsItIs()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", content), offeredFile("m16.msi", content)});
    QCOMPARE(offeredRows(), 2);
    fixture.answer(fixture.catalogue({offeredFile("evil.msi", content)}));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog()->isVisible());
    QCOMPARE(offeredRows(), 2);
    // And can be installed, with the digests that it was offered with.
    fixture.proceedWith(1);
    QTRY_VERIFY(fixture.log.lines(1).join('\n').contains("installMSIPackage() -> trying to run"));
    QVERIFY(fixture.downloadPath().endsWith("/m16.msi"));
    QCOMPARE(fixture.boxes.seen().size(), 1);
}

void TrustedChecksTest::nothingNewIsSaidAsEver()
{
    TrustFixture fixture;
    fixture.answer(fixture.publisher.sealed(catalogueXml(nothingNew()) + '\n', now()));
    QCOMPARE(fixture.checkInDialog(),
             QStringLiteral("Congratulations! Your product is up-to-date!"));
    QCOMPARE(fixture.log.lines(3), QStringList());
}

void TrustedChecksTest::emptyCatalogueIsSaidAsEver()
{
    TrustFixture fixture;
    fixture.answer(fixture.publisher.sealed(fixture.catalogue({}), now()));
    QCOMPARE(fixture.checkInDialog(), QStringLiteral("No update available!"));
}

void TrustedChecksTest::equalTimeIsAccepted()
{
    TrustFixture fixture;
    const qint64 time = now() - 5;
    for (int round = 0; round < 2; ++round) {
        fixture.answer(fixture.publisher.sealed(
            fixture.catalogue({offeredFile("m15.msi", content + char('0' + round))}), time));
        QVERIFY(fixture.check());
        QVERIFY(availableDialog());
    }
    QCOMPARE(refusalLines(fixture.log), QStringList());
    QCOMPARE(memoryKeys().size(), 1);
    QCOMPARE(stored(memoryKeys().first()).toString(), QString::number(time));
}

void TrustedChecksTest::catalogueThatOffersNothingIsRemembered_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("nothing new") << catalogueXml(nothingNew()) + '\n';
    QTest::newRow("no package") << catalogueXml({}) + '\n';
    QTest::newRow("no catalogue at all") << QByteArray("not even XML\n");
}

void TrustedChecksTest::catalogueThatOffersNothingIsRemembered()
{
    QFETCH(QByteArray, document);
    TrustFixture fixture;
    fixture.answer(fixture.publisher.sealed(document, now()));
    QVERIFY(fixture.check());
    fixture.answer(
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", content)}), now() - 9));
    QCOMPARE(fixture.checkInDialog(), refusalText(SealOutcome::Older));
    QVERIFY(!availableDialog());
}

void TrustedChecksTest::refusedCatalogueIsNotRemembered()
{
    TrustFixture fixture;
    const QByteArray catalogue = fixture.catalogue({offeredFile("m15.msi", content)});
    fixture.answer(fixture.stranger.sealed(catalogue, now()));
    QVERIFY(fixture.check());
    fixture.answer(fixture.publisher.sealed(catalogue, now()) + "<!-- more -->");
    QVERIFY(fixture.check());
    QCOMPARE(memoryKeys(), QStringList());
    fixture.answer(fixture.publisher.sealed(catalogue, now() - 60));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
}

// Asked are two addresses of one server, with an old catalogue at the second.
void TrustedChecksTest::memoryIsForTheAskedAddress()
{
    TrustFixture fixture;
    const QByteArray catalogue = fixture.catalogue({offeredFile("m15.msi", content)});
    fixture.answer(fixture.publisher.sealed(catalogue, now()));
    QVERIFY(fixture.check());
    ServedReply old;
    old.body = fixture.publisher.sealed(catalogue, now() - 60);
    fixture.server.setReply("/other", old);
    fixture.server.setReply("/", old);
    SoftwareUpdateSettings record = fixture.client().record();
    const QString address = record.serverURL;
    record.serverURL = address + "other";
    fixture.client().store(record);
    delete availableDialog();
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    QCOMPARE(memoryKeys().size(), 2);
    record.serverURL = address;
    fixture.client().store(record);
    QCOMPARE(fixture.checkInDialog(), refusalText(SealOutcome::Older));
}

// Whoever may redirect must not be able to choose another memory.
void TrustedChecksTest::memoryFollowsNoRedirect()
{
    TrustFixture fixture;
    const QByteArray catalogue = fixture.catalogue({offeredFile("m15.msi", content)});
    fixture.answer(fixture.publisher.sealed(catalogue, now()));
    QVERIFY(fixture.check());
    const QStringList keys = memoryKeys();
    ServedReply hop;
    hop.status = 302;
    for (const char* path : {"/", "/second"}) {
        const QString target = path == QByteArray("/") ? "/second" : "/third";
        hop.headers = {{"Location", ("http://update.example" + target).toLatin1()}};
        fixture.server.setReply(path, hop);
    }
    ServedReply old;
    old.body = fixture.publisher.sealed(catalogue, now() - 60);
    fixture.server.setReply("/third", old);
    SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    fixture.client().checkForUpdate();
    QTRY_COMPARE(dialog->findChild<QLabel*>("updateNotificationLabel")->text(),
                 refusalText(SealOutcome::Older));
    ServedReply newer;
    newer.body = fixture.publisher.sealed(catalogue, now());
    fixture.server.setReply("/third", newer);
    delete availableDialog();
    fixture.client().checkForUpdate();
    QTRY_VERIFY(availableDialog());
    QCOMPARE(memoryKeys(), keys);
}

void TrustedChecksTest::damagedMemoryIsNone()
{
    TrustFixture fixture;
    const QByteArray catalogue = fixture.catalogue({offeredFile("m15.msi", content)});
    fixture.answer(fixture.publisher.sealed(catalogue, now()));
    QVERIFY(fixture.check());
    writeStored(memoryKeys().first(), "not a number");
    fixture.answer(fixture.publisher.sealed(catalogue, now() - 60));
    QVERIFY(fixture.check());
    QCOMPARE(refusalLines(fixture.log), QStringList());
    QCOMPARE(stored(memoryKeys().first()).toLongLong() / 60, (now() - 60) / 60);
}

void TrustedChecksTest::fromTheFuture()
{
    TrustFixture fixture;
    const QByteArray catalogue = fixture.catalogue({offeredFile("m15.msi", content)});
    fixture.answer(fixture.publisher.sealed(catalogue, now() + 86400 + 600));
    QCOMPARE(fixture.checkInDialog(), refusalText(SealOutcome::FromFuture));
    QCOMPARE(memoryKeys(), QStringList());
    fixture.answer(fixture.publisher.sealed(catalogue, now() + 86400 - 600));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
}

void TrustedChecksTest::nothingIsStoredByDefault()
{
    TrustFixture fixture;
    UpdateTrust::acceptUnsigned();
    const QStringList keys = storedKeys();
    fixture.answer(
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", content)}), now()));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    QCOMPARE(memoryKeys(), QStringList());
}

// Old clients read a sealed catalogue as they did, whoever sealed it.
void TrustedChecksTest::sealIsIgnoredByDefault()
{
    TrustFixture fixture;
    UpdateTrust::acceptUnsigned();
    fixture.answer(
        fixture.stranger.sealed(fixture.catalogue({offeredFile("m15.msi", content)}), 5, 6));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    fixture.proceedWith(0);
    QTRY_VERIFY(fixture.log.lines(1).join('\n').contains("installMSIPackage() -> trying to run"));
    QVERIFY(fixture.client().findChildren<QObject*>("", Qt::FindDirectChildrenOnly).size() <= 3);
}

void TrustedChecksTest::backToTheDefault()
{
    TrustFixture fixture;
    fixture.answer(fixture.catalogue({offeredFile("m15.msi", content)}));
    QVERIFY(fixture.check());
    QVERIFY(!availableDialog());
    UpdateTrust::acceptUnsigned();
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
}

// The rest of the answer may hold anything that looks like white space to someone.
void TrustedChecksTest::onlySignedBytesAreRead()
{
    TrustFixture fixture;
    QByteArray sealed =
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", content)}), now());
    // Not well-formed as a whole: two hyphens are not allowed in a comment, but this is none.
    sealed.replace("untrusted comment: ", "untrusted comment: ]]> & < \x01 ");
    fixture.answer(sealed);
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
}

void TrustedChecksTest::requestStaysTheSame()
{
    QList<ServedRequest> requests;
    for (const bool isRequired : {false, true}) {
        TrustFixture fixture;
        if (!isRequired) {
            UpdateTrust::acceptUnsigned();
        }
        fixture.answer(fixture.publisher.sealed(fixture.catalogue({}), now()));
        QVERIFY(fixture.check());
        QCOMPARE(fixture.server.requests().size(), 1);
        requests += fixture.server.requests();
    }
    QCOMPARE(requests[0].target, requests[1].target);
    QCOMPARE(requests[0].headers, requests[1].headers);
}

VX_TEST_MAIN(TrustedChecksTest)
#include "tst_TrustedChecks.moc"
