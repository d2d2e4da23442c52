#include <QMessageBox>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "host/IO/FileUtils.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"
#include "tests/trust/Minisign.h"
#include "tests/trust/TrustFixture.h"
#include "trust/UpdateTrust.h"
#include "trust/internal/TrustTexts.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray good(5000, 'g');
const QByteArray evil(5000, 'e');
constexpr qint64 day = 24 * 60 * 60;

QByteArray bundle()
{
    return ZipBuilder{file("Mini-12.mpkg/Contents/Info.plist")}.bytes();
}

} // namespace

// One test for each attack on software updates, from the answer of the server to what the user
// reads. Afterwards nothing is offered or installed, and nothing is on the disk.
class UpdateAttacksTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void withoutAnAttack_data();
    void withoutAnAttack();
    void arbitrarySoftware();
    void tamperedCatalogue();
    void tamperedTrustedComment();
    void strippedSeal();
    void rollback();
    void freeze();
    void wrongKey();
    void keyRotation();
    void mixAndMatch();
    void extraneousBytes();
    void endlessData();
    void endlessPackage();
    void exchangedAfterTheCheck();
    void othersCannotExchangeTheFile();

private:
    static void expectRefused(TrustFixture& fixture, const QByteArray& answer, SealOutcome outcome);
};

void UpdateAttacksTest::cleanup()
{
    for (const QString& folder : leftOfDownloads()) {
        FileUtils::erase(QDir::temp().filePath(folder));
    }
}

/** In the background, too, where nothing is shown. */
void UpdateAttacksTest::expectRefused(TrustFixture& fixture, const QByteArray& answer,
                                      SealOutcome outcome)
{
    fixture.answer(answer);
    QVERIFY(fixture.check());
    QVERIFY(!availableDialog());
    QVERIFY(!settingsDialog());
    QCOMPARE(refusalLines(fixture.log).size(), 1);
    QCOMPARE(fixture.checkInDialog(), refusalText(outcome));
    QVERIFY(!refusalText(outcome).isEmpty());
    QCOMPARE(refusalLines(fixture.log).size(), 2);
    QVERIFY(!availableDialog());
    QCOMPARE(fixture.boxes.seen().size(), 0);
    QCOMPARE(leftOfDownloads(), QStringList());
}

void UpdateAttacksTest::withoutAnAttack_data()
{
    QTest::addColumn<int>("form");
    QTest::newRow("prehashed") << int(Minisign::Prehashed);
    QTest::newRow("pure") << int(Minisign::Pure);
}

// The whole road, with a catalogue that the real minisign signed.
void UpdateAttacksTest::withoutAnAttack()
{
    QFETCH(int, form);
    const Minisign minisign;
    TrustFixture fixture;
    QVERIFY(UpdateTrust::requireSignatures({minisign.publicKey()}));
    const UrlRecorder desktop;
    fixture.answer(minisign.sealed(fixture.catalogue({offeredFile("mini-12.mpkg.zip", bundle())}),
                                   QString(), static_cast<Minisign::Form>(form)));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    fixture.proceedWith(0);
    QTRY_COMPARE(desktop.opened().size(), 1);
    QVERIFY(desktop.opened().first().toLocalFile().endsWith("/Mini-12.mpkg"));
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QCOMPARE(refusalLines(fixture.log), QStringList());
}

// Whoever answers for the server offers a package of his own.
void UpdateAttacksTest::arbitrarySoftware()
{
    TrustFixture fixture;
    expectRefused(fixture, fixture.catalogue({offeredFile("evil.exe", evil)}), SealOutcome::NoSeal);
}

// Or puts another file in the place of the publisher's.
void UpdateAttacksTest::exchangedAfterTheCheck()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", good)});
    fixture.serve("/files/m15.msi", evil);
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().icon, QMessageBox::Critical);
    QCOMPARE(fixture.boxes.seen().last().text, packageDiffersText());
    QVERIFY(!QFile::exists(fixture.downloadPath()));
    QTRY_COMPARE(leftOfDownloads(), QStringList());
    QVERIFY(!fixture.log.lines(1).join('\n').contains("installMSIPackage"));
    QVERIFY(availableDialog()->isVisible());
    QVERIFY(!progressDialog());
}

void UpdateAttacksTest::tamperedCatalogue()
{
    TrustFixture fixture;
    const QByteArray sealed =
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", good)}), now());
    expectRefused(fixture, QByteArray(sealed).replace("download.example", "download.exampel"),
                  SealOutcome::Changed);
}

