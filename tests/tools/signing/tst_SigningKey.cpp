// The keys and signatures are held against the real minisign program, in both forms.
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tools/signing/SigningKey.h"

using vx::SigningKey;

namespace {

const char document[] = "<?xml version=\"1.0\"?>\n<softwareList/>\n";

QString write(const QTemporaryDir& folder, const QString& name, const QByteArray& content)
{
    QFile file(folder.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
               ? file.fileName()
               : QString();
}

/** What minisign prints, or nothing if it refuses. */
QByteArray minisign(const QStringList& arguments)
{
    QProcess process;
    process.start("minisign", arguments);
    const bool done = process.waitForFinished(20000) && process.exitCode() == 0;
    return done ? process.readAllStandardOutput() : QByteArray();
}

/** The signature file that stands in @p sealed. */
QByteArray signatureIn(const QByteArray& sealed)
{
    const QByteArray begin = "<?minisign\n";
    const auto from = sealed.lastIndexOf(begin) + begin.size();
    return sealed.mid(from, sealed.lastIndexOf("?>") - from);
}

} // namespace

class SigningKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void minisignAccepts_data();
    void minisignAccepts();
    void minisignReadsThePublicKeyFile();
    void anotherKeyIsAnotherKey();
    void sealStandsBehindTheDocument();
    void endOfLineIsAdded();
};

void SigningKeyTest::minisignAccepts_data()
{
    QTest::addColumn<int>("form");

    QTest::newRow("prehashed") << static_cast<int>(SigningKey::Prehashed);
    QTest::newRow("pure") << static_cast<int>(SigningKey::Pure);
}

void SigningKeyTest::minisignAccepts()
{
    QFETCH(int, form);

    const QTemporaryDir folder;
    const SigningKey key = SigningKey::generate();
    const QByteArray sealed =
        key.sealed(document, 1764000000, 1766592000, static_cast<SigningKey::Form>(form));
    const QString content = write(folder, "catalogue.xml", document);
    const QString signature = write(folder, "catalogue.xml.minisig", signatureIn(sealed));
    const QByteArray said = minisign({"-V", "-P", key.publicKey(), "-m", content});
    QVERIFY(said.contains("Trusted comment: timestamp:1764000000\texpires:1766592000\n"));
    // Asked for the prehashed form alone, minisign refuses the other.
    QCOMPARE(minisign({"-V", "-H", "-P", key.publicKey(), "-m", content}).isEmpty(),
             form == SigningKey::Pure);

    write(folder, "catalogue.xml", QByteArray(document).replace("software", "Software"));
    QCOMPARE(minisign({"-V", "-P", key.publicKey(), "-m", content}), QByteArray());
    write(folder, "catalogue.xml", document);
    write(folder, "catalogue.xml.minisig", signatureIn(sealed).replace("17665", "17666"));
    QCOMPARE(minisign({"-V", "-P", key.publicKey(), "-m", content}), QByteArray());
}

void SigningKeyTest::minisignReadsThePublicKeyFile()
{
    const QTemporaryDir folder;
    const SigningKey key = SigningKey::generate();
    const QString content = write(folder, "a", document);
    write(folder, "a.minisig", key.signatureFile(document, "timestamp:1"));
    const QString file = write(folder, "key.pub", key.publicKeyFile());
    QVERIFY(minisign({"-V", "-p", file, "-m", content}).contains("Trusted comment: timestamp:1\n"));
}

void SigningKeyTest::anotherKeyIsAnotherKey()
{
    const QTemporaryDir folder;
    const SigningKey key = SigningKey::generate();
    const SigningKey other = SigningKey::generate();
    QVERIFY(key.publicKey() != other.publicKey());
    const QString content = write(folder, "a", document);
    write(folder, "a.minisig", key.signatureFile(document, "timestamp:1"));
    QCOMPARE(minisign({"-V", "-P", other.publicKey(), "-m", content}), QByteArray());
}

void SigningKeyTest::sealStandsBehindTheDocument()
{
    const QByteArray sealed = SigningKey::generate().sealed(document, 5);
    QVERIFY(sealed.startsWith(QByteArray(document) + "<?minisign\nuntrusted comment: "));
    QVERIFY(sealed.endsWith("=\n?>\n"));
    QVERIFY(sealed.contains("\ntrusted comment: timestamp:5\n"));
    QCOMPARE(signatureIn(sealed).count('\n'), 4);
    QCOMPARE(sealed.count("?>"), 2);
}

void SigningKeyTest::endOfLineIsAdded()
{
    const SigningKey key = SigningKey::generate();
    QVERIFY(key.sealed("<a/>", 5).startsWith("<a/>\n<?minisign\n"));
    QVERIFY(key.sealed("<a/>\r\n", 5).startsWith("<a/>\r\n<?minisign\n"));
}

VX_TEST_MAIN(SigningKeyTest)
#include "tst_SigningKey.moc"
