#include <QSignalSpy>
#include <QtTest>

#include "host/NetworkHttp/HttpAccessHistory.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/download/EngineEvents.h"
#include "tests/download/EngineOwner.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using vx::test::EngineEvents;
using vx::test::EngineOwner;
using vx::test::EngineProbe;

namespace {

/** A catalogue with one package per name; each is a kilobyte larger than the one before. */
QByteArray catalogue(const QList<QByteArray>& names)
{
    QByteArray text("<softwareList release-date='2012-06-01 12:30:00' release='1.0'>");
    int size = 1;
    for (const QByteArray& name : names) {
        text += "<package name='" + name + "' file-size='" + QByteArray::number(size++) +
                "kB' platform='Mac64' type='Application'/>";
    }
    return text + "</softwareList>";
}

ServedReply okay(const QByteArray& body)
{
    ServedReply reply;
    reply.body = body;
    return reply;
}

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

/** Asks for the stored packages from within each signal of a query. */
class CuriousSlots : public QObject
{
    Q_OBJECT

public:
    explicit CuriousSlots(DownloadManager* engine)
        : m_engine(engine)
    {
        connect(engine, SIGNAL(packageFound(PackageInfoList)), SLOT(found()));
        connect(engine, SIGNAL(queryFinished()), SLOT(finished()));
    }

    int atFound = -1;
    int atFinished = -1;
    bool busyAtFound = false;
    bool busyAtFinished = false;

public slots:
    void found()
    {
        atFound = m_engine->recentPackages().size();
        busyAtFound = m_engine->isQueryBusy();
    }
    void finished()
    {
        atFinished = m_engine->recentPackages().size();
        busyAtFinished = m_engine->isQueryBusy();
    }

private:
    DownloadManager* m_engine;
};

} // namespace

class QueryEngineTest : public QObject
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
    void packagesAreKnownTheSecondTime();
    void historyLivesInTheObject();
    void samePackageTwiceIsKnown();
    void firstSightKeepsItsTime();
    void badAnswers_data();
    void badAnswers();
    void badAnswerReplacesTheCatalogue();
    void statusIsNotLookedAt();
    void unreachableServerEndsTheQuery();
    void lastCheckMovesOn();
    void cookieIsStoredAndNeverSent();
    void recentPackagesAreAllKnown();
    void recentPackagesOfNothing();
    void slotsSeeThePreviousCatalogue();
    void twoQueriesBothEnd();
    void queryFollowsServerAndProxy();
    void proxyIsRemembered();
    void mayBeDeletedByItsSlot_data();
    void mayBeDeletedByItsSlot();
    void mayBeDeletedWhileRunning();
    void isNotBusyUntilItsRequestRuns();
    void filterWithASizeStartsNoDownload();
    void secondStageCanBeCalledAlone();
    void secondStageNeedsNoRecord();

private:
    QScopedPointer<UpdateServer> m_server;
    QScopedPointer<EngineProbe> m_engine;
};

void QueryEngineTest::init()
{
    HttpAccessHistory::proxies.clear();
    m_server.reset(new UpdateServer);
    QVERIFY(m_server->start());
    m_server->setReply("/", okay(catalogue({"one", "two", "three"})));
    m_engine.reset(new EngineProbe(m_server->url()));
}

void QueryEngineTest::cleanup()
{
    m_engine.reset();
    m_server.reset();
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

void QueryEngineTest::eventsComeInOrder()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, SLOT(callback(PackageInfoList)));
    QCOMPARE(events.count("queryStarted"), 1);
    QCOMPARE(events.list.size(), 1);
    QTRY_COMPARE(events.list.size(), 4);
    QCOMPARE(events.list.mid(1), QStringList({"packageFound [one two three]", "queryFinished",
                                              "callback [one two three]"}));
}

void QueryEngineTest::asksForTheServerAlone()
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

void QueryEngineTest::queryStartedNamesTheServer()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QCOMPARE(events.list.value(0), "queryStarted " + QString(m_engine->server().server));
    QCOMPARE(events.list.value(0),
             QString("queryStarted http://127.0.0.1:%1").arg(m_server->port()));
    QTRY_COMPARE(events.count("queryFinished"), 1);
}

void QueryEngineTest::filterNarrowsNothing()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate("nothing", "of", "9999", "the sort", QDateTime::currentDateTime(),
                          QStringSet{"Win32"}, QStringSet{"xx"}, &events,
                          SLOT(callback(PackageInfoList)));
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(events.count("packageFound [one two three]"), 1);
    QCOMPARE(events.count("callback [one two three]"), 1);
}

void QueryEngineTest::separateValuesBecomeTheFilter()
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

void QueryEngineTest::cameraQueryCrossesItsSets()
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

