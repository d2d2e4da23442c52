#include <QtTest>

#include "host/NetworkHttp/QHttpHeader.h"
#include "tests/support/TestMain.h"

class QHttpHeaderTest : public QObject
{
    Q_OBJECT

private slots:
    void isEmptyAtFirst();
    void findsNamesInAnyCase();
    void keepsRepeatedFields();
    void forgetsAll();
};

void QHttpHeaderTest::isEmptyAtFirst()
{
    const QHttpHeader header;
    QVERIFY(!header.hasKey("set-cookie"));
    QVERIFY(header.value("set-cookie").isNull());
    QVERIFY(header.keys().isEmpty());
}

void QHttpHeaderTest::findsNamesInAnyCase()
{
    QHttpHeader header;
    header.addValue("Set-Cookie", "a=1");
    QVERIFY(header.hasKey("set-cookie"));
    QVERIFY(header.hasKey("SET-COOKIE"));
    QVERIFY(!header.hasKey("cookie"));
    QCOMPARE(header.value("set-cookie"), QString("a=1"));
    QCOMPARE(header.keys(), QStringList({"Set-Cookie"}));
}

void QHttpHeaderTest::keepsRepeatedFields()
{
    QHttpHeader header;
    header.addValue("Set-Cookie", "a=1");
    header.addValue("Server", "x");
    header.addValue("set-cookie", "b=2");
    QCOMPARE(header.value("Set-Cookie"), QString("a=1"));
    QCOMPARE(header.allValues("Set-Cookie"), QStringList({"a=1", "b=2"}));
    QCOMPARE(header.keys(), QStringList({"Set-Cookie", "Server", "set-cookie"}));
}

void QHttpHeaderTest::forgetsAll()
{
    QHttpHeader header;
    header.addValue("Server", "");
    QVERIFY(header.hasKey("Server"));
    header.clear();
    QVERIFY(!header.hasKey("Server"));
}

VX_TEST_MAIN(QHttpHeaderTest)
#include "tst_QHttpHeader.moc"
