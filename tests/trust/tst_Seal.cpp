#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/trust/Minisign.h"
#include "trust/internal/Seal.h"
#include "trust/internal/TrustedComment.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray document = "<?xml version=\"1.0\"?>\n<softwareList/>\n";
const QString times = QStringLiteral("timestamp:1764000000\texpires:1766592000");

} // namespace

// Taking a seal apart. The signatures are the real minisign's; nothing is verified here.
class SealTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void readsBothForms_data();
    void readsBothForms();
    void readsMinisignsOwnComment();
    void linesMayEndInCrLf();
    void signatureIsThereByteForByte();
    void lastInstructionCounts();
    void commentMayNameTheInstruction();
    void noSeal_data();
    void noSeal();
    void unreadable_data();
    void unreadable();
    void whatFollows_data();
    void whatFollows();
    void times_data();
    void times();

private:
    const Minisign m_minisign;
    QByteArray m_signature;
    QByteArray m_sealed;
};

void SealTest::initTestCase()
{
    m_signature = m_minisign.signature(document, ::times);
    m_sealed = withSeal(document, m_signature);
}

void SealTest::readsBothForms_data()
{
    QTest::addColumn<int>("form");
    QTest::newRow("prehashed") << static_cast<int>(Minisign::Prehashed);
    QTest::newRow("pure") << static_cast<int>(Minisign::Pure);
}

void SealTest::readsBothForms()
{
    QFETCH(int, form);
    const SealReading reading =
        readSeal(m_minisign.sealed(document, ::times, static_cast<Minisign::Form>(form)));
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QCOMPARE(reading.seal.signedSize, qsizetype(document.size()));
    QCOMPARE(reading.seal.isPrehashed, form == Minisign::Prehashed);
    QCOMPARE(reading.seal.keyId, readPublicKey(m_minisign.publicKey().toLatin1())->id);
    QCOMPARE(reading.seal.trustedComment, ::times.toLatin1());
    QCOMPARE(reading.seal.timestamp, 1764000000);
    QCOMPARE(reading.seal.expires.value_or(0), 1766592000);
    QVERIFY(!reading.seal.hasBytesBehind);
}

void SealTest::readsMinisignsOwnComment()
{
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const SealReading reading = readSeal(m_minisign.sealed(document));
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QVERIFY(reading.seal.timestamp >= before);
    QVERIFY(reading.seal.timestamp <= QDateTime::currentSecsSinceEpoch());
    QVERIFY(!reading.seal.expires.has_value());
}

void SealTest::linesMayEndInCrLf()
{
    const SealReading plain = readSeal(m_sealed);
    const SealReading reading =
        readSeal(document + QByteArray(m_sealed.mid(document.size())).replace("\n", "\r\n"));
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QCOMPARE(reading.seal.signedSize, plain.seal.signedSize);
    QCOMPARE(reading.seal.trustedComment, plain.seal.trustedComment);
    QCOMPARE(reading.seal.signature, plain.seal.signature);
    QCOMPARE(reading.seal.globalSignature, plain.seal.globalSignature);
}

void SealTest::signatureIsThereByteForByte()
{
    for (const QByteArray& signature :
         {m_signature, QByteArray(m_signature).replace("\n", "\r\n")}) {
        const QByteArray sealed = withSeal(document, signature);
        const Seal seal = readSeal(sealed).seal;
        QCOMPARE(sealed.mid(static_cast<int>(seal.signatureBegin),
                            static_cast<int>(seal.signatureEnd - seal.signatureBegin)),
                 signature);
        QCOMPARE(sealed.left(static_cast<int>(seal.signedSize)), document);
    }
}

void SealTest::lastInstructionCounts()
{
    const SealReading reading = readSeal(withSeal(m_sealed, m_signature));
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QCOMPARE(reading.seal.signedSize, qsizetype(m_sealed.size()));
    QCOMPARE(readSeal(m_sealed + "<?minisign\n?>\n").outcome, SealOutcome::UnreadableSeal);
}