void QueryEngineTest::callbackTakesEveryForm_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("SLOT") << QByteArray(SLOT(callback(PackageInfoList)));
    QTest::newRow("signature") << QByteArray("callback(PackageInfoList)");
    QTest::newRow("bare name") << QByteArray("callback");
}

void QueryEngineTest::callbackTakesEveryForm()
{
    QFETCH(QByteArray, slot);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, slot.constData());
    QTRY_COMPARE(events.count("callback [one two three]"), 1);
    QCOMPARE(events.packages.at(1).name, QString("two"));
}

void QueryEngineTest::nullReceiverIsPassedOn()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), nullptr, "callback");
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryEngineTest::receiverMayGoBeforeTheAnswer()
{
    EngineEvents events(m_engine.data());
    QScopedPointer<EngineEvents> window(new EngineEvents(m_engine.data()));
    m_engine->queryUpdate(PackageInfo(), window.data(), "callback");
    window.reset();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryEngineTest::withoutCallbackOnlySignals()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events);
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCoreApplication::processEvents();
    QCOMPARE(events.count("callback"), 0);
    QCOMPARE(events.count("packageFound"), 1);
}

void QueryEngineTest::packagesAreKnownTheSecondTime()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(DownloadManager::countNew(events.packages), 3);

    m_server->setReply("/", okay(catalogue({"one", "two", "three", "four"})));
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 2);
    QCOMPARE(DownloadManager::countNew(events.packages), 1);
    QVERIFY(events.packages.at(2).flags.known);
    QVERIFY(!events.packages.at(3).flags.known);
}

void QueryEngineTest::historyLivesInTheObject()
{
    for (int run = 0; run < 2; ++run) {
        m_engine.reset(new EngineProbe(m_server->url()));
        EngineEvents events(m_engine.data());
        m_engine->queryUpdate();
        QTRY_COMPARE(events.count("queryFinished"), 1);
        QCOMPARE(DownloadManager::countNew(events.packages), 3);
    }
}

void QueryEngineTest::samePackageTwiceIsKnown()
{
    m_server->setReply("/", okay("<s release-date='2012-06-01' file-size='5'>"
                                 "<package name='a'/><package name='b'/></s>"));
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.packages.size(), 2);
    QVERIFY(!events.packages.at(0).flags.known);
    QVERIFY(events.packages.at(1).flags.known);
    QCOMPARE(m_engine->updateHistory.size(), 1);
}

void QueryEngineTest::firstSightKeepsItsTime()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    const QHash<QString, QDateTime> first = m_engine->updateHistory;
    QCOMPARE(first.size(), 3);
    QVERIFY(first.contains("1-2012-06-01T12:30:00-1024"));
    const QDateTime then = QDateTime::currentDateTime();
    QTRY_VERIFY(QDateTime::currentDateTime() > then);
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QCOMPARE(m_engine->updateHistory, first);
}

void QueryEngineTest::badAnswers_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("Service unavailable");
    QTest::newRow("cut off") << catalogue({"one"}).chopped(5);
    QTest::newRow("no package") << QByteArray("<softwareList/>");
}

void QueryEngineTest::badAnswers()
{
    QFETCH(QByteArray, body);
    const vx::test::LogCapture log;
    m_server->setReply("/", okay(body));
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"noPackageFound", "queryFinished", "callback []"}));
    QVERIFY(!m_engine->lastCheck.isNull());
}

void QueryEngineTest::badAnswerReplacesTheCatalogue()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(m_engine->recentPackages().size(), 3);
    m_server->setReply("/", okay("no catalogue"));
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QCOMPARE(m_engine->lastCatalogue, QByteArray("no catalogue"));
    QVERIFY(m_engine->recentPackages().isEmpty());
}

void QueryEngineTest::statusIsNotLookedAt()
{
    ServedReply reply = okay(catalogue({"lost"}));
    reply.status = 404;
    m_server->setReply("/", reply);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound [lost]"), 1);
}

void QueryEngineTest::unreachableServerEndsTheQuery()
{
    m_server->stop();
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"noPackageFound", "queryFinished"}));
    QVERIFY(!m_engine->isQueryBusy());
}

void QueryEngineTest::lastCheckMovesOn()
{
    EngineEvents events(m_engine.data());
    QVERIFY(m_engine->lastCheck.isNull());
    const QDateTime before = QDateTime::currentDateTime();
    m_engine->queryUpdate();
    QVERIFY(m_engine->lastCheck.isNull());
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QVERIFY(m_engine->lastCheck >= before);
    QVERIFY(m_engine->lastCheck <= QDateTime::currentDateTime());
}

