#include <QtTest>

#include "host/NetworkHttp/QHttpHeader.h"
#include "tests/support/TestMain.h"

class TestQHttpHeader : public QObject
{
    Q_OBJECT

private slots:
    void isEmptyAtFirst();
    void findsNamesInAnyCase();
    void keepsRepeatedFields();
    void forgetsAll();
};

void TestQHttpHeader::isEmptyAtFirst()
{
    const QHttpHeader header;
    QVERIFY(!header.hasKey("set-cookie"));
    QVERIFY(header.value("set-cookie").isNull());
    QVERIFY(header.keys().isEmpty());
}

void TestQHttpHeader::findsNamesInAnyCase()
{
    QHttpHeader header;
    header.addValue("Set-Cookie", "a=1");
    QVERIFY(header.hasKey("set-cookie"));
    QVERIFY(header.hasKey("SET-COOKIE"));
    QVERIFY(!header.hasKey("cookie"));
    QCOMPARE(header.value("set-cookie"), QString("a=1"));
    QCOMPARE(header.keys(), QStringList({"Set-Cookie"}));
}

void TestQHttpHeader::keepsRepeatedFields()
{
    QHttpHeader header;
    header.addValue("Set-Cookie", "a=1");
    header.addValue("Server", "x");
    header.addValue("set-cookie", "b=2");
    QCOMPARE(header.value("Set-Cookie"), QString("a=1"));
    QCOMPARE(header.allValues("Set-Cookie"), QStringList({"a=1", "b=2"}));
    QCOMPARE(header.keys(), QStringList({"Set-Cookie", "Server", "set-cookie"}));
}

void TestQHttpHeader::forgetsAll()
{
    QHttpHeader header;
    header.addValue("Server", "");
    QVERIFY(header.hasKey("Server"));
    header.clear();
    QVERIFY(!header.hasKey("Server"));
}

VX_TEST_MAIN(TestQHttpHeader)
#include "tst_QHttpHeader.moc"
