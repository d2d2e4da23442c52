// Sealing, unsealing and verifying, with signatures of the real minisign program.
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tests/trust/Minisign.h"

using vx::test::Minisign;
using vx::test::runWorkbench;
using vx::test::withSeal;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

constexpr qint64 day = qint64{24} * 60 * 60;

/** Of "abc". */
const QByteArray digest = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

const QByteArray catalogue = "<softwareList base-url=\"http://h.example/\">\r\n"
                             "<package name=\"App\" release=\"2.0\" url=\"a.zip\" file-size=\"3\""
                             " sha256=\"" +
                             digest + "\"/>\r\n</softwareList>\r\n";

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString times(qint64 signedAfter, qint64 expiresAfter)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    return QString("timestamp:%1 expires:%2").arg(now + signedAfter).arg(now + expiresAfter);
}

} // namespace

class SealAndVerifyTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void sealsInPlace_data();
    void sealsInPlace();
    void sealsElsewhere();
    void refusesToSeal_data();
    void refusesToSeal();
    void unsealsByteForByte_data();
    void unsealsByteForByte();
    void unsealsElsewhere();
    void refusesToUnseal_data();
    void refusesToUnseal();
    void acceptsWhatIsRight();
    void anyOfSeveralKeysWillDo();
    void refusesCatalogues_data();
    void refusesCatalogues();
    void refusesPackages_data();
    void refusesPackages();
    void keysThatAreNone();

private:
    QString write(const QString& name, const QByteArray& content) const
    {
        return writeFile(m_folder->path(), name, content);
    }
    QString sealedFile(const QByteArray& document = catalogue, const QString& comment = QString())
    {
        return write("sealed.xml", m_minisign.sealed(document, comment));
    }

    Minisign m_minisign;
    QScopedPointer<QTemporaryDir> m_folder;
    QString m_key;
};

void SealAndVerifyTest::init()
{
    m_folder.reset(new QTemporaryDir);
    m_key = write("release.pub", m_minisign.publicKeyFile());
}

void SealAndVerifyTest::sealsInPlace_data()
{
    QTest::addColumn<int>("form");

    QTest::newRow("prehashed") << static_cast<int>(Minisign::Prehashed);
    QTest::newRow("pure") << static_cast<int>(Minisign::Pure);
}

void SealAndVerifyTest::sealsInPlace()
{
    QFETCH(int, form);

    const QString comment = "timestamp:1764000000 expires:1766592000";
    const QByteArray signature =
        m_minisign.signature(catalogue, comment, static_cast<Minisign::Form>(form));
    const QString file = write("catalogue.xml", catalogue);
    write("catalogue.xml.minisig", signature);
    const WorkbenchRun run = runWorkbench({"seal", file});
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(contentOf(file), withSeal(catalogue, signature));
    // Minisign leaves leading zeros out.
    const QByteArray keyId =
        m_minisign.publicKeyFile().split('\n').first().split(' ').last().rightJustified(16, '0');
    QCOMPARE(run.output, QString("%1: sealed, signed with the key %2 at 2025-11-24 16:00:00 UTC, "
                                 "expires at 2025-12-24 16:00:00 UTC.\n")
                             .arg(file, QString::fromLatin1(keyId)));
    QVERIFY(QFile::exists(file + ".minisig"));
}

void SealAndVerifyTest::sealsElsewhere()
{
    const QByteArray signature = m_minisign.signature(catalogue, "timestamp:1764000000");
    const QString file = write("catalogue.xml", catalogue);
    const QString named = write("named", signature);
    const QString out = m_folder->filePath("out.xml");
    const WorkbenchRun run =
        runWorkbench({"seal", file, "--signature", named, "--out", out, "--json"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(contentOf(out), withSeal(catalogue, signature));
    QCOMPARE(contentOf(file), catalogue);
    const QJsonDocument json = run.json();
    QCOMPARE(json["out"].toString(), out);
    QCOMPARE(json["signature"].toString(), named);
    QCOMPARE(json["seal"]["signedAt"].toDouble(), 1764000000.0);
    QVERIFY(json["seal"]["expires"].isNull());
    QCOMPARE(json["seal"]["trustedComment"].toString(), QString("timestamp:1764000000"));
    QVERIFY(json["seal"]["prehashed"].toBool());

    QProcess process;
    process.start(UPDATE_CATALOGUE, {"seal", "-", "--signature", named});
    process.write(catalogue);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), withSeal(catalogue, signature));
}