void SealTest::commentMayNameTheInstruction()
{
    const QByteArray signature =
        QByteArray(m_signature).replace("untrusted comment: ", "untrusted comment: <?minisign ");
    const SealReading reading = readSeal(withSeal(document, signature));
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QCOMPARE(reading.seal.signedSize, qsizetype(document.size()));
}

void SealTest::noSeal_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("catalogue") << document;
    QTest::newRow("longer name")
        << withSeal(document, m_signature).replace("<?minisign", "<?minisigner");
    QTest::newRow("other case") << QByteArray(m_sealed).replace("<?minisign", "<?Minisign");
    QTest::newRow("in a sentence") << document + "<!-- a seal is a <?minisign ?> behind it -->\n";
    QTest::newRow("UTF-16") << QByteArray(
        reinterpret_cast<const char*>(QString::fromLatin1(m_sealed).utf16()), 2 * m_sealed.size());
}

void SealTest::noSeal()
{
    QFETCH(QByteArray, text);
    QCOMPARE(readSeal(text).outcome, SealOutcome::NoSeal);
}

void SealTest::unreadable_data()
{
    QTest::addColumn<QByteArray>("text");
    const QList<QByteArray> lines = m_signature.split('\n'); // and an empty one
    const auto sealOf = [](QList<QByteArray> with) { return withSeal(document, with.join('\n')); };
    const auto with = [&](int line, const QByteArray& text) {
        QList<QByteArray> changed = lines;
        changed[line] = text;
        return sealOf(changed);
    };
    for (int size = document.size() + 10; size < m_sealed.size() - 2; size += 7) {
        QTest::addRow("cut off at %d", size) << m_sealed.left(size);
    }
    QTest::newRow("empty") << sealOf({});
    QTest::newRow("a line missing") << sealOf(lines.mid(1));
    QTest::newRow("last line missing") << sealOf(lines.mid(0, 3) << "");
    QTest::newRow("a line too many") << sealOf(QList<QByteArray>(lines) << "");
    QTest::newRow("empty line in front") << sealOf(QList<QByteArray>{""} + lines);
    QTest::newRow("other first line") << with(0, "comment: x");
    QTest::newRow("other third line") << with(2, "comment: timestamp:5");
    QTest::newRow("unknown kind") << with(
        1, QByteArray::fromBase64(lines[1]).replace(0, 2, "Ex").toBase64());
    QTest::newRow("kind in small letters")
        << with(1, QByteArray::fromBase64(lines[1]).replace(0, 2, "ed").toBase64());
    QTest::newRow("signature too short")
        << with(1, QByteArray::fromBase64(lines[1]).chopped(1).toBase64());
    QTest::newRow("signature too long")
        << with(1, (QByteArray::fromBase64(lines[1]) + 'x').toBase64());
    QTest::newRow("signature no base64") << with(1, QByteArray(lines[1]).replace(40, 1, "*"));
    QTest::newRow("signature beyond ASCII") << with(1, QByteArray(lines[1]).replace(40, 1, "\xc5"));
    QTest::newRow("signature with a blank") << with(1, lines[1] + ' ');
    QTest::newRow("signature without padding") << with(1, lines[1].chopped(1));
    QTest::newRow("global signature too short")
        << with(3, QByteArray::fromBase64(lines[3]).chopped(1).toBase64());
    QTest::newRow("global signature with a blank") << with(3, ' ' + lines[3]);
    QTest::newRow("end in the comment") << with(0, "untrusted comment: ?>");
    QTest::newRow("end in the trusted comment") << with(2, "trusted comment: timestamp:5 ?>");
    QTest::newRow("words beside the start")
        << QByteArray(m_sealed).replace("<?minisign\n", "<?minisign x\n");
    QTest::newRow("blank beside the start")
        << QByteArray(m_sealed).replace("<?minisign\n", "<?minisign \n");
    QTest::newRow("start not on its own line")
        << QByteArray(m_sealed).replace("\n<?minisign", "<?minisign");
    QTest::newRow("start behind a blank")
        << QByteArray(m_sealed).replace("<?minisign", " <?minisign");
    QTest::newRow("blank in front of the end") << QByteArray(m_sealed).replace("\n?>", "\n ?>");
    QTest::newRow("end on the fourth line") << QByteArray(m_sealed).replace("\n?>\n", "?>\n");
    QTest::newRow("empty line in front of the end")
        << QByteArray(m_sealed).replace("\n?>\n", "\n\n?>\n");
    QTest::newRow("lines end in CR")
        << document + m_sealed.mid(document.size()).replace('\n', '\r');
    for (const char* comment :
         {"", "file:a", "timestamp:", "timestamp: 5", "timestamp:x", "timestamp:-5", "timestamp:+5",
          "timestamp:5.0", "timestamp:0x5", "Timestamp:5", "timestamp:9223372036854775808",
          "timestamp:5\ttimestamp:5", "timestamp:5 timestamp:x",
          "timestamp:5\texpires:", "timestamp:5 expires:never", "timestamp:5 expires:6 expires:6",
          "xtimestamp:5", "expires:5"}) {
        QTest::addRow("trusted comment '%s'", comment)
            << with(2, QByteArray("trusted comment: ") + comment);
    }
}

