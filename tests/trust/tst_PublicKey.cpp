#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/trust/Minisign.h"
#include "trust/internal/PublicKey.h"

using namespace vx;
using namespace vx::test;

// The keys are made by the real minisign program.
class PublicKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void readsWhatMinisignPrints();
    void whiteSpaceAroundDoesNoHarm();
    void readsAWholeFile();
    void numberIsThatOfTheComment();
    void refuses_data();
    void refuses();

private:
    const Minisign m_minisign;
};

void PublicKeyTest::readsWhatMinisignPrints()
{
    const QByteArray line = m_minisign.publicKey().toLatin1();
    const auto key = readPublicKey(line);
    QVERIFY(key.has_value());
    const QByteArray bytes = QByteArray::fromBase64(line);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(key->id.data()), 8), bytes.mid(2, 8));
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(key->key.data()), 32), bytes.mid(10));
}

void PublicKeyTest::whiteSpaceAroundDoesNoHarm()
{
    const QByteArray line = m_minisign.publicKey().toLatin1();
    QVERIFY(readPublicKey("\t " + line + " \r\n").has_value());
    QVERIFY(readPublicKey("\n\n" + line).has_value());
}

void PublicKeyTest::readsAWholeFile()
{
    const QByteArray file = m_minisign.publicKeyFile();
    const QByteArray line = m_minisign.publicKey().toLatin1();
    QVERIFY(readPublicKeyFile(file).has_value());
    QVERIFY(readPublicKeyFile(QByteArray(file).replace("\n", "\r\n")).has_value());
    QVERIFY(readPublicKeyFile(line).has_value());
    QVERIFY(!readPublicKeyFile("untrusted comment: only this").has_value());
    QVERIFY(!readPublicKeyFile(file + line + "\n").has_value());
    QVERIFY(!readPublicKey(file).has_value());
}

void PublicKeyTest::numberIsThatOfTheComment()
{
    const auto key = readPublicKey(m_minisign.publicKey().toLatin1());
    const QString comment = QString::fromLatin1(m_minisign.publicKeyFile().split('\n').first());
    QCOMPARE(comment, QStringLiteral("untrusted comment: minisign public key ") +
                          keyIdText(key->id).remove(QRegularExpression("^0+")));
    QCOMPARE(keyIdText({0xEF, 0xCD, 0xAB, 0, 0, 0, 0x02, 0}), QString("0002000000ABCDEF"));
}

void PublicKeyTest::refuses_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray line = m_minisign.publicKey().toLatin1();
    const QByteArray bytes = QByteArray::fromBase64(line);
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("white space") << QByteArray("  \n");
    QTest::newRow("a word") << QByteArray("key");
    QTest::newRow("cut off") << line.left(line.size() - 4);
    QTest::newRow("one byte more") << (bytes + 'x').toBase64();
    QTest::newRow("blank within") << QByteArray(line).insert(20, ' ');
    QTest::newRow("no base64") << QByteArray(line).replace(20, 1, "!");
    QTest::newRow("base64 for addresses") << QByteArray(line).replace(20, 1, "_");
    QTest::newRow("padding too much") << line + "=";
    QTest::newRow("another kind") << QByteArray(bytes).replace(0, 2, "RS").toBase64();
    QTest::newRow("prehashed") << QByteArray(bytes).replace(0, 2, "ED").toBase64();
}

void PublicKeyTest::refuses()
{
    QFETCH(QByteArray, text);
    QVERIFY(!readPublicKey(text).has_value());
    QVERIFY(!readPublicKeyFile(text).has_value());
}

VX_TEST_MAIN(PublicKeyTest)
#include "tst_PublicKey.moc"