void SealAndVerifyTest::refusesToSeal_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("comment");
    QTest::addColumn<QString>("sentence");

    const QString good = "timestamp:1764000000";
    const char16_t wide[] = u"\ufeff<a/>\n";
    QTest::newRow("end of instruction in the comment") << catalogue << good + " ?>"
                                                       << "holds \"?>\" in a comment";
    QTest::newRow("no last end of line") << catalogue.trimmed() << good << "end of line";
    QTest::newRow("UTF-16") << QByteArray(reinterpret_cast<const char*>(wide),
                                          sizeof wide - sizeof wide[0])
                            << good << "UTF-16";
    QTest::newRow("sealed") << m_minisign.sealed(catalogue) << good << "is sealed already";
    QTest::newRow("no timestamp") << catalogue << "release 5.3"
                                  << "has no timestamp";
    QTest::newRow("two timestamps") << catalogue << good + " timestamp:1"
                                    << "or two";
    QTest::newRow("no time") << catalogue << good + " expires:soon"
                             << "minisign";
}

void SealAndVerifyTest::refusesToSeal()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, comment);
    QFETCH(QString, sentence);

    const QString file = write("catalogue.xml", document);
    write("catalogue.xml.minisig", m_minisign.signature(document, comment));
    const WorkbenchRun run = runWorkbench({"seal", file});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(sentence), qPrintable(run.errors));
    QCOMPARE(run.output, QString());
    QCOMPARE(contentOf(file), document);

    if (document != catalogue) {
        return;
    }
    write("catalogue.xml.minisig", "no signature\n");
    QVERIFY(runWorkbench({"seal", file}).errors.contains("is not a signature of minisign"));
    write("catalogue.xml", "<a>\n");
    write("catalogue.xml.minisig", m_minisign.signature("<a>\n"));
    QCOMPARE(runWorkbench({"seal", file}).exitCode, 3);
    QCOMPARE(contentOf(file), QByteArray("<a>\n"));
}

void SealAndVerifyTest::unsealsByteForByte_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("signature");

    QByteArray signature = m_minisign.signature(catalogue);
    QTest::newRow("as minisign writes") << catalogue << signature;
    QTest::newRow("CRLF") << catalogue << QByteArray(signature).replace("\n", "\r\n");
    const QByteArray latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xfc</a>\n\n \n";
    QTest::newRow("Latin-1") << latin << m_minisign.signature(latin);
}

void SealAndVerifyTest::unsealsByteForByte()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, signature);

    const QString file = write("catalogue.xml", document);
    write("catalogue.xml.minisig", signature);
    QCOMPARE(runWorkbench({"seal", file}).exitCode, 0);
    QVERIFY(QFile::remove(file + ".minisig"));
    const WorkbenchRun run = runWorkbench({"unseal", file});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output, file + ": without its seal, which is in " + file + ".minisig.\n");
    QCOMPARE(contentOf(file), document);
    QCOMPARE(contentOf(file + ".minisig"), signature);
}

void SealAndVerifyTest::unsealsElsewhere()
{
    const QByteArray signature = m_minisign.signature(catalogue);
    const QString file = write("sealed.xml", withSeal(catalogue, signature) + " \t\r\n");
    const QString out = m_folder->filePath("out.xml");
    const QString named = m_folder->filePath("named");
    const QJsonDocument json =
        runWorkbench({"unseal", file, "--out", out, "--signature", named, "--json"}).json();
    QCOMPARE(json["out"].toString(), out);
    QCOMPARE(json["signature"].toString(), named);
    QCOMPARE(contentOf(out), catalogue);
    QCOMPARE(contentOf(named), signature);

    QProcess process;
    process.start(UPDATE_CATALOGUE, {"unseal", file, "--out", "-"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), catalogue);
    QVERIFY(!QFile::exists("-.minisig"));
}

void SealAndVerifyTest::refusesToUnseal_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("sentence");

    const QByteArray sealed = m_minisign.sealed(catalogue);
    QTest::newRow("no seal") << catalogue << "has no seal";
    QTest::newRow("unreadable") << QByteArray(sealed).replace("trusted comment: t", "t")
                                << "cannot be taken off";
    QTest::newRow("something behind") << sealed + "<!-- more -->\n"
                                      << "would be lost";
}

void SealAndVerifyTest::refusesToUnseal()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, sentence);

    const QString file = write("sealed.xml", document);
    const WorkbenchRun run = runWorkbench({"unseal", file});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(sentence), qPrintable(run.errors));
    QCOMPARE(contentOf(file), document);
    QVERIFY(!QFile::exists(file + ".minisig"));
}

void SealAndVerifyTest::acceptsWhatIsRight()
{
    write("a.zip", "abc");
    const QString file = sealedFile(catalogue, times(0, 30 * day));
    const QStringList verify{"verify", file, "--key", m_key, "--files", m_folder->path()};
    const WorkbenchRun run = runWorkbench(verify);
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.startsWith(file + ": signed with the key "));
    QVERIFY(run.output.endsWith("accepts it, and every package.\n"));

    const QJsonDocument json = runWorkbench(verify + QStringList{"--json"}).json();
    QVERIFY(json["accepted"].toBool());
    QVERIFY(json["findings"].isArray() && json["findings"][0].isUndefined());
    QVERIFY(json["seal"]["expires"].isDouble());
    QCOMPARE(runWorkbench({"verify", "-", "--key", m_key}, contentOf(file)).exitCode, 0);
}

