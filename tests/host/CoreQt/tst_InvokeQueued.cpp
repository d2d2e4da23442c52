#include <QThread>
#include <QtTest>

#include <memory>
#include <mutex>

#include "host/CoreQt/InvokeQueued.h"
#include "tests/support/TestMain.h"

namespace vx {

struct Parcel
{
    QString name;
};

using ParcelList = QList<Parcel>;

/** Defined nowhere: Qt 6 registers by itself what a slot takes and is defined. */
struct Unregistered;

class Receiver : public QObject
{
    Q_OBJECT

public:
    QStringList calls;
    QThread* thread = nullptr;
    /** Held while a call is noted. Qt's own waiting is not seen by every race detector. */
    std::mutex noting;

signals:
    void raised(ParcelList parcels);

public slots:
    void unqualified(ParcelList parcels) { note("unqualified", parcels); }
    void qualified(const vx::ParcelList& parcels) { note("qualified", parcels); }
    void inFull(QList<vx::Parcel> parcels) { note("inFull", parcels); }
    void overloaded(int number) { calls << QStringLiteral("int %1").arg(number); }
    void overloaded(const QString& text) { calls << QStringLiteral("text ") + text; }
    void overloaded(ParcelList parcels, int) { note("two", parcels); }
    void nothing() { calls << QStringLiteral("nothing"); }
    void withDefault(int a, int b = 5) { calls << QStringLiteral("%1 %2").arg(a).arg(b); }
    void foreign(vx::Parcel) { calls << QStringLiteral("foreign"); }
    void alien(const vx::Unregistered&) { calls << QStringLiteral("alien"); }
    void ten(int a, int b, int c, int d, int e, int f, int g, int h, int i, const QString& j)
    {
        calls << QStringLiteral("%1 %2").arg(a + b + c + d + e + f + g + h + i).arg(j);
    }

protected slots:
    virtual void inherited(int number) { calls << QStringLiteral("base %1").arg(number); }

private slots:
    void hidden(int number) { calls << QStringLiteral("hidden %1").arg(number); }

private:
    void note(const char* method, const ParcelList& parcels)
    {
        const std::lock_guard<std::mutex> lock(noting);
        thread = QThread::currentThread();
        QStringList names;
        for (const Parcel& parcel : parcels) {
            names << parcel.name;
        }
        calls << QLatin1String(method) + QLatin1Char(' ') + names.join(QLatin1Char('+'));
    }
};

class DerivedReceiver : public Receiver
{
    Q_OBJECT

protected slots:
    void inherited(int number) override { calls << QStringLiteral("derived %1").arg(number); }
};

} // namespace vx

namespace other {

/** Shares its last name with vx::Parcel and nothing else. */
struct Parcel
{
    double weight = 0;
};

} // namespace other

Q_DECLARE_METATYPE(vx::Parcel)
Q_DECLARE_METATYPE(vx::ParcelList)
Q_DECLARE_METATYPE(other::Parcel)

class InvokeQueuedTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { m_receiver = std::make_unique<vx::DerivedReceiver>(); }
    void callsThroughTheEventLoop();
    void takesTheMethodInAnyForm_data();
    void takesTheMethodInAnyForm();
    void findsTheParameterUnderAnyName_data();
    void findsTheParameterUnderAnyName();
    void choosesTheOverload();
    void countsTheArguments();
    void callsTheDerivedMethod();
    void callsMethodsThatAreNotPublic();
    void raisesASignal();
    void passesTenArguments();
    void warnsAndDoesNothing_data();
    void warnsAndDoesNothing();
    void refusesAnotherTypeOfThatName();
    void warnsOfAnUnregisteredType();
    void doesNothingWithoutReceiverOrMethod();
    void copiesTheArguments();
    void doesNotCallADestroyedReceiver();
    void callsInTheReceiversThread();

private:
    static void warning(const char* text)
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String(text)));
    }
    QStringList callsAfterEvents()
    {
        QCoreApplication::processEvents();
        return m_receiver->calls;
    }

    vx::ParcelList m_parcels{{QStringLiteral("a")}, {QStringLiteral("b")}};
    std::unique_ptr<vx::DerivedReceiver> m_receiver;
};

