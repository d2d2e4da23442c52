// What lint says of catalogues that are sealed, or that are to be.
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/LintRun.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/signing/SigningKey.h"

using vx::test::lint;
using vx::test::rulesOf;

namespace {

constexpr qint64 day = qint64{24} * 60 * 60;

qint64 now()
{
    return QDateTime::currentSecsSinceEpoch();
}

const vx::SigningKey& key()
{
    static const vx::SigningKey pair = vx::SigningKey::generate();
    return pair;
}

/** The sound catalogue with a digest at each of its packages. */
QByteArray withDigests()
{
    QByteArray catalogue = vx::test::soundCatalogue();
    catalogue.replace("<url>Manager", "<sha256>" + QByteArray(64, 'a') + "</sha256><url>Manager");
    catalogue.replace("name=\"Firmware\"",
                      "name=\"Firmware\" sha256=\" " + QByteArray(64, 'B') + '"');
    return catalogue;
}

QByteArray sealed(const QByteArray& catalogue, qint64 expires = 0)
{
    return key().sealed(catalogue, now(), expires);
}

vx::LintOptions forSigning(const QString& files = QString())
{
    vx::LintOptions options = vx::test::clientOptions();
    options.isSigned = true;
    options.files = files;
    return options;
}

} // namespace

class LintSignaturesTest : public QObject
{
    Q_OBJECT

private slots:
    void soundCatalogueHasNoFinding();
    void unsignedCataloguesNeedNoDigest();
    void digests_data();
    void digests();
    void oneAddressTwoDigests();
    void digestsAreKnownAtPackagesOnly();
    void comparesDigestsWithFiles();
    void seals_data();
    void seals();
};

void LintSignaturesTest::soundCatalogueHasNoFinding()
{
    QCOMPARE(rulesOf(lint(withDigests(), forSigning())), QStringList());
    QCOMPARE(rulesOf(lint(sealed(withDigests(), now() + 30 * day))), QStringList());
    QCOMPARE(rulesOf(lint(sealed(withDigests()))), QStringList());
}

void LintSignaturesTest::unsignedCataloguesNeedNoDigest()
{
    QCOMPARE(rulesOf(lint(vx::test::soundCatalogue())), QStringList());
    QCOMPARE(rulesOf(lint(withDigests().replace("aaaa", "no"))), QStringList());
}

void LintSignaturesTest::digests_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<int>("column");

    const QByteArray digest(64, 'a');
    const QByteArray element = "<sha256>" + digest + "</sha256>";
    const auto row = [](const char* rule, const QByteArray& before, const QByteArray& after,
                        int column, const char* sentence) {
        QTest::newRow(rule) << before << after << QString(sentence) << column;
    };
    row("no-digest", element, "", 3, "It has no \"sha256\" of its own");
    row("malformed-digest", digest, digest.mid(1), 5, "is not 64 hexadecimal digits");
    row("malformed-digest long", digest, digest + '0', 5, "is not 64 hexadecimal digits");
    row("malformed-digest letters", digest, digest.mid(1) + 'g', 5, "is not 64 hexadecimal");
    row("malformed-digest empty", element, "<sha256/>", 5, "is not 64 hexadecimal digits");
    row("malformed-digest near", element, "<file sha256=\"\"/>" + element, 5, "is not 64");
}

void LintSignaturesTest::digests()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, sentence);
    QFETCH(int, column);

    const QByteArray catalogue = withDigests().replace(before, after);
    const QString rule = QString(QTest::currentDataTag()).section(' ', 0, 0);
    for (const vx::FindingList& findings :
         {lint(catalogue, forSigning()), lint(sealed(catalogue))}) {
        QCOMPARE(rulesOf(findings), QStringList{rule});
        QCOMPARE(findings.first().severity, vx::Severity::Error);
        QCOMPARE(findings.first().position.column, column);
        QCOMPARE(findings.first().package, QString("Manager 5.3"));
        QVERIFY2(findings.first().sentence.contains(sentence),
                 qPrintable(findings.first().sentence));
    }
}