void SealAndVerifyTest::anyOfSeveralKeysWillDo()
{
    const Minisign other;
    const QString otherKey = write("other.pub", other.publicKey().toLatin1());
    const QString file = sealedFile();
    QCOMPARE(runWorkbench({"verify", file, "--key", otherKey, "--key", m_key}).exitCode, 0);
    QCOMPARE(runWorkbench({"verify", file, "--key", otherKey}).exitCode, 1);
}

void SealAndVerifyTest::refusesCatalogues_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("rule");

    const QByteArray sealed = m_minisign.sealed(catalogue);
    QTest::newRow("no seal") << catalogue << "no-seal";
    QTest::newRow("unreadable") << QByteArray(sealed).replace("timestamp", "time")
                                << "unreadable-seal";
    QTest::newRow("other key") << Minisign().sealed(catalogue) << "unknown-key";
    QTest::newRow("changed") << QByteArray(sealed).replace("2.0", "3.0") << "changed";
    QTest::newRow("comment changed")
        << QByteArray(sealed).replace("timestamp:", "timestamp:1") << "changed";
    QTest::newRow("something behind") << sealed + "<!-- more -->\n"
                                      << "bytes-behind-seal";
    QTest::newRow("expired") << m_minisign.sealed(catalogue, times(-9 * day, -2 * day))
                             << "seal-expired";
    QTest::newRow("from the future")
        << m_minisign.sealed(catalogue, times(2 * day, 9 * day)) << "from-future";
}

void SealAndVerifyTest::refusesCatalogues()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, rule);

    const QString file = write("sealed.xml", document);
    const WorkbenchRun run = runWorkbench({"verify", file, "--key", m_key});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.output.startsWith(file + ":4:1: error: "), qPrintable(run.output));
    QVERIFY2(run.output.endsWith(QString(" [%1]\n1 finding: 1 error.\n").arg(rule)),
             qPrintable(run.output));
    const QJsonDocument json = runWorkbench({"verify", file, "--key", m_key, "--json"}).json();
    QVERIFY(!json["accepted"].toBool());
    QCOMPARE(json["findings"][0]["rule"].toString(), rule);
    QCOMPARE(json["seal"].isNull(), rule == "no-seal" || rule == "unreadable-seal");
}

void SealAndVerifyTest::refusesPackages_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("rule");

    const auto changed = [](const QByteArray& before, const QByteArray& after) {
        return QByteArray(catalogue).replace(before, after);
    };
    QTest::newRow("no digest") << changed("sha256", "sha-256") << "no-digest";
    QTest::newRow("malformed") << changed(digest, "abc") << "malformed-digest";
    QTest::newRow("two") << changed("</soft", "<package url=\"a.zip\" file-size=\"3\" sha256=\"" +
                                                  QByteArray(64, '0') + "\"/></soft")
                         << "two-digests digest-mismatch";
    QTest::newRow("mismatch") << changed("ba7816", "000000") << "digest-mismatch";
    QTest::newRow("size") << changed("=\"3\"", "=\"4\"") << "size-mismatch";
    QTest::newRow("missing") << changed("a.zip", "b.zip") << "size-mismatch";
}

void SealAndVerifyTest::refusesPackages()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, rule);

    write("a.zip", "abc");
    const QString file = sealedFile(document);
    const WorkbenchRun run =
        runWorkbench({"verify", file, "--key", m_key, "--files", m_folder->path(), "--json"});
    QCOMPARE(run.exitCode, 1);
    const QJsonDocument json = run.json();
    QVERIFY(json["accepted"].toBool());
    QStringList rules;
    for (int i = 0; !json["findings"][i].isUndefined(); ++i) {
        rules.append(json["findings"][i]["rule"].toString());
    }
    QCOMPARE(rules.join(' '), rule);
}

void SealAndVerifyTest::keysThatAreNone()
{
    const QString file = sealedFile();
    for (const QByteArray& content :
         {QByteArray(), QByteArray("no key\n"), m_minisign.publicKeyFile().left(60),
          m_minisign.signature(catalogue)}) {
        const WorkbenchRun run = runWorkbench({"verify", file, "--key", write("bad.pub", content)});
        QCOMPARE(run.exitCode, 3);
        QVERIFY(run.errors.contains("is no public key of minisign"));
    }
}

VX_TEST_MAIN(SealAndVerifyTest)
#include "tst_SealAndVerify.moc"
