#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/server/RawConnection.h"
#include "tests/tools/server/WebClient.h"
#include "tools/server/Scenario.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray catalogue = "<softwareList><package name=\"Sample\"/></softwareList>";
const QByteArray package(20000, 'p');
constexpr int quietMs = 300;
constexpr int patienceMs = 20000;

void writeFile(const QString& name, const QByteArray& content)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

} // namespace

class ScenarioTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void describesEveryScenario();
    void knowsNoOther();
    void servesTheCatalogueIntact_data();
    void servesTheCatalogueIntact();
    void servesThePackageIntact_data();
    void servesThePackageIntact();
    void upToDateHasPackagesForOthersOnly();
    void emptyHasNoPackage();
    void malformedIsNoXml();
    void redirectEndsAtTheCatalogue();
    void redirectLoopNeverEnds();
    void silentNeverAnswers();
    void breaksThePackageOff_data();
    void breaksThePackageOff();
    void long404IsLongerThanThePackage();
    void captivePortalAnswersEverything();
    void redirect308IsOneHop();
    void earlyHintsComeFirst();
    void endlessHeadersHaveNoEnd();
    void lastChunkIsMissing();
    void halfOfTheLengthIsAnnounced();
    void slowTakesItsTime();
    void proxyPasswordIsDemandedUntilTheNextScenario();
    void missingFilesAreNotFound_data();
    void missingFilesAreNotFound();
    void servesNothingOutsideTheFolder();

private:
    WebResult get(const QString& path) { return fetch(QNetworkRequest(m_server->url(path))); }
    bool play(const char* name) { return applyScenario(*m_server, name, m_folder->path()); }

    QByteArray bytesOf(const QByteArray& path, int enough);

    QScopedPointer<UpdateServer> m_server;
    QScopedPointer<QTemporaryDir> m_folder;
};

void ScenarioTest::init()
{
    m_folder.reset(new QTemporaryDir);
    writeFile(m_folder->filePath("catalogue.xml"), catalogue);
    writeFile(m_folder->filePath("package.zip"), package);
    m_server.reset(new UpdateServer);
    QVERIFY(m_server->start());
}

void ScenarioTest::cleanup()
{
    m_server.reset();
    m_folder.reset();
}

void ScenarioTest::describesEveryScenario()
{
    const QStringList names = scenarioNames();
    for (const char* name :
         {"up-to-date", "empty", "malformed", "redirect", "redirect-loop", "silent", "short",
          "long-404", "stall-at-99", "reset", "captive-portal", "slow", "proxy-password",
          "redirect-308", "missing-last-chunk", "wrong-length", "early-hints", "endless-headers"}) {
        QVERIFY2(names.contains(QLatin1String(name)), name);
    }
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
    for (const QString& name : names) {
        QVERIFY2(!scenarioDescription(name).isEmpty(), qPrintable(name));
        QVERIFY2(applyScenario(*m_server, name, m_folder->path()), qPrintable(name));
    }
}

void ScenarioTest::knowsNoOther()
{
    QVERIFY(play("as-it-is"));
    QVERIFY(!play("no such scenario"));
    QVERIFY(!play(""));
    QVERIFY(scenarioDescription("no such scenario").isEmpty());
    QCOMPARE(get("/").body, catalogue);
}

void ScenarioTest::servesTheCatalogueIntact_data()
{
    QTest::addColumn<QString>("scenario");
    for (const char* name :
         {"as-it-is", "short", "long-404", "stall-at-99", "reset", "slow", "proxy-password"}) {
        QTest::newRow(name) << name;
    }
}

void ScenarioTest::servesTheCatalogueIntact()
{
    QFETCH(QString, scenario);
    QVERIFY(applyScenario(*m_server, scenario, m_folder->path()));
    QCOMPARE(get("/").body, catalogue);
    const WebResult named = get("/catalogue.xml");
    QCOMPARE(named.status, 200);
    QCOMPARE(named.body, catalogue);
    QCOMPARE(named.contentType, QByteArray("text/xml"));
}

void ScenarioTest::servesThePackageIntact_data()
{
    QTest::addColumn<QString>("scenario");
    for (const char* name : {"as-it-is", "up-to-date", "empty", "malformed", "redirect",
                             "redirect-loop", "proxy-password"}) {
        QTest::newRow(name) << name;
    }
}

void ScenarioTest::servesThePackageIntact()
{
    QFETCH(QString, scenario);
    QVERIFY(applyScenario(*m_server, scenario, m_folder->path()));
    const WebResult result = get("/package.zip");
    QCOMPARE(result.status, 200);
    QCOMPARE(result.body, package);
}