void LintSignaturesTest::oneAddressTwoDigests()
{
    vx::LintOptions options = forSigning();
    options.rules = QStringList{"two-digests"};
    const QByteArray same = withDigests().replace("firmware.bin", "Manager.mpkg.zip");
    const vx::FindingList findings = lint(same, options);
    QCOMPARE(rulesOf(findings), QStringList{"two-digests"});
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings.first().package, QString("Firmware 4.2"));
    QVERIFY(findings.first().sentence.contains("The package of line 3 has the same address"));
    QCOMPARE(
        rulesOf(lint(QByteArray(same).replace(QByteArray(64, 'B'), QByteArray(64, 'A')), options)),
        QStringList());
    QCOMPARE(rulesOf(lint(QByteArray(same).replace(QByteArray(64, 'B'), "no"), options)),
             QStringList{"two-digests"});
    // Clients go by the address, so that one of both may do without.
    options.rules = QStringList{"no-digest"};
    QCOMPARE(rulesOf(lint(QByteArray(same).replace(" sha256=", " comment="), options)),
             QStringList());
}

void LintSignaturesTest::digestsAreKnownAtPackagesOnly()
{
    const vx::FindingList findings =
        lint(withDigests().replace("status=\"STABLE\"", "status=\"STABLE\" sha256=\"x\""));
    QCOMPARE(rulesOf(findings), QStringList{"unknown-attribute"});
    QVERIFY(findings.first().sentence.endsWith("It has no effect there: give it to each package."));
    QVERIFY(lint(withDigests().replace("sha256=", "sha-256="))
                .first()
                .sentence.endsWith("Did you mean \"sha256\"?"));
    QCOMPARE(rulesOf(lint(withDigests().replace("<url>Manager", "<sha256/><url>Manager"))),
             QStringList{"repeated-field"});
}

void LintSignaturesTest::comparesDigestsWithFiles()
{
    const QTemporaryDir folder;
    vx::test::writeFile(folder.path(), "Manager.mpkg.zip", "abc");
    vx::LintOptions options = forSigning(folder.path());
    options.rules = QStringList{"digest-mismatch"};
    const vx::FindingList findings = lint(withDigests(), options);
    QCOMPARE(rulesOf(findings), QStringList{"digest-mismatch"});
    QCOMPARE(findings.size(), 1);
    QVERIFY(findings.first().sentence.contains(
        "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
    const QByteArray right = withDigests().replace(
        QByteArray(64, 'a'), "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD");
    QCOMPARE(rulesOf(lint(right, options)), QStringList());
    options.isSigned = false;
    QCOMPARE(rulesOf(lint(withDigests(), options)), QStringList());
    QCOMPARE(rulesOf(lint(sealed(withDigests()), options)), QStringList{"digest-mismatch"});
}

void LintSignaturesTest::seals_data()
{
    QTest::addColumn<QByteArray>("catalogue");
    QTest::addColumn<QString>("sentence");

    const QByteArray good = sealed(withDigests());
    const auto row = [](const char* rule, const QByteArray& catalogue, const char* sentence) {
        QTest::newRow(rule) << catalogue << QString(sentence);
    };
    row("unreadable-seal", QByteArray(good).replace("timestamp", "time"), "one timestamp");
    row("bytes-behind-seal", good + "<!-- more -->\n", "which nobody signed");
    row("seal-expired", sealed(withDigests(), now() - 60), "sign it anew");
    row("seal-expiring", sealed(withDigests(), now() + 13 * day), "sign it anew");
    row("seal-expiring now", sealed(withDigests(), now() + 60), "from a day later");
}

void LintSignaturesTest::seals()
{
    QFETCH(QByteArray, catalogue);
    QFETCH(QString, sentence);

    const vx::FindingList findings = lint(catalogue);
    const QString rule = QString(QTest::currentDataTag()).section(' ', 0, 0);
    QCOMPARE(rulesOf(findings), QStringList{rule});
    QCOMPARE(findings.first().position.line, 15);
    QCOMPARE(findings.first().position.column, 1);
    QVERIFY2(findings.first().sentence.contains(sentence), qPrintable(findings.first().sentence));
}

VX_TEST_MAIN(LintSignaturesTest)
#include "tst_LintSignatures.moc"
