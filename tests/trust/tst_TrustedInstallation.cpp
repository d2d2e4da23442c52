#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include <unistd.h>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "host/IO/FileUtils.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"
#include "tests/trust/TrustFixture.h"
#include "trust/UpdateTrust.h"
#include "trust/internal/FileDigest.h"
#include "trust/internal/TrustTexts.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content(2000, 'x');
const QByteArray other(2000, 'y');

bool hasRun(const LogCapture& log)
{
    return log.lines(1).join('\n').contains("installMSIPackage() -> trying to run");
}

constexpr qint64 gigabyte = 1LL << 30;

/** Makes @p path a file of @p size bytes, with zeros at its end that take no room on the disk. */
bool extend(const QString& path, qint64 size)
{
    return ::truncate(QFile::encodeName(path).constData(), size) == 0;
}

/** The digest of content with zeros behind it, @p size bytes in all. */
QString digestOfExtended(qint64 size)
{
    QTemporaryFile file;
    if (!file.open() || file.write(content) != content.size() || !file.flush() ||
        !extend(file.fileName(), size)) {
        qFatal("cannot write a file");
    }
    return QString::fromLatin1(sha256OfFile(file.fileName()).value_or("").toHex());
}

/** The library has a class of its own, which a cast of this program does not know. */
QObject* verificationOf(const TestClient& client)
{
    for (QObject* object : client.findChildren<QObject*>()) {
        if (qstrcmp(object->metaObject()->className(), "vx::FileVerification") == 0) {
            return object;
        }
    }
    return nullptr;
}

/** Installs row 0, whose file grows to @p size bytes meanwhile, so that hashing it takes long. */
void installExtended(TrustFixture& fixture, const QString& name, qint64 size)
{
    ServedReply slow;
    slow.body = content;
    slow.fault = ServedReply::Slow;
    slow.delayMs = 300;
    fixture.serve("/files/" + name, slow);
    fixture.proceedWith(0);
    QTRY_VERIFY(extend(fixture.downloadPath(), size));
}

bool isVerifying()
{
    return progressDialog() != nullptr && progressDialog()->labelText() == verifyingText();
}

} // namespace

// Which digest counts, and what the user sees while a package is verified and when it is refused.
class TrustedInstallationTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void whatCounts_data();
    void whatCounts();
    void unknownTypeIsVerifiedFirst();
    void refusalBox();
    void laterCheckChangesNothing();
    void rowsOfferedBefore();
    void rowsOfferedInBetween();
    void downloadThatFails();
    void progressDialogStays();
    void cancelling();
    void secondInstallationMeanwhile();
    void clientDestroyedMeanwhile();
    void downloadPackageOpensTheBrowser();
};

void TrustedInstallationTest::cleanup()
{
    for (const QString& folder : leftOfDownloads()) {
        FileUtils::erase(QDir::temp().filePath(folder));
    }
}

void TrustedInstallationTest::whatCounts_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<int>("reason"); // 0: installed, 1: not the announced one, 2: no digest
    const QString good = digestOf(content);
    const QString bad = digestOf(other);
    const auto row = [](const char* name, const QString& text, int reason) {
        QTest::newRow(name) << text << reason;
    };
    row("element of the package", "<package><sha256>" + good + "</sha256>%1</package>", 0);
    row("attribute of the package", "<package sha256='" + good + "'>%1</package>", 0);
    row("element of the file", "<package><file><sha256>" + good + "</sha256>%1</file></package>",
        0);
    row("attribute of the file", "<package><file sha256='" + good + "'>%1</file></package>", 0);
    row("file before package",
        "<package sha256='" + bad + "'><file sha256='" + good + "'>%1</file></package>", 0);
    row("element before attribute",
        "<package sha256='" + bad + "'><sha256>" + good + "</sha256>%1</package>", 0);
    row("capital letters", "<package sha256='" + good.toUpper() + "'>%1</package>", 0);
    row("white space", "<package><sha256>\n " + good + "\t</sha256>%1</package>", 0);
    row("of another file", "<package sha256='" + bad + "'>%1</package>", 1);
    row("none", "<package>%1</package>", 2);
    row("of a set", "<package-set sha256='" + good + "'><package>%1</package></package-set>", 2);
    row("element of a set",
        "<package-set><sha256>" + good + "</sha256><package>%1</package></package-set>", 2);
    row("empty", "<package sha256='" + good + "'><sha256/>%1</package>", 2);
    row("malformed near, good far",
        "<package sha256='" + good + "'><file sha256='x'>%1</file></package>", 2);
    row("two digests for one address",
        "<package sha256='" + good + "'>%1</package><package sha256='" + bad + "'>%1</package>", 2);
    row("the same twice",
        "<package sha256='" + good + "'>%1</package><package sha256='" + good + "'>%1</package>",
        0);
}