void InvokeQueuedTest::initTestCase()
{
    qRegisterMetaType<vx::Parcel>("vx::Parcel");
    qRegisterMetaType<vx::ParcelList>("vx::ParcelList");
    qRegisterMetaType<other::Parcel>("other::Parcel");
}

void InvokeQueuedTest::callsThroughTheEventLoop()
{
    vx::invokeQueued(m_receiver.get(), "unqualified", Q_ARG(vx::ParcelList, m_parcels));
    QVERIFY(m_receiver->calls.isEmpty());
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("unqualified a+b")});
}

void InvokeQueuedTest::takesTheMethodInAnyForm_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::newRow("bare name") << QByteArray("unqualified");
    QTest::newRow("SLOT") << QByteArray(SLOT(unqualified(ParcelList)));
    QTest::newRow("SIGNAL by mistake") << QByteArray(SIGNAL(unqualified(ParcelList)));
    QTest::newRow("signature") << QByteArray("unqualified(ParcelList)");
    QTest::newRow("qualified signature") << QByteArray("unqualified(vx::ParcelList)");
    QTest::newRow("untidy signature") << QByteArray("unqualified( const ParcelList & )");
    QTest::newRow("digit and name") << QByteArray("1unqualified");
}

void InvokeQueuedTest::takesTheMethodInAnyForm()
{
    QFETCH(QByteArray, method);
    vx::invokeQueued(m_receiver.get(), method.constData(), Q_ARG(vx::ParcelList, m_parcels));
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("unqualified a+b")});
}

void InvokeQueuedTest::findsTheParameterUnderAnyName_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::newRow("unqualified") << QByteArray("unqualified");
    QTest::newRow("qualified") << QByteArray("qualified");
    QTest::newRow("inFull") << QByteArray("inFull");
}

void InvokeQueuedTest::findsTheParameterUnderAnyName()
{
    QFETCH(QByteArray, method);
    vx::invokeQueued(m_receiver.get(), method.constData(), Q_ARG(vx::ParcelList, m_parcels));
    QCOMPARE(callsAfterEvents(), QStringList{QString::fromLatin1(method) + QLatin1String(" a+b")});
}

void InvokeQueuedTest::choosesTheOverload()
{
    QObject* const receiver = m_receiver.get();
    vx::invokeQueued(receiver, "overloaded", Q_ARG(int, 4));
    vx::invokeQueued(receiver, "overloaded", Q_ARG(QString, QStringLiteral("x")));
    vx::invokeQueued(receiver, "overloaded", Q_ARG(vx::ParcelList, m_parcels), Q_ARG(int, 1));
    QCOMPARE(callsAfterEvents(), (QStringList{QStringLiteral("int 4"), QStringLiteral("text x"),
                                              QStringLiteral("two a+b")}));
}

void InvokeQueuedTest::countsTheArguments()
{
    vx::invokeQueued(m_receiver.get(), "nothing");
    vx::invokeQueued(m_receiver.get(), "withDefault", Q_ARG(int, 1));
    vx::invokeQueued(m_receiver.get(), "withDefault", Q_ARG(int, 1), Q_ARG(int, 2));
    QCOMPARE(callsAfterEvents(), (QStringList{QStringLiteral("nothing"), QStringLiteral("1 5"),
                                              QStringLiteral("1 2")}));
}

void InvokeQueuedTest::callsTheDerivedMethod()
{
    vx::invokeQueued(m_receiver.get(), SLOT(inherited(int)), Q_ARG(int, 6));
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("derived 6")});
}

void InvokeQueuedTest::callsMethodsThatAreNotPublic()
{
    vx::invokeQueued(m_receiver.get(), "hidden", Q_ARG(int, 6));
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("hidden 6")});
}

void InvokeQueuedTest::raisesASignal()
{
    vx::Receiver* const receiver = m_receiver.get();
    connect(receiver, SIGNAL(raised(ParcelList)), receiver, SLOT(unqualified(ParcelList)));
    vx::invokeQueued(receiver, SIGNAL(raised(ParcelList)), Q_ARG(vx::ParcelList, m_parcels));
    QVERIFY(receiver->calls.isEmpty());
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("unqualified a+b")});
}

