#include <QtTest>

#include <algorithm>

#include "host/FileFormatsZip/internal/read/ContentReader.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using vx::ByteView;
using vx::Inflater;

namespace {

struct Outcome
{
    bool isComplete = false;
    QByteArray content;
    qint64 consumed = 0;
};

/** Inflates @p packed, given and taken in pieces of some size. */
Outcome inflate(const QByteArray& packed, int given, int taken)
{
    Inflater inflater;
    Outcome outcome;
    ByteView left = vx::viewOf(packed);
    QByteArray piece(taken, Qt::Uninitialized);
    for (;;) {
        ByteView input = left.substr(0, static_cast<size_t>(given));
        const size_t size = input.size();
        size_t produced = 0;
        const auto result =
            inflater.step(input, piece.data(), static_cast<size_t>(taken), produced);
        left.remove_prefix(size - input.size());
        outcome.content.append(piece.constData(), static_cast<int>(produced));
        outcome.consumed = inflater.consumed();
        outcome.isComplete = result == Inflater::AtEnd;
        const bool isStuck = result == Inflater::NeedsInput && left.empty() && produced == 0;
        if (outcome.isComplete || result == Inflater::Damaged || isStuck) {
            return outcome;
        }
    }
}

/** One byte after the other, as few codes as possible, and far apart. */
QByteArray variedContent()
{
    QByteArray content;
    for (int i = 0; i < 3000; ++i) {
        content += QByteArray::number(i * i);
    }
    return content + QByteArray(70000, 'x') + content;
}

QByteArray storedBlock(const QByteArray& content, bool isLast)
{
    QByteArray block(5, '\0');
    block[0] = isLast ? 1 : 0;
    qToLittleEndian(static_cast<quint16>(content.size()), block.data() + 1);
    qToLittleEndian(static_cast<quint16>(~content.size()), block.data() + 3);
    return block + content;
}

} // namespace

/** Deflate streams by themselves: all kinds of blocks, cut and damaged anywhere. */
class InflaterTest : public QObject
{
    Q_OBJECT

private slots:
    void inflates_data();
    void inflates();
    void cutAnywhere_data() { addStreams(); }
    void cutAnywhere();
    void damagedAnywhere();
    void leavesWhatFollows();
    void refuses_data();
    void refuses();
    void beginsAnew();
    void checksum();

private:
    static void addStreams();
};

void InflaterTest::addStreams()
{
    QTest::addColumn<QByteArray>("packed");
    QTest::addColumn<QByteArray>("content");
    const QByteArray content = variedContent();
    QTest::newRow("stored") << storedBlock("content", true) << QByteArray("content");
    QTest::newRow("stored, empty") << storedBlock("", true) << QByteArray();
    QTest::newRow("stored, two blocks")
        << storedBlock("con", false) + storedBlock("tent", true) << QByteArray("content");
    // "1" the last block, "10" fixed codes, then the code for the end of it.
    QTest::newRow("fixed codes, empty") << QByteArray("\3\0", 2) << QByteArray();
    QTest::newRow("fixed codes") << vx::test::deflated("abc abc") << QByteArray("abc abc");
    QTest::newRow("fixed codes behind a stored block")
        << storedBlock("ab", false) + QByteArray("\3\0", 2) << QByteArray("ab");
    QTest::newRow("own codes") << vx::test::deflated(content.left(9000)) << content.left(9000);
}

void InflaterTest::inflates_data()
{
    addStreams();
    const QByteArray content = variedContent();
    QTest::newRow("many blocks") << vx::test::deflated(content) << content;
    QTest::newRow("zeros") << vx::test::deflated(QByteArray(1000000, '\0'))
                           << QByteArray(1000000, '\0');
}

/** Whatever the sizes of the pieces, the content is the same, and so is its end. */
void InflaterTest::inflates()
{
    QFETCH(QByteArray, packed);
    QFETCH(QByteArray, content);
    for (const int given : {1, 3, 8, 1000, 1000000}) {
        for (const int taken : {1, 7, 258, 40000, 1000000}) {
            const Outcome outcome = inflate(packed, given, taken);
            QVERIFY2(outcome.isComplete, qPrintable(QString("%1 %2").arg(given).arg(taken)));
            QVERIFY(outcome.content == content);
            QCOMPARE(outcome.consumed, qint64(packed.size()));
        }
    }
}