void TrustedInstallationTest::whatCounts()
{
    QFETCH(QString, package);
    QFETCH(int, reason);
    TrustFixture fixture;
    fixture.serve("/files/m15.msi", content);
    QString fields;
    const PackageFields all =
        changed(cameraPackage(),
                {{"file-size", "2000"}, {"url", "http://download.example.com/files/m15.msi"}});
    for (auto field = all.begin(); field != all.end(); ++field) {
        fields += QStringLiteral("<%1>%2</%1>").arg(field.key(), field.value());
    }
    const QString document = "<softwareList>" + package.arg(fields) + "</softwareList>\n";
    fixture.answer(fixture.publisher.sealed(document.toUtf8(), now()));
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
    fixture.proceedWith(0);
    if (reason == 0) {
        QTRY_VERIFY(hasRun(fixture.log));
        QCOMPARE(fixture.boxes.seen().size(), 1);
        QVERIFY(QFile::exists(fixture.downloadPath()));
        QVERIFY(!availableDialog() || !availableDialog()->isVisible());
        return;
    }
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text,
             reason == 1 ? packageDiffersText() : packageWithoutDigestText());
    QVERIFY(!hasRun(fixture.log));
    QTRY_COMPARE(leftOfDownloads(), QStringList());
    QVERIFY(availableDialog()->isVisible());
}

void TrustedInstallationTest::unknownTypeIsVerifiedFirst()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.bin", content)});
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text,
             QStringLiteral("Unknown package type! Installation cannot proceed!"));
    fixture.openSealedList({offeredFile("m15.bin", content)});
    fixture.serve("/files/m15.bin", other);
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(4));
    QCOMPARE(fixture.boxes.seen().last().text, packageDiffersText());
}

void TrustedInstallationTest::refusalBox()
{
    QWidget parent;
    TrustFixture fixture(&parent);
    fixture.openSealedList({{"m15.msi", content, digestOf(other)}});
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    const SeenBox box = fixture.boxes.seen().last();
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.title, packageRefusedTitle());
    QCOMPARE(box.buttons, QStringList("OK"));
    QCOMPARE(box.parent, &parent);
    QVERIFY(box.modal);
    QCOMPARE(refusalLines(fixture.log).size(), 1);
    QVERIFY(refusalLines(fixture.log)
                .first()
                .contains("SoftwareUpdateClient::downloadFinished() -> package refused: not the "
                          "announced file: "));
    // And the user may try again.
    fixture.serve("/files/m15.msi", other);
    fixture.proceedWith(0);
    QTRY_VERIFY(hasRun(fixture.log));
}

// A check while the box is open or the download runs brings other digests for the same address.
void TrustedInstallationTest::laterCheckChangesNothing()
{
    TrustFixture fixture;
    const OfferedFile large = offeredFile("m15.msi", QByteArray(4 << 20, 'x'));
    fixture.openSealedList({large});
    // The files of a catalogue are served from here on, but the large one is to arrive.
    const QByteArray later =
        fixture.catalogue({{"m15.exe", other, digestOf(other)}, {"m15.msi", other, "x"}});
    ServedReply slow;
    slow.body = large.content;
    slow.fault = ServedReply::Slow;
    slow.delayMs = 1500;
    fixture.serve("/files/m15.msi", slow);
    fixture.proceedWith(0);
    fixture.answer(fixture.publisher.sealed(later, now()));
    QVERIFY(fixture.check());
    QTRY_VERIFY_WITH_TIMEOUT(hasRun(fixture.log), 20000);
    QCOMPARE(fixture.boxes.seen().size(), 1);
}

void TrustedInstallationTest::rowsOfferedBefore()
{
    TrustFixture fixture;
    UpdateTrust::acceptUnsigned();
    fixture.openSealedList({offeredFile("m15.msi", content)});
    QVERIFY(UpdateTrust::requireSignatures({fixture.publisher.publicKey()}));
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text, packageWithoutDigestText());
    QVERIFY(!hasRun(fixture.log));
}