void ScenarioTest::upToDateHasPackagesForOthersOnly()
{
    QVERIFY(play("up-to-date"));
    QDomDocument document;
    QVERIFY(document.setContent(get("/").body));
    const QDomElement other = document.documentElement().firstChildElement("package");
    QVERIFY(!other.isNull());
    QVERIFY(!other.attribute("platform").isEmpty());
    QVERIFY(!other.attribute("platform").startsWith("Mac"));
}

void ScenarioTest::emptyHasNoPackage()
{
    QVERIFY(play("empty"));
    QDomDocument document;
    QVERIFY(document.setContent(get("/").body));
    QVERIFY(!document.documentElement().hasChildNodes());
}

void ScenarioTest::malformedIsNoXml()
{
    QVERIFY(play("malformed"));
    QCOMPARE(get("/").status, 200);
    QDomDocument document;
    QVERIFY(!document.setContent(get("/").body));
}

void ScenarioTest::redirectEndsAtTheCatalogue()
{
    QVERIFY(play("redirect"));
    const WebResult first = get("/");
    QCOMPARE(first.status, 302);
    QVERIFY(!first.redirect.isRelative());
    const WebResult second = fetch(QNetworkRequest(first.redirect));
    QCOMPARE(second.status, 200);
    QCOMPARE(second.body, catalogue);
}

void ScenarioTest::redirectLoopNeverEnds()
{
    QVERIFY(play("redirect-loop"));
    QUrl url = m_server->url("/catalogue.xml");
    for (int hop = 0; hop < 10; ++hop) {
        const WebResult result = fetch(QNetworkRequest(url));
        QCOMPARE(result.status, 302);
        QCOMPARE(result.redirect, m_server->url("/catalogue.xml"));
        url = result.redirect;
    }
}

void ScenarioTest::silentNeverAnswers()
{
    QVERIFY(play("silent"));
    for (const char* target : {"/", "/package.zip"}) {
        RawConnection client(m_server->port());
        QVERIFY(client.get(target));
        QCOMPARE(client.readToEnd(quietMs), Ending::None);
        QVERIFY(client.received().isEmpty());
    }
}

void ScenarioTest::breaksThePackageOff_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<int>("received");
    QTest::addColumn<int>("ending");
    QTest::newRow("short") << "short" << package.size() / 2 << int(Ending::Closed);
    QTest::newRow("reset") << "reset" << package.size() / 2 << int(Ending::Reset);
    QTest::newRow("stall-at-99") << "stall-at-99" << package.size() / 100 * 99 << int(Ending::None);
}

void ScenarioTest::breaksThePackageOff()
{
    QFETCH(QString, scenario);
    QFETCH(int, received);
    QFETCH(int, ending);
    QVERIFY(applyScenario(*m_server, scenario, m_folder->path()));
    RawConnection client(m_server->port());
    QVERIFY(client.get("/package.zip"));
    const bool quiet = ending == int(Ending::None);
    if (quiet) {
        QCOMPARE(client.readBody(received), Ending::None);
    }
    QCOMPARE(int(client.readToEnd(quiet ? quietMs : patienceMs)), ending);
    QCOMPARE(client.status(), 200);
    QCOMPARE(client.body().size(), received);
    QVERIFY(client.head().contains("Content-Length: " + QByteArray::number(package.size())));
}

void ScenarioTest::long404IsLongerThanThePackage()
{
    QVERIFY(play("long-404"));
    const WebResult result = get("/package.zip");
    QCOMPARE(result.status, 404);
    QVERIFY(result.body.size() > package.size());
}

void ScenarioTest::captivePortalAnswersEverything()
{
    QVERIFY(play("captive-portal"));
    for (const char* path : {"/", "/catalogue.xml", "/package.zip", "/missing"}) {
        const WebResult result = get(path);
        QCOMPARE(result.status, 200);
        QCOMPARE(result.contentType, QByteArray("text/html"));
        QDomDocument document;
        QVERIFY(!document.setContent(result.body));
    }
}

/** What comes for @p path until the connection is closed, or until it is @p enough. */
QByteArray ScenarioTest::bytesOf(const QByteArray& path, int enough)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_server->port());
    socket.write("GET " + path + " HTTP/1.1\r\nHost: x\r\n\r\n");
    QByteArray bytes;
    while (bytes.size() < enough && socket.waitForReadyRead(patienceMs)) {
        bytes += socket.readAll();
    }
    return bytes;
}