void UpdateAttacksTest::tamperedTrustedComment()
{
    TrustFixture fixture;
    const QByteArray sealed = fixture.publisher.sealed(
        fixture.catalogue({offeredFile("m15.msi", good)}), now() - 9 * day, now() - 5 * day);
    const QByteArray later = QByteArray(sealed).replace(
        "expires:" + QByteArray::number(now() - 5 * day), "expires:9999999999");
    expectRefused(fixture, later, SealOutcome::Changed);
}

void UpdateAttacksTest::strippedSeal()
{
    TrustFixture fixture;
    const QByteArray sealed =
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", good)}), now());
    expectRefused(fixture, sealed.left(sealed.indexOf("<?minisign")), SealOutcome::NoSeal);
}

// An old release with a known hole is brought back, with the publisher's own signature.
void UpdateAttacksTest::rollback()
{
    TrustFixture fixture;
    const QByteArray content = fixture.catalogue({offeredFile("m15.msi", good)});
    const QByteArray old = fixture.publisher.sealed(content, now() - 60);
    fixture.answer(fixture.publisher.sealed(fixture.catalogue({}), now()));
    QVERIFY(fixture.check());
    expectRefused(fixture, old, SealOutcome::Older);
}

// Users are held back at what once was the newest.
void UpdateAttacksTest::freeze()
{
    TrustFixture fixture;
    expectRefused(fixture,
                  fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", good)}),
                                           now() - 9 * day, now() - day - 60),
                  SealOutcome::Expired);
}

void UpdateAttacksTest::wrongKey()
{
    TrustFixture fixture;
    expectRefused(fixture,
                  fixture.stranger.sealed(fixture.catalogue({offeredFile("m15.msi", good)}), now()),
                  SealOutcome::UnknownKey);
}

// The old key is still good while both are listed, and no longer.
void UpdateAttacksTest::keyRotation()
{
    TrustFixture fixture;
    const QByteArray content = fixture.catalogue({offeredFile("m15.msi", good)});
    const SigningKey next = SigningKey::generate();
    QVERIFY(UpdateTrust::requireSignatures({fixture.publisher.publicKey(), next.publicKey()}));
    fixture.answer(fixture.publisher.sealed(content, now()));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    delete availableDialog();
    fixture.answer(next.sealed(content, now()));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    delete availableDialog();
    QVERIFY(UpdateTrust::requireSignatures({next.publicKey()}));
    expectRefused(fixture, fixture.publisher.sealed(content, now()), SealOutcome::UnknownKey);
}

// A file of one release stands in for the file of another, both the publisher's own.
void UpdateAttacksTest::mixAndMatch()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("old.msi", evil), offeredFile("new.msi", good)});
    fixture.serve("/files/new.msi", evil);
    fixture.proceedWith(1);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text, packageDiffersText());
    QTRY_COMPARE(leftOfDownloads(), QStringList());
}

void UpdateAttacksTest::extraneousBytes()
{
    TrustFixture fixture;
    const QByteArray sealed =
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", good)}), now());
    expectRefused(fixture, sealed + "<!-- and this -->\n", SealOutcome::BytesBehind);
}

void UpdateAttacksTest::endlessData()
{
    TrustFixture fixture;
    QByteArray answer =
        fixture.publisher.sealed(fixture.catalogue({offeredFile("m15.msi", good)}), now());
    answer.insert(0, QByteArray((64 << 20) + 1, ' '));
    expectRefused(fixture, answer, SealOutcome::NoSeal);
}

// More than was announced is a complete download, and not the announced one.
void UpdateAttacksTest::endlessPackage()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", good)});
    fixture.serve("/files/m15.msi", good + QByteArray(1 << 20, 'g'));
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text, packageDiffersText());
    QTRY_COMPARE(leftOfDownloads(), QStringList());
}

// What was hashed is what is opened: nobody else can reach the file in between.
void UpdateAttacksTest::othersCannotExchangeTheFile()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", good)});
    fixture.proceedWith(0);
    QTRY_VERIFY(fixture.log.lines(1).join('\n').contains("installMSIPackage() -> trying to run"));
    const QByteArray file = QFile::encodeName(fixture.downloadPath());
    const QByteArray folder = file.left(file.lastIndexOf('/'));
    struct stat status = {};
    QCOMPARE(::lstat(folder.constData(), &status), 0);
    QVERIFY(S_ISDIR(status.st_mode));
    QCOMPARE(status.st_mode & 07777, mode_t(0700));
    QCOMPARE(status.st_uid, ::geteuid());
    QCOMPARE(::lstat(file.constData(), &status), 0);
    QVERIFY(S_ISREG(status.st_mode));
    QCOMPARE(status.st_uid, ::geteuid());
}

VX_TEST_MAIN(UpdateAttacksTest)
#include "tst_UpdateAttacks.moc"