// A signed offer is replaced by one that nobody verified.
void TrustedInstallationTest::rowsOfferedInBetween()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", content)});
    UpdateTrust::acceptUnsigned();
    fixture.answer(fixture.catalogue({offeredFile("m15.msi", content)}));
    QVERIFY(fixture.check());
    QVERIFY(UpdateTrust::requireSignatures({fixture.publisher.publicKey()}));
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text, packageWithoutDigestText());
}

void TrustedInstallationTest::downloadThatFails()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", content)});
    fixture.serve("/files/m15.msi", content.left(1000));
    fixture.proceedWith(0);
    QVERIFY(fixture.waitForBoxes(2));
    QCOMPARE(fixture.boxes.seen().last().text,
             QStringLiteral("Error downloading! Http status code 200"));
    QCOMPARE(refusalLines(fixture.log), QStringList());
}

void TrustedInstallationTest::progressDialogStays()
{
    TrustFixture fixture;
    fixture.openSealedList({{"m15.msi", content, digestOfExtended(gigabyte / 2)}});
    installExtended(fixture, "m15.msi", gigabyte / 2);
    QVERIFY(progressDialog());
    progressDialog()->show();
    QTRY_VERIFY_WITH_TIMEOUT(isVerifying(), 30000);
    QVERIFY(progressDialog()->isVisible());
    QVERIFY(availableDialog()->isVisible());
    QVERIFY(!hasRun(fixture.log));
    QTRY_VERIFY_WITH_TIMEOUT(hasRun(fixture.log), 30000);
    QTRY_VERIFY(!progressDialog());
}

void TrustedInstallationTest::cancelling()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", content)});
    installExtended(fixture, "m15.msi", 32 * gigabyte);
    QTRY_VERIFY_WITH_TIMEOUT(isVerifying(), 30000);
    QPointer<QObject> verification = verificationOf(fixture.client());
    QVERIFY(verification);
    progressDialog()->findChild<QPushButton*>()->click();
    QVERIFY(!QFile::exists(fixture.downloadPath()));
    QTRY_VERIFY(!verification);
    QVERIFY(!hasRun(fixture.log));
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QVERIFY(availableDialog()->isVisible());
    QTRY_VERIFY(!progressDialog());
}

// The file that was verified is the one that is opened, whatever began in between.
void TrustedInstallationTest::secondInstallationMeanwhile()
{
    TrustFixture fixture;
    fixture.openSealedList({{"m15.msi", content, digestOfExtended(gigabyte / 2)},
                            {"m16.msi", content, digestOf(other)}});
    installExtended(fixture, "m15.msi", gigabyte / 2);
    const QString first = fixture.downloadPath();
    QTRY_VERIFY_WITH_TIMEOUT(isVerifying(), 30000);
    fixture.proceedWith(1);
    QVERIFY(fixture.downloadPath() != first);
    QTRY_VERIFY_WITH_TIMEOUT(hasRun(fixture.log), 30000);
    QVERIFY(fixture.log.lines(1).filter("trying to run").first().endsWith(first));
}

void TrustedInstallationTest::clientDestroyedMeanwhile()
{
    TrustFixture fixture;
    fixture.openSealedList({offeredFile("m15.msi", content)});
    installExtended(fixture, "m15.msi", 32 * gigabyte);
    QTRY_VERIFY_WITH_TIMEOUT(isVerifying(), 30000);
    fixture.deleteClient();
    deleteDeferred();
    QVERIFY(!hasRun(fixture.log));
}

void TrustedInstallationTest::downloadPackageOpensTheBrowser()
{
    TrustFixture fixture;
    const UrlRecorder desktop;
    fixture.openSealedList({{"m15.msi", content, QString()}});
    availableDialog()->findChild<QTableWidget*>("tableWidget")->selectRow(0);
    QTest::mouseClick(availableDialog()->findChild<QPushButton*>("downloadPushButton"),
                      Qt::LeftButton);
    QCOMPARE(desktop.opened(), QList<QUrl>({QUrl("http://download.example.com/files/m15.msi")}));
    QCOMPARE(fixture.boxes.seen().size(), 0);
}

VX_TEST_MAIN(TrustedInstallationTest)
#include "tst_TrustedInstallation.moc"
