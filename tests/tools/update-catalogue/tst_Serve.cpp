// The server of "serve", asked as an application would.
#include <QtTest>

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>

#include <csignal>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::writeFile;

namespace {

QByteArray get(QNetworkAccessManager& manager, const QUrl& url)
{
    const QScopedPointer<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    QSignalSpy finished(reply.data(), SIGNAL(finished()));
    return finished.wait(20000) ? reply->readAll() : QByteArray();
}

} // namespace

class ServeTest : public QObject
{
    Q_OBJECT

private slots:
    void servesAFolderAndActsAsProxy();
    void servesWithJson();
    void listsScenarios();

private:
    QTemporaryDir m_folder;
};

void ServeTest::servesAFolderAndActsAsProxy()
{
    writeFile(m_folder.path(), "catalogue.xml", sampleCatalogue());
    writeFile(m_folder.path(), "App.mpkg.zip", "0123456789");
    QProcess server;
    server.start(UPDATE_CATALOGUE, {"serve", m_folder.path(), "--port", "0"});
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), 20000);
    const QString address = QString(server.readLine()).section(" at ", 1).trimmed();

    QNetworkAccessManager direct;
    QCOMPARE(get(direct, QUrl(address)), sampleCatalogue());
    QNetworkAccessManager proxied;
    proxied.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, "127.0.0.1",
                                   static_cast<quint16>(QUrl(address).port())));
    QCOMPARE(get(proxied, QUrl("http://h.example.com/App.mpkg.zip")), QByteArray("0123456789"));

    QByteArray log;
    QTRY_VERIFY_WITH_TIMEOUT(
        (log += server.readAllStandardOutput()).contains("GET http://h.example.com/App.mpkg.zip"),
        20000);
    QVERIFY(log.contains("GET /catalogue.xml (host 127.0.0.1"));
    ::kill(static_cast<pid_t>(server.processId()), SIGINT);
    QVERIFY(server.waitForFinished(20000));
    QCOMPARE(server.exitCode(), 0);
}

void ServeTest::servesWithJson()
{
    writeFile(m_folder.path(), "catalogue.xml", sampleCatalogue());
    QProcess server;
    server.start(UPDATE_CATALOGUE, {"serve", m_folder.path(), "--port", "0", "--json"});
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), 20000);
    const QJsonDocument start = QJsonDocument::fromJson(server.readLine());
    QCOMPARE(start["scenario"].toString(), QString("as-it-is"));
    QCOMPARE(start["folder"].toString(), m_folder.path());

    QNetworkAccessManager direct;
    QCOMPARE(get(direct, QUrl(start["catalogue"].toString())), sampleCatalogue());
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), 20000);
    const QJsonDocument request = QJsonDocument::fromJson(server.readLine());
    QCOMPARE(request["method"].toString(), QString("GET"));
    QCOMPARE(request["target"].toString(), QString("/catalogue.xml"));
    ::kill(static_cast<pid_t>(server.processId()), SIGTERM);
    QVERIFY(server.waitForFinished(20000));
    QCOMPARE(server.exitCode(), 0);
}

void ServeTest::listsScenarios()
{
    const QString list = runWorkbench({"serve", "--list"}).output;
    for (const char* name :
         {"up-to-date", "empty", "malformed", "redirect", "redirect-loop", "silent", "short",
          "long-404", "stall-at-99", "reset", "captive-portal", "slow", "proxy-password",
          "redirect-308", "missing-last-chunk", "wrong-length", "early-hints", "endless-headers"}) {
        QVERIFY2(list.contains(QRegularExpression(QString("^%1 +\\S").arg(name),
                                                  QRegularExpression::MultilineOption)),
                 name);
    }
    const QJsonArray scenarios = runWorkbench({"serve", "--list", "--json"}).json().array();
    QCOMPARE(scenarios.first()["scenario"].toString(), QString("as-it-is"));
    QCOMPARE(scenarios.size(), list.count('\n'));
}

VX_TEST_MAIN(ServeTest)
#include "tst_Serve.moc"
