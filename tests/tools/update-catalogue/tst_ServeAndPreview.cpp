// The three commands that reach beyond the terminal, each as a user meets it: a server that is
// asked, pictures that are opened, a page that a browser shows.
#include <QtTest>

#include <QImage>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>

#include <csignal>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

const QStringList appOne{"--application", "App", "--version", "1.0", "--camera", "CAM-1=4.0"};

QByteArray get(QNetworkAccessManager& manager, const QUrl& url)
{
    const QScopedPointer<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    QSignalSpy finished(reply.data(), SIGNAL(finished()));
    return finished.wait(20000) ? reply->readAll() : QByteArray();
}

QString shownBy(const QString& page, const QString& fragment, const QString& profile)
{
    QProcess chromium;
    chromium.start("chromium",
                   {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                    "--no-first-run", "--disable-background-networking",
                    "--disable-component-update", "--disable-sync", "--user-data-dir=" + profile,
                    "--dump-dom", "file://" + page + "#" + fragment});
    return chromium.waitForFinished(60000) ? QString::fromUtf8(chromium.readAllStandardOutput())
                                           : QString();
}

} // namespace

class ServePreviewReportTest : public QObject
{
    Q_OBJECT

private slots:
    void servesAFolderAndActsAsProxy();
    void servesWithJson();
    void listsScenarios();
    void drawsTheDialog_data();
    void drawsTheDialog();
    void drawsNothingWithoutAnOffer();
    void pageShowsAndSearches();
    void pageEscapesWhatComesFromOutside();

private:
    QTemporaryDir m_folder;
};

void ServePreviewReportTest::servesAFolderAndActsAsProxy()
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

void ServePreviewReportTest::servesWithJson()
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

void ServePreviewReportTest::listsScenarios()
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

void ServePreviewReportTest::drawsTheDialog_data()
{
    QTest::addColumn<QString>("language");

    QTest::newRow("English") << "en";
    QTest::newRow("German") << "de";
    QTest::newRow("French") << "fr";
}

void ServePreviewReportTest::drawsTheDialog()
{
    QFETCH(QString, language);

    const QString out = m_folder.filePath("pictures");
    const WorkbenchRun run = runWorkbench(
        QStringList{"preview", "--json", "-", "--language", language, "--out", out} + appOne,
        sampleCatalogue());
    const QStringList pictures{out + "/update-available-" + language + ".png",
                               out + "/update-available-" + language + "-selected.png"};
    QCOMPARE(run.json()["pictures"].toArray(), QJsonArray::fromStringList(pictures));
    QCOMPARE(run.exitCode, run.json()["clipped"].toArray().isEmpty() ? 0 : 1);
    const QImage plain(pictures.at(0));
    const QImage selected(pictures.at(1));
    QVERIFY(plain.width() >= 550);
    QVERIFY(!selected.isNull());
    QVERIFY(plain != selected);
}

void ServePreviewReportTest::drawsNothingWithoutAnOffer()
{
    const WorkbenchRun run = runWorkbench({"preview", "-", "--application", "App", "--version", "9",
                                           "--out", m_folder.filePath("none")},
                                          sampleCatalogue());
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.contains("Nothing is offered"));
    QVERIFY(!QFile::exists(m_folder.filePath("none")));
}

void ServePreviewReportTest::pageShowsAndSearches()
{
    const QString field = writeFile(m_folder.path(), "field.csv",
                                    "label,name,version,cameras\nHQ,App,1.0,CAM-1=4.0\n");
    const QString page = m_folder.filePath("report.html");
    const WorkbenchRun run =
        runWorkbench({"report", "-", "--installations", field, "--out", page}, sampleCatalogue());
    QCOMPARE(run.exitCode, 1);

    const QString all = shownBy(page, "", m_folder.filePath("profile"));
    const QRegularExpression count("(\\d+) of (\\d+) rows");
    const QRegularExpressionMatch everything = count.match(all);
    QVERIFY2(everything.hasMatch(), qPrintable(all.left(500)));
    QCOMPARE(everything.captured(1), everything.captured(2));
    QVERIFY(all.contains("HQ: 3 offered"));
    QVERIFY(!all.contains(QRegularExpression("(src|href)=")));

    const QRegularExpressionMatch found =
        count.match(shownBy(page, "spelt", m_folder.filePath("profile")));
    QCOMPARE(found.captured(1), QString("0"));
    QVERIFY(count.match(shownBy(page, "50%", m_folder.filePath("profile"))).hasMatch());
    const QRegularExpressionMatch twin =
        count.match(shownBy(page, "twin", m_folder.filePath("profile")));
    QVERIFY(twin.captured(1).toInt() > 0);
    QVERIFY(twin.captured(1).toInt() < twin.captured(2).toInt());
}

void ServePreviewReportTest::pageEscapesWhatComesFromOutside()
{
    const QString field =
        writeFile(m_folder.path(), "evil.csv", "label,name,version\n<script>x</script>,App,1.0\n");
    const QString page = m_folder.filePath("evil.html");
    runWorkbench({"report", "-", "--installations", field, "--out", page},
                 sampleCatalogue().replace("Firmware twin", "&lt;img onerror=x&gt;"));
    QFile file(page);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY(text.contains("&lt;script&gt;x"));
    QVERIFY(!text.contains("<script>x"));
    QVERIFY(!text.contains("<img"));
}

VX_TEST_MAIN(ServePreviewReportTest)
#include "tst_ServePreviewReport.moc"
