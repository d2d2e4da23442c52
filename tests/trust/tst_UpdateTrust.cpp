#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/trust/Minisign.h"
#include "trust/UpdateTrust.h"

using namespace vx;
using namespace vx::test;

class UpdateTrustTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { UpdateTrust::acceptUnsigned(); }
    void nothingIsRequiredByDefault();
    void keysMakeItRequired();
    void unreadableKeyChangesNothing_data();
    void unreadableKeyChangesNothing();
    void backToTheDefault();

private:
    const QString m_key = Minisign().publicKey();
};

void UpdateTrustTest::nothingIsRequiredByDefault()
{
    QVERIFY(!UpdateTrust::isRequired());
}

void UpdateTrustTest::keysMakeItRequired()
{
    QVERIFY(UpdateTrust::requireSignatures({m_key}));
    QVERIFY(UpdateTrust::isRequired());
    QVERIFY(UpdateTrust::requireSignatures({"  " + m_key + "\n", Minisign().publicKey()}));
    QVERIFY(UpdateTrust::isRequired());
}

void UpdateTrustTest::unreadableKeyChangesNothing_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("none") << QStringList();
    QTest::newRow("empty") << QStringList("");
    QTest::newRow("a word") << QStringList("key");
    QTest::newRow("one of two") << QStringList({m_key, "key"});
    QTest::newRow("beyond Latin-1") << QStringList(m_key + QChar(0x20ac));
}

void UpdateTrustTest::unreadableKeyChangesNothing()
{
    QFETCH(QStringList, keys);
    QVERIFY(!UpdateTrust::requireSignatures(keys));
    QVERIFY(!UpdateTrust::isRequired());
    QVERIFY(UpdateTrust::requireSignatures({m_key}));
    QVERIFY(!UpdateTrust::requireSignatures(keys));
    QVERIFY(UpdateTrust::isRequired());
}

void UpdateTrustTest::backToTheDefault()
{
    UpdateTrust::acceptUnsigned();
    QVERIFY(!UpdateTrust::isRequired());
    QVERIFY(UpdateTrust::requireSignatures({m_key}));
    UpdateTrust::acceptUnsigned();
    QVERIFY(!UpdateTrust::isRequired());
}

VX_TEST_MAIN(UpdateTrustTest)
#include "tst_UpdateTrust.moc"
