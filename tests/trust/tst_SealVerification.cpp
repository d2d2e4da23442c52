#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/trust/Minisign.h"
#include "trust/internal/SealVerification.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray document = "<?xml version=\"1.0\"?>\n<softwareList/>\n";
constexpr qint64 signedAt = 1764000000;
constexpr qint64 day = 24 * 60 * 60;
const QString signedThen = QStringLiteral("timestamp:1764000000");

SealOutcome judge(const QByteArray& sealed, const PublicKeys& keys,
                  const SealCircumstances& circumstances = {signedAt, std::nullopt})
{
    return judgeSealed(sealed, keys, circumstances).outcome;
}

} // namespace

// What the real minisign signed is accepted, and nothing else.
class SealVerificationTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void accepted_data();
    void accepted();
    void unknownKey();
    void oneOfSeveralKeys();
    void keysWithOneNumber();
    void changedContent_data();
    void changedContent();
    void everyByteCounts_data();
    void everyByteCounts();
    void othersTrustedComment();
    void bytesBehind();
    void times_data();
    void times();
    void firstRefusalIsGiven();

private:
    static PublicKey keyOf(const Minisign& minisign)
    {
        return *readPublicKey(minisign.publicKey().toLatin1());
    }

    const Minisign m_minisign;
    const Minisign m_other;
    PublicKeys m_keys;
};

void SealVerificationTest::initTestCase()
{
    m_keys = {keyOf(m_minisign)};
}

void SealVerificationTest::accepted_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("form");
    const auto add = [](const char* name, const QByteArray& content) {
        QTest::addRow("%s, prehashed", name) << content << int(Minisign::Prehashed);
        QTest::addRow("%s, pure", name) << content << int(Minisign::Pure);
    };
    add("catalogue", document);
    add("empty", QByteArray());
    add("CRLF", QByteArray(document).replace("\n", "\r\n"));
    add("all bytes", [] {
        QByteArray bytes;
        for (int byte = 0; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
        }
        return bytes + '\n';
    }());
    add("large", QByteArray(3 << 20, 'x') + '\n');
    add("sealed before", withSeal(document, m_other.signature(document)));
}

void SealVerificationTest::accepted()
{
    QFETCH(QByteArray, content);
    QFETCH(int, form);
    const QByteArray sealed =
        m_minisign.sealed(content, signedThen, static_cast<Minisign::Form>(form));
    QCOMPARE(judge(sealed, m_keys), SealOutcome::Accepted);
}

void SealVerificationTest::unknownKey()
{
    const QByteArray sealed = m_minisign.sealed(document, signedThen);
    QCOMPARE(judge(sealed, {keyOf(m_other)}), SealOutcome::UnknownKey);
    QCOMPARE(judge(sealed, {}), SealOutcome::UnknownKey);
}

void SealVerificationTest::oneOfSeveralKeys()
{
    const PublicKeys keys{keyOf(m_other), keyOf(m_minisign)};
    QCOMPARE(judge(m_minisign.sealed(document, signedThen), keys), SealOutcome::Accepted);
    QCOMPARE(judge(m_other.sealed(document, signedThen), keys), SealOutcome::Accepted);
}

// The number is anybody's to choose.
void SealVerificationTest::keysWithOneNumber()
{
    PublicKey forged = keyOf(m_other);
    forged.id = m_keys.first().id;
    const QByteArray sealed = m_minisign.sealed(document, signedThen);
    QCOMPARE(judge(sealed, {forged}), SealOutcome::Changed);
    QCOMPARE(judge(sealed, {forged, m_keys.first()}), SealOutcome::Accepted);
}

void SealVerificationTest::changedContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("a letter") << QByteArray(document).replace("software", "Software");
    QTest::newRow("ends of lines") << QByteArray(document).replace("\n", "\r\n");
    QTest::newRow("something in front") << ' ' + document;
    QTest::newRow("something at the end") << document + '\n';
    QTest::newRow("nothing left") << QByteArray();
}

void SealVerificationTest::changedContent()
{
    QFETCH(QByteArray, content);
    for (const auto form : {Minisign::Prehashed, Minisign::Pure}) {
        const QByteArray signature = m_minisign.signature(document, signedThen, form);
        QCOMPARE(judge(withSeal(content, signature), m_keys), SealOutcome::Changed);
    }
}

void SealVerificationTest::everyByteCounts_data()
{
    QTest::addColumn<int>("form");
    QTest::newRow("prehashed") << int(Minisign::Prehashed);
    QTest::newRow("pure") << int(Minisign::Pure);
}

