// What explain, matrix and diff say of a client that requires signatures.
#include <QtTest>

#include <csignal>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/signing/SigningKey.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

const QStringList application{"--application", "App", "--version", "1.0", "--camera", "CAM-1=4.0"};

/** The sample catalogue in which every package has a digest, apart from the one in line 2. */
QByteArray catalogue()
{
    const QByteArray digest = "\" sha256=\"" + QByteArray(64, 'a') + "\"";
    QByteArray text = sampleCatalogue();
    text.replace("\"/>", digest + "/>");
    text.replace("App.mpkg.zip" + digest, "App.mpkg.zip\"");
    return text;
}

} // namespace

class SignedViewTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void explainTellsWhatIsNotInstalled();
    void explainTellsWhyNothingIsOffered();
    void matrixTellsWhatIsNotInstalled();
    void matrixOfARefusedCatalogue();
    void diffComparesWhatTheClientSees();
    void nothingChangesWithoutAKey();
    void serveMakesAKeyForVerify();

private:
    QString sealed(const QByteArray& document, qint64 expires = 0)
    {
        return writeFile(m_folder.path(), "sealed.xml",
                         m_signer.sealed(document, QDateTime::currentSecsSinceEpoch(), expires));
    }

    QTemporaryDir m_folder;
    vx::SigningKey m_signer = vx::SigningKey::generate();
    QString m_key;
    QString m_field;
};

void SignedViewTest::initTestCase()
{
    m_key = writeFile(m_folder.path(), "key.pub", m_signer.publicKeyFile());
    m_field = writeFile(m_folder.path(), "field.csv",
                        "name,version,cameras,count\nApp,1.0,CAM-1=4.0,10\n");
}

void SignedViewTest::explainTellsWhatIsNotInstalled()
{
    const QStringList explain =
        QStringList{"explain", sealed(catalogue()), "--key", m_key} + application;
    const WorkbenchRun run = runWorkbench(explain);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(
        run.output.contains("App 2.0 | 0.0 MB | mpkg | Multilingual | Mac64 (not installed: no "
                            "\"sha256\")\n"),
        qPrintable(run.output));
    QCOMPARE(run.output.count("not installed"), 1);

    const QJsonDocument json = runWorkbench(explain + QStringList{"--json"}).json();
    QVERIFY(json["signature"]["accepted"].toBool());
    QCOMPARE(json["signature"]["refusal"].toString(), QString());
    QCOMPARE(json["rows"][0]["remark"].toString(), QString("not installed: no \"sha256\""));
    QCOMPARE(json["rows"][1]["remark"].toString(), QString());

    const QString bad = sealed(catalogue().replace("de en\" sha256=\"a", "de en\" sha256=\""));
    QVERIFY(runWorkbench(QStringList{"explain", bad, "--key", m_key} + application)
                .output.contains("(not installed: bad \"sha256\")"));
}

void SignedViewTest::explainTellsWhyNothingIsOffered()
{
    const QStringList explain =
        QStringList{"explain", sealed(catalogue(), 1), "--key", m_key} + application;
    const WorkbenchRun run = runWorkbench(explain);
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.contains("sealed.xml: refused by a client that requires signatures. Its "
                                "time was over at 1970-01-01 00:00:01 UTC: sign it anew.\n"));
    QVERIFY(run.output.contains("none: the user reads \"The list of updates has expired"));
    QVERIFY(!run.output.contains("offered "));

    const QJsonDocument json = runWorkbench(explain + QStringList{"--json"}).json();
    QVERIFY(!json["signature"]["accepted"].toBool());
    QCOMPARE(json["signature"]["refusal"].toString(), QString("seal-expired"));
    QVERIFY(json["rows"][0].isUndefined());
}

void SignedViewTest::matrixTellsWhatIsNotInstalled()
{
    const QStringList matrix{"matrix", sealed(catalogue()), "--key",
                             m_key,    "--installations",   m_field};
    const WorkbenchRun run = runWorkbench(matrix);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.output.contains("10  App 2.0 (mpkg, not installed: no \"sha256\")\n"),
             qPrintable(run.output));
    QVERIFY(run.output.contains("Firmware 4.2 (bin)"));
    QVERIFY(runWorkbench(matrix + QStringList{"--json"}).json()["signature"]["accepted"].toBool());
}