void SealTest::unreadable()
{
    QFETCH(QByteArray, text);
    QCOMPARE(readSeal(text).outcome, SealOutcome::UnreadableSeal);
}

void SealTest::whatFollows_data()
{
    QTest::addColumn<QByteArray>("behind");
    QTest::addColumn<bool>("isSomething");
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("end of line") << QByteArray("\n") << false;
    QTest::newRow("white space") << QByteArray(" \t\r\n \n") << false;
    QTest::newRow("comment") << QByteArray("\n<!-- x -->\n") << true;
    QTest::newRow("on the same line") << QByteArray("x") << true;
    QTest::newRow("far behind") << QByteArray(5000, ' ') + '<' << true;
    QTest::newRow("NUL") << QByteArray(1, '\0') << true;
    QTest::newRow("form feed") << QByteArray("\f") << true;
    QTest::newRow("no-break space") << QByteArray("\xc2\xa0") << true;
    QTest::newRow("another instruction") << QByteArray("\n<?other?>\n") << true;
}

void SealTest::whatFollows()
{
    QFETCH(QByteArray, behind);
    const SealReading reading = readSeal(m_sealed.trimmed() + behind);
    QCOMPARE(reading.outcome, SealOutcome::Accepted);
    QTEST(reading.seal.hasBytesBehind, "isSomething");
}

void SealTest::times_data()
{
    QTest::addColumn<QByteArray>("comment");
    QTest::addColumn<qint64>("timestamp");
    QTest::addColumn<qint64>("expires");
    QTest::newRow("tabs") << QByteArray("timestamp:5\tfile:a\thashed") << 5LL << -1LL;
    QTest::newRow("blanks") << QByteArray("  expires:7  timestamp:5 ") << 5LL << 7LL;
    QTest::newRow("zero") << QByteArray("timestamp:0\texpires:0") << 0LL << 0LL;
    QTest::newRow("leading zeros") << QByteArray("timestamp:007") << 7LL << -1LL;
    QTest::newRow("largest") << QByteArray("timestamp:9223372036854775807") << 9223372036854775807LL
                             << -1LL;
    QTest::newRow("other fields") << QByteArray("a:expires:x timestamp:5 timestamps:9 note") << 5LL
                                  << -1LL;
}

void SealTest::times()
{
    QFETCH(QByteArray, comment);
    const auto read = readTrustedTimes(std::string_view(comment.constData(), comment.size()));
    QVERIFY(read.has_value());
    QTEST(read->timestamp, "timestamp");
    QTEST(read->expires.value_or(-1), "expires");
}

VX_TEST_MAIN(SealTest)
#include "tst_Seal.moc"