void InflaterTest::cutAnywhere()
{
    QFETCH(QByteArray, packed);
    QFETCH(QByteArray, content);
    for (int length = 0; length < packed.size(); ++length) {
        const Outcome outcome = inflate(packed.left(length), 1000, 500);
        QVERIFY2(!outcome.isComplete, qPrintable(QString::number(length)));
        QVERIFY(content.startsWith(outcome.content));
    }
}

/** Nothing worse happens than another content, which its checksum would give away. */
void InflaterTest::damagedAnywhere()
{
    const QByteArray content = variedContent().left(3000);
    const QByteArray packed = vx::test::deflated(content);
    for (int at = 0; at < packed.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray damaged = packed;
            damaged[at] = static_cast<char>(damaged.at(at) ^ (1 << bit));
            const Outcome outcome = inflate(damaged, 100, 100);
            const bool isSame = outcome.isComplete && outcome.content == content;
            // Behind the end of the stream, its last byte may have bits that mean nothing.
            QVERIFY2(!isSame || at == packed.size() - 1, qPrintable(QString::number(at)));
            QCOMPARE(isSame, outcome.isComplete && vx::crc32(vx::viewOf(outcome.content)) ==
                                                       vx::test::checksum(content));
        }
    }
}

void InflaterTest::leavesWhatFollows()
{
    const QByteArray packed = vx::test::deflated("content");
    for (const int given : {1, 5, 1000}) {
        const Outcome outcome = inflate(packed + QByteArray(100, '\xff'), given, 1000);
        QVERIFY(outcome.isComplete);
        QCOMPARE(outcome.consumed, qint64(packed.size()));
    }
}

void InflaterTest::refuses_data()
{
    QTest::addColumn<QByteArray>("packed");
    QTest::newRow("unknown kind of block") << QByteArray("\7\0\0\0\0", 5);
    QTest::newRow("length of a stored block") << QByteArray("\1\3\0\3\0abc", 8);
    // Fixed codes, a literal "a", and a match of three bytes at distance 30.
    QTest::newRow("goes back before the beginning") << QByteArray("\x4b\x04\x3a\x00", 4);
    QTest::newRow("text") << QByteArray("This is no stream.");
    QTest::newRow("ones") << QByteArray(100, '\xff');
}

void InflaterTest::refuses()
{
    QFETCH(QByteArray, packed);
    QVERIFY(!inflate(packed, 1000, 1000).isComplete);
    QVERIFY(!inflate(packed, 1, 1).isComplete);
}

/** What an earlier stream held can't be reached by the next one. */
void InflaterTest::beginsAnew()
{
    Inflater inflater;
    QByteArray output(1000, Qt::Uninitialized);
    const QByteArray first = vx::test::deflated("secret secret secret");
    for (const QByteArray& packed : {first, first.left(5), QByteArray("\x4b\x04\x3a\x00", 4)}) {
        inflater.begin();
        ByteView input = vx::viewOf(packed);
        size_t produced = 0;
        const auto result =
            inflater.step(input, output.data(), static_cast<size_t>(output.size()), produced);
        QCOMPARE(result == Inflater::AtEnd, packed == first);
        QVERIFY(produced <= 20);
    }
}

void InflaterTest::checksum()
{
    const QByteArray content = variedContent();
    QCOMPARE(vx::crc32({}), 0U);
    QCOMPARE(vx::crc32("123456789"), 0xCBF43926U);
    const quint32 half = vx::crc32(vx::viewOf(content.left(1001)));
    QCOMPARE(vx::crc32(vx::viewOf(content.mid(1001)), half), vx::test::checksum(content));
}

VX_TEST_MAIN(InflaterTest)
#include "tst_Inflater.moc"