void SignedViewTest::matrixOfARefusedCatalogue()
{
    const QString plain = writeFile(m_folder.path(), "plain.xml", catalogue());
    const WorkbenchRun run =
        runWorkbench({"matrix", plain, "--key", m_key, "--installations", m_field});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.startsWith(plain + ": refused by a client that requires signatures. It has "
                                          "no seal"));
    QVERIFY(run.output.contains("\n10 installations, 10 of them offered nothing\n"));
}

void SignedViewTest::diffComparesWhatTheClientSees()
{
    const QString before =
        writeFile(m_folder.path(), "before.xml", m_signer.sealed(catalogue(), 1));
    const QStringList options{"--key", m_key, "--installations", m_field};
    const QString whole = sealed(catalogue().replace(
        "App.mpkg.zip\"", "App.mpkg.zip\" sha256=\"" + QByteArray(64, 'a') + '"'));
    const WorkbenchRun run = runWorkbench(QStringList{"diff", before, whole} + options);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.output.contains("other      Application App: App 2.0 (mpkg, not installed: no "
                                 "\"sha256\") -> App 2.0 (mpkg)\n"),
             qPrintable(run.output));

    // Whoever has seen the one takes no older one.
    const QString older = writeFile(m_folder.path(), "older.xml", m_signer.sealed(catalogue(), 1));
    const WorkbenchRun back = runWorkbench(QStringList{"diff", whole, older} + options);
    QVERIFY(back.output.contains("older.xml: refused by a client that requires signatures. It is "
                                 "older than one that was accepted before.\n"));
    QCOMPARE(back.exitCode, 1);

    const QString plain = writeFile(m_folder.path(), "plain.xml", catalogue());
    const QStringList diff = QStringList{"diff", before, plain, "--fail-on", "downgrade"} + options;
    QCOMPARE(runWorkbench(diff).exitCode, 1);
    QVERIFY(runWorkbench(diff).output.contains("lost       Application App"));
    const QJsonDocument json = runWorkbench(diff + QStringList{"--json"}).json();
    QVERIFY(json["signatureBefore"]["accepted"].toBool());
    QCOMPARE(json["signatureAfter"]["refusal"].toString(), QString("no-seal"));
}

void SignedViewTest::nothingChangesWithoutAKey()
{
    const QString file = sealed(catalogue(), 1);
    QStringList explain = QStringList{"explain", "-"} + application;
    QCOMPARE(runWorkbench({QStringList{"explain", file} + application}).output,
             runWorkbench(explain, sampleCatalogue()).output);
    const QJsonDocument json =
        runWorkbench(QStringList{"explain", file, "--json"} + application).json();
    QVERIFY(json["signature"].isUndefined());
    QVERIFY(json["rows"][0]["remark"].isUndefined());
    const QJsonDocument matrix =
        runWorkbench({"matrix", file, "--installations", m_field, "--json"}).json();
    QVERIFY(matrix["signature"].isUndefined());
}

void SignedViewTest::serveMakesAKeyForVerify()
{
    const QTemporaryDir served;
    writeFile(served.path(), "catalogue.xml", "<a><package url=\"http://h.example/a.zip\"/></a>");
    writeFile(served.path(), "a.zip", "abc");
    QProcess server;
    server.start(UPDATE_CATALOGUE, {"serve", served.path(), "--port", "0", "--scenario", "signed"});
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT(
        (said += server.readAllStandardOutput()).contains("The public key of this run: "), 20000);
    QTRY_VERIFY_WITH_TIMEOUT((said += server.readAllStandardOutput()).endsWith('\n'), 20000);
    const QString address = QString(said).section(" at ", 1, 1).section('\n', 0, 0);
    const QByteArray key = said.mid(said.indexOf("this run: ") + 10, 56);
    const QString keyFile = writeFile(m_folder.path(), "served.pub", key);
    const WorkbenchRun run =
        runWorkbench({"verify", address, "--key", keyFile, "--files", served.path()});
    QVERIFY2(run.exitCode == 0, qPrintable(run.output + run.errors));
    ::kill(static_cast<pid_t>(server.processId()), SIGTERM);
    QVERIFY(server.waitForFinished(20000));
}

VX_TEST_MAIN(SignedViewTest)
#include "tst_SignedView.moc"
