// What the scenarios about signatures answer, judged as a client judges it.
#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/Scenario.h"
#include "trust/internal/SealVerification.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray catalogue = "<a base-url=\"http://download.example.com/x/\">\n"
                             "<package url=\"package.zip\"/>\n<package url=\"missing.zip\"/></a>";
const QByteArray package(20000, 'p');

QByteArray digestOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

void writeFile(const QString& name, const QByteArray& content)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

} // namespace

class SealedScenarioTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void outcomes_data();
    void outcomes();
    void replayedIsOlderTheSecondTime();
    void anotherKeyIsUnknown();
    void fillsInWhatTheFolderHas();
    void exchangesPackages();
    void takesAnOldSealOff();
    void leavesAloneWhatIsNoCatalogue();

private:
    QByteArray get(const QString& path) { return fetch(QNetworkRequest(m_server.url(path))).body; }
    bool play(const char* name) { return applyScenario(m_server, name, m_folder->path(), m_key); }
    SealReading judge(const SealCircumstances& circumstances = {QDateTime::currentSecsSinceEpoch(),
                                                                std::nullopt})
    {
        return judgeSealed(get("/"), {*readPublicKey(m_key.publicKey().toLatin1())}, circumstances);
    }

    UpdateServer m_server;
    SigningKey m_key = SigningKey::generate();
    QScopedPointer<QTemporaryDir> m_folder;
};

void SealedScenarioTest::init()
{
    m_folder.reset(new QTemporaryDir);
    writeFile(m_folder->filePath("catalogue.xml"), catalogue);
    writeFile(m_folder->filePath("package.zip"), package);
    m_server.stop();
    QVERIFY(m_server.start());
}

void SealedScenarioTest::outcomes_data()
{
    QTest::addColumn<int>("outcome");

    const auto row = [](const char* name, SealOutcome outcome) {
        QTest::newRow(name) << static_cast<int>(outcome);
    };
    row("signed", SealOutcome::Accepted);
    row("unsigned", SealOutcome::NoSeal);
    row("forged", SealOutcome::Changed);
    row("replayed", SealOutcome::Accepted);
    row("expired", SealOutcome::Expired);
    row("package-exchanged", SealOutcome::Accepted);
}

void SealedScenarioTest::outcomes()
{
    QFETCH(int, outcome);

    QVERIFY(isAboutSignatures(QTest::currentDataTag()));
    QVERIFY(play(QTest::currentDataTag()));
    QCOMPARE(static_cast<int>(judge().outcome), outcome);
    QVERIFY(!isAboutSignatures("as-it-is"));
    QVERIFY(!isAboutSignatures("no such scenario"));
}

void SealedScenarioTest::replayedIsOlderTheSecondTime()
{
    QVERIFY(play("replayed"));
    SealCircumstances circumstances{QDateTime::currentSecsSinceEpoch(), std::nullopt};
    const SealReading first = judge(circumstances);
    QVERIFY(first.outcome == SealOutcome::Accepted);
    QVERIFY(judge(circumstances).outcome == SealOutcome::Accepted);
    circumstances.newestAccepted = first.seal.timestamp;
    QVERIFY(judge(circumstances).outcome == SealOutcome::Older);

    QVERIFY(play("signed"));
    judge(circumstances);
    QVERIFY(judge(circumstances).outcome == SealOutcome::Accepted);
}

void SealedScenarioTest::anotherKeyIsUnknown()
{
    QVERIFY(applyScenario(m_server, "signed", m_folder->path()));
    QVERIFY(judge().outcome == SealOutcome::UnknownKey);
}

void SealedScenarioTest::fillsInWhatTheFolderHas()
{
    QVERIFY(play("unsigned"));
    QByteArray expected = catalogue + '\n';
    expected.replace("package.zip\"",
                     "package.zip\" file-size=\"20000\" sha256=\"" + digestOf(package) + '"');
    QCOMPARE(get("/"), expected);
    QVERIFY(play("signed"));
    QVERIFY(get("/catalogue.xml").startsWith(expected + "<?minisign\n"));
    QCOMPARE(get("/package.zip"), package);

    writeFile(m_folder->filePath("package.zip"), "new");
    QVERIFY(get("/").contains("file-size=\"3\" sha256=\"" + digestOf("new") + '"'));
}

void SealedScenarioTest::exchangesPackages()
{
    QVERIFY(play("package-exchanged"));
    QVERIFY(get("/").contains(digestOf(package)));
    const QByteArray exchanged = get("/package.zip");
    QCOMPARE(exchanged.size(), package.size());
    QVERIFY(exchanged != package);
    QCOMPARE(fetch(QNetworkRequest(m_server.url("/missing.zip"))).status, 404);
}

void SealedScenarioTest::takesAnOldSealOff()
{
    QVERIFY(play("unsigned"));
    const QByteArray plain = get("/");
    writeFile(m_folder->filePath("catalogue.xml"), m_key.sealed(catalogue, 1));
    QCOMPARE(get("/"), plain);
    QVERIFY(play("signed"));
    QCOMPARE(get("/").count("<?minisign"), 1);
    QVERIFY(judge().outcome == SealOutcome::Accepted);
}

void SealedScenarioTest::leavesAloneWhatIsNoCatalogue()
{
    writeFile(m_folder->filePath("catalogue.xml"), "no catalogue\n");
    QVERIFY(play("unsigned"));
    QCOMPARE(get("/"), QByteArray("no catalogue\n"));
    QCOMPARE(fetch(QNetworkRequest(m_server.url("/none.xml"))).status, 404);
}

VX_TEST_MAIN(SealedScenarioTest)
#include "tst_SealedScenario.moc"