void InvokeQueuedTest::passesTenArguments()
{
    vx::invokeQueued(m_receiver.get(), "ten", Q_ARG(int, 1), Q_ARG(int, 2), Q_ARG(int, 3),
                     Q_ARG(int, 4), Q_ARG(int, 5), Q_ARG(int, 6), Q_ARG(int, 7), Q_ARG(int, 8),
                     Q_ARG(int, 9), Q_ARG(QString, QStringLiteral("ten")));
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("45 ten")});
}

void InvokeQueuedTest::warnsAndDoesNothing_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::newRow("no such name") << QByteArray("missing");
    QTest::newRow("no such signature") << QByteArray(SLOT(missing(ParcelList)));
    QTest::newRow("fewer parameters") << QByteArray("nothing");
    QTest::newRow("more parameters") << QByteArray("ten");
    QTest::newRow("other parameter") << QByteArray("hidden");
    QTest::newRow("signature of another overload") << QByteArray("overloaded(int)");
    QTest::newRow("only the beginning of a name") << QByteArray("unqual");
    QTest::newRow("broken signature") << QByteArray("unqualified(");
}

void InvokeQueuedTest::warnsAndDoesNothing()
{
    QFETCH(QByteArray, method);
    warning("invokeQueued: vx::DerivedReceiver has no method .*\\(vx::ParcelList\\)");
    vx::invokeQueued(m_receiver.get(), method.constData(), Q_ARG(vx::ParcelList, m_parcels));
    QVERIFY(callsAfterEvents().isEmpty());
}

void InvokeQueuedTest::refusesAnotherTypeOfThatName()
{
    warning("has no method");
    vx::invokeQueued(m_receiver.get(), "foreign", Q_ARG(other::Parcel, other::Parcel()));
    QVERIFY(callsAfterEvents().isEmpty());
}

void InvokeQueuedTest::warnsOfAnUnregisteredType()
{
    warning("unregistered datatype");
    const int anything = 0;
    vx::invokeQueued(m_receiver.get(), "alien",
                     Q_ARG(vx::Unregistered, reinterpret_cast<const vx::Unregistered&>(anything)));
    QVERIFY(callsAfterEvents().isEmpty());
}

void InvokeQueuedTest::doesNothingWithoutReceiverOrMethod()
{
    vx::invokeQueued(nullptr, "unqualified", Q_ARG(vx::ParcelList, m_parcels));
    vx::invokeQueued(m_receiver.get(), nullptr, Q_ARG(vx::ParcelList, m_parcels));
    vx::invokeQueued(m_receiver.get(), "", Q_ARG(vx::ParcelList, m_parcels));
    vx::invokeQueued(m_receiver.get(), "1", Q_ARG(vx::ParcelList, m_parcels));
    QVERIFY(callsAfterEvents().isEmpty());
}

void InvokeQueuedTest::copiesTheArguments()
{
    {
        vx::ParcelList passing{{QStringLiteral("passing")}};
        vx::invokeQueued(m_receiver.get(), "unqualified", Q_ARG(vx::ParcelList, passing));
        passing.clear();
    }
    QCOMPARE(callsAfterEvents(), QStringList{QStringLiteral("unqualified passing")});
}

void InvokeQueuedTest::doesNotCallADestroyedReceiver()
{
    auto* const receiver = new vx::Receiver;
    vx::invokeQueued(receiver, "unqualified", Q_ARG(vx::ParcelList, m_parcels));
    delete receiver;
    QVERIFY(callsAfterEvents().isEmpty());
}

void InvokeQueuedTest::callsInTheReceiversThread()
{
    QThread thread;
    QObject quitter;
    vx::Receiver* const receiver = m_receiver.get();
    receiver->moveToThread(&thread);
    quitter.moveToThread(&thread);
    vx::invokeQueued(receiver, "unqualified", Q_ARG(vx::ParcelList, m_parcels));
    QMetaObject::invokeMethod(
        &quitter, [&thread] { thread.quit(); }, Qt::QueuedConnection);
    QCoreApplication::processEvents();
    QVERIFY(receiver->calls.isEmpty());
    thread.start();
    QVERIFY(thread.wait(10000));
    const std::lock_guard<std::mutex> lock(receiver->noting);
    QCOMPARE(receiver->calls, QStringList{QStringLiteral("unqualified a+b")});
    QCOMPARE(receiver->thread, &thread);
}

VX_TEST_MAIN(InvokeQueuedTest)
#include "tst_InvokeQueued.moc"
