#include <QtTest>

#include "host/NetworkHttp/HttpAccessHistory.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/download/EngineEvents.h"
#include "tests/download/EngineOwner.h"
#include "tests/download/EngineProbe.h"
#include "tests/download/QueryAnswer.h"
#include "tests/support/TestMain.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using vx::test::EngineEvents;
using vx::test::EngineOwner;
using vx::test::EngineProbe;

namespace {

/** What a query attached to its request, as it starts. */
class FilterWatch : public QObject
{
    Q_OBJECT

public:
    explicit FilterWatch(HttpClient* client)
    {
        connect(client, SIGNAL(requestStarted(RequestPtr)), SLOT(started(RequestPtr)));
    }

    PackageInfo filter;
    QObject* receiver = nullptr;
    const char* slot = nullptr;

public slots:
    void started(const RequestPtr& request)
    {
        const auto* record = static_cast<DownloadManager::RequestData*>(request->userData);
        filter = *record;
        receiver = record->callbackReceiver;
        slot = record->callbackSlot;
    }
};

} // namespace

class QueryRequestTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void eventsComeInOrder();
    void asksForTheServerAlone();
    void queryStartedNamesTheServer();
    void filterNarrowsNothing();
    void separateValuesBecomeTheFilter();
    void cameraQueryCrossesItsSets();
    void callbackTakesEveryForm_data();
    void callbackTakesEveryForm();
    void nullReceiverIsPassedOn();
    void receiverMayGoBeforeTheAnswer();
    void withoutCallbackOnlySignals();
    void twoQueriesBothEnd();
    void queryFollowsServerAndProxy();
    void proxyIsRemembered();
    void mayBeDeletedByItsSlot_data();
    void mayBeDeletedByItsSlot();
    void mayBeDeletedWhileRunning();
    void isNotBusyUntilItsRequestRuns();
    void filterWithASizeStartsNoDownload();

private:
    QScopedPointer<UpdateServer> m_server;
    QScopedPointer<EngineProbe> m_engine;
};

void QueryRequestTest::init()
{
    HttpAccessHistory::proxies.clear();
    m_server.reset(new UpdateServer);
    QVERIFY(m_server->start());
    m_server->setReply("/", vx::test::okay(vx::test::catalogueOf({"one", "two", "three"})));
    m_engine.reset(new EngineProbe(m_server->url()));
}

void QueryRequestTest::cleanup()
{
    m_engine.reset();
    m_server.reset();
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

void QueryRequestTest::eventsComeInOrder()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, SLOT(callback(PackageInfoList)));
    QCOMPARE(events.count("queryStarted"), 1);
    QCOMPARE(events.list.size(), 1);
    QTRY_COMPARE(events.list.size(), 4);
    QCOMPARE(events.list.mid(1), QStringList({"packageFound [one two three]", "queryFinished",
                                              "callback [one two three]"}));
}

void QueryRequestTest::asksForTheServerAlone()
{
    m_engine->setServer(m_server->url("/some/path"));
    EngineEvents events(m_engine.data());
    PackageInfo filter;
    filter.release = "4.0";
    filter.languages = QStringSet{"de"};
    m_engine->queryUpdate(filter);
    QTRY_COMPARE(events.count("queryFinished"), 1);
    const QList<ServedRequest> requests = m_server->requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().method, QByteArray("GET"));
    QCOMPARE(requests.first().target, QByteArray("/"));
    for (const QByteArray& value : requests.first().headers) {
        QVERIFY2(!value.contains("4.0") || value.contains("Mozilla"), value.constData());
    }
}

void QueryRequestTest::queryStartedNamesTheServer()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QCOMPARE(events.list.value(0), "queryStarted " + QString(m_engine->server().server));
    QCOMPARE(events.list.value(0),
             QString("queryStarted http://127.0.0.1:%1").arg(m_server->port()));
    QTRY_COMPARE(events.count("queryFinished"), 1);
}

void QueryRequestTest::filterNarrowsNothing()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate("nothing", "of", "9999", "the sort", QDateTime::currentDateTime(),
                          QStringSet{"Win32"}, QStringSet{"xx"}, &events,
                          SLOT(callback(PackageInfoList)));
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(events.count("packageFound [one two three]"), 1);
    QCOMPARE(events.count("callback [one two three]"), 1);
}

void QueryRequestTest::separateValuesBecomeTheFilter()
{
    const FilterWatch watch(&m_engine->httpClient);
    const QDateTime time(QDate(2012, 6, 1), QTime(12, 30));
    m_engine->queryUpdate("t", "n", "1.2", "BETA", time, QStringSet{"Mac32"}, QStringSet{"de"},
                          this, "objectName");
    QCOMPARE(watch.filter.type, QString("t"));
    QCOMPARE(watch.filter.name, QString("n"));
    QCOMPARE(watch.filter.publicName, QString());
    QCOMPARE(watch.filter.release, QString("1.2"));
    QCOMPARE(watch.filter.publicRelease, QString());
    QCOMPARE(watch.filter.status, QString("BETA"));
    QCOMPARE(watch.filter.date, time);
    QCOMPARE(watch.filter.platforms, QStringSet{"Mac32"});
    QCOMPARE(watch.filter.languages, QStringSet{"de"});
    QCOMPARE(watch.receiver, static_cast<QObject*>(this));
    QCOMPARE(watch.slot, "objectName");
    QCOMPARE(watch.filter.fileSize, quintptr(0));
}

