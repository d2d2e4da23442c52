#include <QtTest>

#include "host/NetworkHttp/HttpAccessHistory.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/download/EngineEvents.h"
#include "tests/download/EngineProbe.h"
#include "tests/download/QueryAnswer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"
#include "tools/server/UpdateServer.h"

using namespace vx;
using vx::test::EngineEvents;
using vx::test::EngineProbe;

namespace {

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

class QueryResultTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
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
    void secondStageCanBeCalledAlone();
    void secondStageNeedsNoRecord();

private:
    QScopedPointer<UpdateServer> m_server;
    QScopedPointer<EngineProbe> m_engine;
};

void QueryResultTest::init()
{
    HttpAccessHistory::proxies.clear();
    m_server.reset(new UpdateServer);
    QVERIFY(m_server->start());
    m_server->setReply("/", vx::test::okay(vx::test::catalogueOf({"one", "two", "three"})));
    m_engine.reset(new EngineProbe(m_server->url()));
}

void QueryResultTest::cleanup()
{
    m_engine.reset();
    m_server.reset();
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

void QueryResultTest::packagesAreKnownTheSecondTime()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(DownloadManager::countNew(events.packages), 3);

    m_server->setReply("/", vx::test::okay(vx::test::catalogueOf({"one", "two", "three", "four"})));
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 2);
    QCOMPARE(DownloadManager::countNew(events.packages), 1);
    QVERIFY(events.packages.at(2).flags.known);
    QVERIFY(!events.packages.at(3).flags.known);
}

void QueryResultTest::historyLivesInTheObject()
{
    for (int run = 0; run < 2; ++run) {
        m_engine.reset(new EngineProbe(m_server->url()));
        EngineEvents events(m_engine.data());
        m_engine->queryUpdate();
        QTRY_COMPARE(events.count("queryFinished"), 1);
        QCOMPARE(DownloadManager::countNew(events.packages), 3);
    }
}

void QueryResultTest::samePackageTwiceIsKnown()
{
    m_server->setReply("/", vx::test::okay("<s release-date='2012-06-01' file-size='5'>"
                                           "<package name='a'/><package name='b'/></s>"));
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.packages.size(), 2);
    QVERIFY(!events.packages.at(0).flags.known);
    QVERIFY(events.packages.at(1).flags.known);
    QCOMPARE(m_engine->updateHistory.size(), 1);
}

void QueryResultTest::firstSightKeepsItsTime()
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

void QueryResultTest::badAnswers_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("Service unavailable");
    QTest::newRow("cut off") << vx::test::catalogueOf({"one"}).chopped(5);
    QTest::newRow("no package") << QByteArray("<softwareList/>");
}

void QueryResultTest::badAnswers()
{
    QFETCH(QByteArray, body);
    const vx::test::LogCapture log;
    m_server->setReply("/", vx::test::okay(body));
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate(PackageInfo(), &events, "callback");
    QTRY_COMPARE(events.count("callback"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"noPackageFound", "queryFinished", "callback []"}));
    QVERIFY(!m_engine->lastCheck.isNull());
}

void QueryResultTest::badAnswerReplacesTheCatalogue()
{
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(m_engine->recentPackages().size(), 3);
    m_server->setReply("/", vx::test::okay("no catalogue"));
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QCOMPARE(m_engine->lastCatalogue, QByteArray("no catalogue"));
    QVERIFY(m_engine->recentPackages().isEmpty());
}

void QueryResultTest::statusIsNotLookedAt()
{
    ServedReply reply = vx::test::okay(vx::test::catalogueOf({"lost"}));
    reply.status = 404;
    m_server->setReply("/", reply);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.count("packageFound [lost]"), 1);
}

void QueryResultTest::unreachableServerEndsTheQuery()
{
    m_server->stop();
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(events.list.mid(1), QStringList({"noPackageFound", "queryFinished"}));
    QVERIFY(!m_engine->isQueryBusy());
}

void QueryResultTest::lastCheckMovesOn()
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

void QueryResultTest::cookieIsStoredAndNeverSent()
{
    ServedReply reply = vx::test::okay(vx::test::catalogueOf({"one"}));
    reply.headers << qMakePair(QByteArray("Set-Cookie"), QByteArray("session=42; Path=/"));
    m_server->setReply("/", reply);
    EngineEvents events(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 1);
    QCOMPARE(m_engine->serverCookie, QString("session=42; Path=/"));

    m_server->setReply("/", vx::test::okay(vx::test::catalogueOf({"one"})));
    m_engine->queryUpdate();
    QTRY_COMPARE(events.count("queryFinished"), 2);
    QVERIFY(!m_server->requests().last().headers.contains("cookie"));
    QCOMPARE(m_engine->serverCookie, QString("session=42; Path=/"));
}

void QueryResultTest::recentPackagesAreAllKnown()
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

void QueryResultTest::recentPackagesOfNothing()
{
    const vx::test::LogCapture log;
    QVERIFY(m_engine->recentPackages().isEmpty());
    QVERIFY(m_engine->recentPackages(PackageInfo()).isEmpty());
    QVERIFY(m_engine->recentPackages("a", "b").isEmpty());
    QCOMPARE(log.lines(2), QStringList()); // nothing was parsed
}

void QueryResultTest::slotsSeeThePreviousCatalogue()
{
    CuriousSlots curious(m_engine.data());
    m_engine->queryUpdate();
    QTRY_COMPARE(curious.atFinished, 3);
    QCOMPARE(curious.atFound, 0);
    QVERIFY(curious.busyAtFound);
    QVERIFY(curious.busyAtFinished);
    QTRY_VERIFY(!m_engine->isQueryBusy());

    m_server->setReply("/", vx::test::okay(vx::test::catalogueOf({"four"})));
    m_engine->queryUpdate();
    QTRY_COMPARE(curious.atFinished, 1);
    QCOMPARE(curious.atFound, 3);
}

void QueryResultTest::secondStageCanBeCalledAlone()
{
    EngineEvents events(m_engine.data());
    QBuffer input;
    input.setData(vx::test::catalogueOf({"stored"}));
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

void QueryResultTest::secondStageNeedsNoRecord()
{
    EngineEvents events(m_engine.data());
    QBuffer input;
    input.setData(vx::test::catalogueOf({"stored"}));
    QVERIFY(input.open(QIODevice::ReadOnly));
    m_engine->queryResult(&input, nullptr);
    QCOMPARE(events.list, QStringList("packageFound [stored]"));
}

VX_TEST_MAIN(QueryResultTest)
#include "tst_QueryResult.moc"
