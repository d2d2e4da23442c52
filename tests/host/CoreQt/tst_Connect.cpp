#include <QSignalSpy>
#include <QtTest>

#include "host/CoreQt/Connect.h"
#include "tests/support/TestMain.h"

class ConnectTest : public QObject
{
    Q_OBJECT

signals:
    void raised(int value);
    void raisedInTurn(int value);

private slots:
    void init() { m_taken.clear(); }
    void reachesASlot();
    void reachesASignal();
    void endsWithTheReceiver();
    void connectsTwice();
    void honoursTheType();
    void refusesWhatDoesNotExist();
    void refusesNull();

public slots:
    void take(int value) { m_taken.append(value); }

private:
    QList<int> m_taken;
};

void ConnectTest::reachesASlot()
{
    ConnectTest sender;
    QVERIFY(vx::connect(&sender, SIGNAL(raised(int)), this, SLOT(take(int)), Qt::AutoConnection));
    emit sender.raised(7);
    QCOMPARE(m_taken, QList<int>{7});
}

void ConnectTest::reachesASignal()
{
    ConnectTest sender;
    QSignalSpy spy(this, SIGNAL(raisedInTurn(int)));
    QVERIFY(vx::connect(&sender, SIGNAL(raised(int)), this, SIGNAL(raisedInTurn(int)),
                        Qt::AutoConnection));
    emit sender.raised(8);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toInt(), 8);
    disconnect(&sender, nullptr, this, nullptr);
}

void ConnectTest::endsWithTheReceiver()
{
    ConnectTest sender;
    {
        ConnectTest receiver;
        vx::connect(&sender, SIGNAL(raised(int)), &receiver, SLOT(take(int)), Qt::AutoConnection);
    }
    emit sender.raised(1);
    QVERIFY(m_taken.isEmpty());
}

void ConnectTest::connectsTwice()
{
    ConnectTest sender;
    for (int i = 0; i < 2; ++i) {
        vx::connect(&sender, SIGNAL(raised(int)), this, SLOT(take(int)), Qt::AutoConnection);
    }
    emit sender.raised(3);
    QCOMPARE(m_taken, (QList<int>{3, 3}));
}

void ConnectTest::honoursTheType()
{
    ConnectTest sender;
    vx::connect(&sender, SIGNAL(raised(int)), this, SLOT(take(int)), Qt::QueuedConnection);
    emit sender.raised(4);
    QVERIFY(m_taken.isEmpty());
    QTRY_COMPARE(m_taken, QList<int>{4});
    QVERIFY(
        !vx::connect(&sender, SIGNAL(raised(int)), this, SLOT(take(int)), Qt::UniqueConnection));
}

void ConnectTest::refusesWhatDoesNotExist()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such signal")));
    QVERIFY(!vx::connect(this, SIGNAL(missing()), this, SLOT(take(int)), Qt::AutoConnection));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such slot")));
    QVERIFY(!vx::connect(this, SIGNAL(raised(int)), this, SLOT(missing(int)), Qt::AutoConnection));
}

void ConnectTest::refusesNull()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("nullptr")));
    QVERIFY(!vx::connect(nullptr, SIGNAL(raised(int)), this, SLOT(take(int)), Qt::AutoConnection));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("nullptr")));
    QVERIFY(!vx::connect(this, SIGNAL(raised(int)), nullptr, SLOT(take(int)), Qt::AutoConnection));
}

VX_TEST_MAIN(ConnectTest)
#include "tst_Connect.moc"