// Except for the untrusted comment, which is everybody's.
void SealVerificationTest::everyByteCounts()
{
    QFETCH(int, form);
    const QByteArray sealed =
        m_minisign.sealed(document, signedThen, static_cast<Minisign::Form>(form));
    const int commentBegin = sealed.indexOf("untrusted comment: ") + 19;
    const int commentEnd = sealed.indexOf('\n', commentBegin);
    for (int place = 0; place < sealed.size() - 1; ++place) {
        QByteArray changed = sealed;
        changed[place] = static_cast<char>(changed[place] ^ 1);
        const bool isFree = place >= commentBegin && place < commentEnd;
        QVERIFY2((judge(changed, m_keys) == SealOutcome::Accepted) == isFree,
                 QByteArray::number(place).constData());
    }
}

// Both signatures are real ones, but of two files.
void SealVerificationTest::othersTrustedComment()
{
    QList<QByteArray> lines = m_minisign.signature(document, signedThen).split('\n');
    const QList<QByteArray> later =
        m_minisign.signature(document + '\n', "timestamp:1764000005").split('\n');
    lines[2] = later[2];
    lines[3] = later[3];
    QCOMPARE(judge(withSeal(document, lines.join('\n')), m_keys), SealOutcome::Changed);
}

void SealVerificationTest::bytesBehind()
{
    const QByteArray sealed = m_minisign.sealed(document, signedThen);
    QCOMPARE(judge(sealed + "<!-- more -->", m_keys), SealOutcome::BytesBehind);
    QCOMPARE(judge(sealed + " \t\r\n", m_keys), SealOutcome::Accepted);
}

void SealVerificationTest::times_data()
{
    QTest::addColumn<QString>("comment");
    QTest::addColumn<qint64>("now");
    QTest::addColumn<qint64>("newestAccepted");
    QTest::addColumn<int>("outcome");
    const QString expiring = signedThen + QStringLiteral("\texpires:1764000100");
    const auto row = [](const char* name, const QString& comment, qint64 now, qint64 newest,
                        SealOutcome outcome) {
        QTest::newRow(name) << comment << now << newest << int(outcome);
    };
    row("same as before", signedThen, signedAt, signedAt, SealOutcome::Accepted);
    row("newer", signedThen, signedAt, signedAt - 1, SealOutcome::Accepted);
    row("older", signedThen, signedAt, signedAt + 1, SealOutcome::Older);
    row("years later", signedThen, signedAt + 10000 * day, -1, SealOutcome::Accepted);
    row("at its end", expiring, signedAt + 100, -1, SealOutcome::Accepted);
    row("a day after its end", expiring, signedAt + 100 + day, -1, SealOutcome::Accepted);
    row("over a day after its end", expiring, signedAt + 101 + day, -1, SealOutcome::Expired);
    row("a day ahead", signedThen, signedAt - day, -1, SealOutcome::Accepted);
    row("over a day ahead", signedThen, signedAt - day - 1, -1, SealOutcome::FromFuture);
    row("never ends", "timestamp:1764000000 expires:9223372036854775807", signedAt, -1,
        SealOutcome::Accepted);
    row("as far ahead as can be", "timestamp:9223372036854775807", signedAt, -1,
        SealOutcome::FromFuture);
    row("older and expired", expiring, signedAt + 101 + day, signedAt + 1, SealOutcome::Older);
    row("expired and ahead", "timestamp:1764000000 expires:5", signedAt - day - 1, -1,
        SealOutcome::Expired);
}

void SealVerificationTest::times()
{
    QFETCH(QString, comment);
    QFETCH(qint64, now);
    QFETCH(qint64, newestAccepted);
    SealCircumstances circumstances{now, std::nullopt};
    if (newestAccepted >= 0) {
        circumstances.newestAccepted = newestAccepted;
    }
    QTEST(int(judge(m_minisign.sealed(document, comment), m_keys, circumstances)), "outcome");
}

// One document after the other with one fault less.
void SealVerificationTest::firstRefusalIsGiven()
{
    const SealCircumstances late{signedAt + 101 + day, signedAt + 1};
    const QString comment = signedThen + QStringLiteral("\texpires:1764000100");
    const QByteArray more = "<!-- more -->";
    const QByteArray foreign = m_other.sealed(document, comment);
    QCOMPARE(judge(document + more, m_keys, late), SealOutcome::NoSeal);
    QCOMPARE(judge(QByteArray(foreign).replace("timestamp:", "time:") + more, m_keys, late),
             SealOutcome::UnreadableSeal);
    QCOMPARE(judge(' ' + foreign + more, m_keys, late), SealOutcome::UnknownKey);
    const QByteArray ours = m_minisign.sealed(document, comment);
    QCOMPARE(judge(' ' + ours + more, m_keys, late), SealOutcome::Changed);
    QCOMPARE(judge(ours + more, m_keys, late), SealOutcome::BytesBehind);
    QCOMPARE(judge(ours, m_keys, late), SealOutcome::Older);
}

VX_TEST_MAIN(SealVerificationTest)
#include "tst_SealVerification.moc"