void QueryEngineTest::cookieIsStoredAndNeverSent()
{
    ServedReply reply = okay(catalogue({"one"}));
    reply.headers << qMakePair(QByteArray("Set-Cookie"), QByteArray("session=42; Path=/"));
    m_server->setReply("/", reply);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(m_engine->serverCookie, QString("session=42; Path=/"));

    m_server->setReply("/", okay(catalogue({"one"})));
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QVERIFY(!m_server->requests().last().headers.contains("cookie"));
    QCOMPARE(m_engine->serverCookie, QString("session=42; Path=/"));
}

void QueryEngineTest::recentPackagesAreAllKnown()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);

    PackageInfo filter;
    filter.name = "nobody";
    filter.release = "9999";
    const PackageInfoList byRecord = m_engine->recentPackages(filter);
    const PackageInfoList byValues = m_engine->recentPackages(
        "x", "y", "9999", "z", QDateTime::currentDateTime(), QStringSet{"p"}, QStringSet{"l"});
    for (const PackageInfoList& list : {byRecord, byValues, m_engine->recentPackages()}) {
        QCOMPARE(list.size(), 3);
        QCOMPARE(list.at(0).name, QString("one"));
        QCOMPARE(list.at(2).name, QString("three"));
        QCOMPARE(DownloadManager::countNew(list), 0);
    }
}

void QueryEngineTest::recentPackagesOfNothing()
{
    const vx::test::LogCapture log;
    QVERIFY(m_engine->recentPackages().isEmpty());
    QVERIFY(m_engine->recentPackages(PackageInfo()).isEmpty());
    QVERIFY(m_engine->recentPackages("a", "b").isEmpty());
    QCOMPARE(log.lines(2), QStringList()); // nothing was parsed
}

void QueryEngineTest::slotsSeeThePreviousCatalogue()
{
    CuriousSlots curious(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(curious.atFinished, 3);
    QCOMPARE(curious.atFound, 0);
    QVERIFY(curious.busyAtFound);
    QVERIFY(curious.busyAtFinished);
    QTRY_VERIFY(!m_engine->isQueryBusy());

    m_server->setReply("/", okay(catalogue({"four"})));
    m_engine->queryUpdate();
    QTRY_COMPARE(curious.atFinished, 1);
    QCOMPARE(curious.atFound, 3);
}

void QueryEngineTest::twoQueriesBothEnd()
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

void QueryEngineTest::queryFollowsServerAndProxy()
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

void QueryEngineTest::proxyIsRemembered()
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

void QueryEngineTest::mayBeDeletedByItsSlot_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::newRow("queryStarted") << QByteArray(SIGNAL(queryStarted(QString)));
    QTest::newRow("packageFound") << QByteArray(SIGNAL(packageFound(PackageInfoList)));
    QTest::newRow("queryFinished") << QByteArray(SIGNAL(queryFinished()));
}

void QueryEngineTest::mayBeDeletedByItsSlot()
{
    QFETCH(QByteArray, signal);
    const EngineOwner owner(new DownloadManager(m_server->url()), signal.constData());
    owner.engine->queryUpdate();
    QTRY_VERIFY(owner.engine.isNull());
}

void QueryEngineTest::mayBeDeletedWhileRunning()
{
    ServedReply silent;
    silent.fault = ServedReply::Silent;
    m_server->setReply("/", silent);
    m_engine->queryUpdate();
    QTRY_COMPARE(m_server->requests().size(), 1);
    m_engine.reset();
}

// Whoever disables a button there by isQueryBusy() has to know it.
void QueryEngineTest::isNotBusyUntilItsRequestRuns()
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
void QueryEngineTest::filterWithASizeStartsNoDownload()
{
    EngineEvents events(m_engine.data());
    PackageInfo filter;
    filter.name = "one";
    filter.fileSize = 1024;
    m_engine->queryUpdate(filter);
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"packageFound [one two three]", "queryFinished"}));
}

void QueryEngineTest::secondStageCanBeCalledAlone()
{
    EngineEvents events(m_engine.data());
    QBuffer input;
    input.setData(catalogue({"stored"}));
    QVERIFY(input.open(QIODevice::ReadOnly));
    DownloadManager::RequestData record;
    record.callbackReceiver = &events;
    record.callbackSlot = SLOT(callback(PackageInfoList));
    m_engine->queryResult(&input, &record);
    QCOMPARE(events.list, QStringList("packageFound [stored]"));
    QTRY_COMPARE(events.count("callback [stored]"), 1);
    QVERIFY(m_engine->lastCatalogue.isEmpty());
    QVERIFY(input.isOpen());
}

void QueryEngineTest::secondStageNeedsNoRecord()
{
    EngineEvents events(m_engine.data());
    QBuffer input;
    input.setData(catalogue({"stored"}));
    QVERIFY(input.open(QIODevice::ReadOnly));
    m_engine->queryResult(&input, nullptr);
    QCOMPARE(events.list, QStringList("packageFound [stored]"));
}

VX_TEST_MAIN(QueryEngineTest)
#include "tst_QueryEngine.moc"