void ScenarioTest::redirect308IsOneHop()
{
    QVERIFY(play("redirect-308"));
    const QByteArray answer = bytesOf("/", 1 << 20);
    QVERIFY(answer.startsWith("HTTP/1.1 308 "));
    QVERIFY(answer.contains("Location: " + m_server->url("/moved/").toEncoded()));
    QCOMPARE(get("/moved/").body, catalogue);
}

void ScenarioTest::earlyHintsComeFirst()
{
    QVERIFY(play("early-hints"));
    for (const char* path : {"/", "/package.zip"}) {
        const QByteArray answer = bytesOf(path, 1 << 20);
        QVERIFY(answer.startsWith("HTTP/1.1 103 Early Hints\r\n"));
        QVERIFY(answer.contains("\r\n\r\nHTTP/1.1 200 "));
        QVERIFY(answer.endsWith("\r\n\r\n" + (QByteArray(path) == "/" ? catalogue : package)));
    }
}

void ScenarioTest::endlessHeadersHaveNoEnd()
{
    QVERIFY(play("endless-headers"));
    const QByteArray answer = bytesOf("/", 4 << 20);
    QVERIFY(answer.size() >= 4 << 20);
    QVERIFY(answer.startsWith("HTTP/1.1 200 OK\r\nX-Endless: "));
    QVERIFY(!answer.contains("\r\n\r\n"));
}

void ScenarioTest::lastChunkIsMissing()
{
    QVERIFY(play("missing-last-chunk"));
    const QByteArray answer = bytesOf("/package.zip", 1 << 20);
    QVERIFY(answer.contains("Transfer-Encoding: chunked\r\n"));
    QVERIFY(answer.endsWith(package + "\r\n"));
    QCOMPARE(get("/").body, catalogue);
}

void ScenarioTest::halfOfTheLengthIsAnnounced()
{
    QVERIFY(play("wrong-length"));
    const QByteArray answer = bytesOf("/package.zip", 1 << 20);
    QVERIFY(answer.contains("Content-Length: " + QByteArray::number(package.size() / 2) + "\r\n"));
    QVERIFY(answer.endsWith(package));
    QCOMPARE(get("/").body, catalogue);
}

void ScenarioTest::slowTakesItsTime()
{
    QVERIFY(play("slow"));
    RawConnection client(m_server->port());
    QVERIFY(client.get("/package.zip"));
    QCOMPARE(client.read(1000), Ending::None);
    QVERIFY(client.body().size() > 0);
    QVERIFY(client.body().size() < package.size() / 2);
}

void ScenarioTest::proxyPasswordIsDemandedUntilTheNextScenario()
{
    const QNetworkRequest request(QUrl(QStringLiteral("http://download.example.com/package.zip")));
    QNetworkProxy proxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_server->port());
    QVERIFY(play("proxy-password"));
    QCOMPARE(fetch(request, proxy).error, QNetworkReply::ProxyAuthenticationRequiredError);
    proxy.setUser(QStringLiteral("user"));
    proxy.setPassword(QStringLiteral("secret"));
    QCOMPARE(fetch(request, proxy).body, package);
    QVERIFY(play("as-it-is"));
    QCOMPARE(fetch(request, QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"),
                                          m_server->port()))
                 .body,
             package);
}

void ScenarioTest::missingFilesAreNotFound_data()
{
    QTest::addColumn<QString>("scenario");
    for (const QString& name : scenarioNames()) {
        // Their answer is the same, or broken, for whatever is asked.
        const QStringList others = {"silent", "captive-portal", "early-hints", "endless-headers"};
        if (!others.contains(name)) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
}

void ScenarioTest::missingFilesAreNotFound()
{
    QFETCH(QString, scenario);
    QVERIFY(applyScenario(*m_server, scenario, m_folder->path()));
    QCOMPARE(get("/missing.zip").status, 404);
}

void ScenarioTest::servesNothingOutsideTheFolder()
{
    QVERIFY(QDir(m_folder->path()).mkdir("inner"));
    QVERIFY(applyScenario(*m_server, "as-it-is", m_folder->filePath("inner")));
    RawConnection client(m_server->port());
    QVERIFY(client.get("/../package.zip"));
    QCOMPARE(client.readToEnd(), Ending::Closed);
    QCOMPARE(client.status(), 404);
}

VX_TEST_MAIN(ScenarioTest)

#include "tst_Scenario.moc"