void QueryRequestTest::cameraQueryCrossesItsSets()
{
    const FilterWatch watch(&m_engine->httpClient);
    m_engine->queryCameraFirmwareUpdate("4.1", "STABLE", QStringSet{"de", "fr"});
    QCOMPARE(watch.filter.type, QString("system"));
    QCOMPARE(watch.filter.name, QString());
    QCOMPARE(watch.filter.release, QString("4.1"));
    QCOMPARE(watch.filter.status, QString("STABLE"));
    QVERIFY(watch.filter.date.isNull());
    QCOMPARE(watch.filter.platforms, QStringSet({"de", "fr"}));
    QVERIFY(watch.filter.languages.isEmpty());
    QVERIFY(watch.receiver == nullptr);
    QVERIFY(watch.slot == nullptr);
}

void QueryRequestTest::callbackTakesEveryForm_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("SLOT") << QByteArray(SLOT(callback(PackageInfoList)));
    QTest::newRow("signature") << QByteArray("callback(PackageInfoList)");
    QTest::newRow("bare name") << QByteArray("callback");
}

void QueryRequestTest::callbackTakesEveryForm()
{
    QFETCH(QByteArray, slot);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, slot.constData());
    QTRY_COMPARE(events.count("callback [one two three]"), 1);
    QCOMPARE(events.packages.at(1).name, QString("two"));
}

void QueryRequestTest::nullReceiverIsPassedOn()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), nullptr, "callback");
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryRequestTest::receiverMayGoBeforeTheAnswer()
{
    EngineEvents events(m_engine.data());
    QScopedPointer<EngineEvents> window(new EngineEvents(m_engine.data()));
    m_engine->queryUpdate(PackageInfo(), window.data(), "callback");
    window.reset();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryRequestTest::withoutCallbackOnlySignals()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events);
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCoreApplication::processEvents();
    QCOMPARE(events.count("callback"), 0);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryRequestTest::twoQueriesBothEnd()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QVERIFY(m_engine->isQueryBusy());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QCOMPARE(events.count("packageFound"), 2);
    QCOMPARE(m_server->requests().size(), 2);
    QVERIFY(!m_engine->isQueryBusy());
}

void QueryRequestTest::queryFollowsServerAndProxy()
{
    EngineEvents events(m_engine.data());
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, "127.0.0.1", m_server->port(), QString(), QString()));
    m_engine->setServer(QUrl("http://elsewhere.example.com"));
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(m_server->requests().last().target, QByteArray("http://elsewhere.example.com/"));
    QCOMPARE(events.count("packageFound [one two three]"), 1);
}

void QueryRequestTest::proxyIsRemembered()
{
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, "127.0.0.1", m_server->port(), QString(), QString()));
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QCOMPARE(HttpAccessHistory::proxies.entries().size(), 1);
    QCOMPARE(HttpAccessHistory::proxies.entries().first().port, int(m_server->port()));
    QTRY_COMPARE(events.count("queryFinished"), 1);

    HttpAccessHistory::proxies.clear();
    m_engine->server().proxyPreference = HttpHost::NoProxy;
    m_engine->queryUpdate();
    QVERIFY(HttpAccessHistory::proxies.entries().isEmpty());
    QTRY_COMPARE(events.count("queryFinished"), 2);
}

void QueryRequestTest::mayBeDeletedByItsSlot_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::newRow("queryStarted") << QByteArray(SIGNAL(queryStarted(QString)));
    QTest::newRow("packageFound") << QByteArray(SIGNAL(packageFound(PackageInfoList)));
    QTest::newRow("queryFinished") << QByteArray(SIGNAL(queryFinished()));
}

void QueryRequestTest::mayBeDeletedByItsSlot()
{
    QFETCH(QByteArray, signal);
    const EngineOwner owner(new DownloadManager(m_server->url()), signal.constData());
    owner.engine->queryUpdate();
    QTRY_VERIFY(owner.engine.isNull());
}

void QueryRequestTest::mayBeDeletedWhileRunning()
{
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    m_server->setReply("/", silent);
    m_engine->queryUpdate();
    QTRY_COMPARE(m_server->requests().size(), 1);
    m_engine.reset();
}

// Whoever disables a button there by isQueryBusy() has to know it.
void QueryRequestTest::isNotBusyUntilItsRequestRuns()
{
    bool busyAtStart = true;
    connect(m_engine.data(), &DownloadManager::queryStarted, this,
            [&] { busyAtStart = m_engine->isQueryBusy(); });
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QCOMPARE(events.count("queryStarted"), 1);
    QVERIFY(!busyAtStart);
    QVERIFY(m_engine->isQueryBusy());
    QTRY_COMPARE(events.count("queryFinished"), 1);
}

// A package out of a catalogue is a filter, too.
void QueryRequestTest::filterWithASizeStartsNoDownload()
{
    EngineEvents events(m_engine.data());
    PackageInfo filter;
    filter.name = "one";
    filter.fileSize = 1024;
    m_engine->queryUpdate(filter);
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"packageFound [one two three]", "queryFinished"}));
}

VX_TEST_MAIN(QueryRequestTest)
#include "tst_QueryRequest.moc"
