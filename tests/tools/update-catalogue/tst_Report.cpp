// The page as its reader meets it: in a browser, on a wide screen and on a telephone.
#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/server/UpdateServer.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

const QByteArray headquarters = "label,name,version,cameras\nHQ,App,1.0,CAM-1=4.0\n";

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/** An element of the page with everything in it. */
QString element(const QString& page, const QString& begin, const QString& end)
{
    const int from = page.indexOf(begin);
    return from < 0 ? QString() : page.mid(from, page.indexOf(end, from) - from);
}

} // namespace

class ReportTest : public QObject
{
    Q_OBJECT

private slots:
    void showsAndSearches();
    void escapesWhatComesFromOutside();
    void fitsIntoANarrowWindow();
    void showsTheShareOfTheField();
    void tellsEqualNamesApart();
    void saysWhatIsLeftOut_data();
    void saysWhatIsLeftOut();
    void explainsInstallationsThatAreOnlyCalledAlike();
    void footNamesCatalogueAndCommand();
    void footKeepsPasswords();
    void countsOneFinding();

private:
    QString writeReport(const QByteArray& field, const QByteArray& catalogue = sampleCatalogue());
    QString shownBy(const QString& page, const QString& fragment = QString());

    QTemporaryDir m_folder;
};

/** Makes a page and returns its path, or nothing if that has failed. */
QString ReportTest::writeReport(const QByteArray& field, const QByteArray& catalogue)
{
    const QString page = m_folder.filePath("report.html");
    const QString list = writeFile(m_folder.path(), "field.csv", field);
    const WorkbenchRun run =
        runWorkbench({"report", "-", "--installations", list, "--out", page}, catalogue);
    return run.exitCode == 0 || run.exitCode == 1 ? page : QString();
}

/** What a browser has made of @p page. */
QString ReportTest::shownBy(const QString& page, const QString& fragment)
{
    QProcess chromium;
    chromium.start("chromium",
                   {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                    "--no-first-run", "--disable-background-networking",
                    "--disable-component-update", "--disable-sync", "--virtual-time-budget=10000",
                    "--user-data-dir=" + m_folder.filePath("profile"), "--dump-dom",
                    "file://" + page + "#" + fragment});
    return chromium.waitForFinished(60000) ? QString::fromUtf8(chromium.readAllStandardOutput())
                                           : QString();
}

void ReportTest::showsAndSearches()
{
    const QString page = writeReport(headquarters);
    const QString all = shownBy(page);
    const QRegularExpression count("(\\d+) of (\\d+) rows");
    const QRegularExpressionMatch everything = count.match(all);
    QVERIFY2(everything.hasMatch(), qPrintable(all.left(500)));
    QCOMPARE(everything.captured(1), everything.captured(2));
    QVERIFY(all.contains("HQ: 3 offered"));
    QVERIFY(!all.contains(QRegularExpression("(src|href)=")));

    const QRegularExpressionMatch found = count.match(shownBy(page, "spelt"));
    QCOMPARE(found.captured(1), QString("0"));
    const QRegularExpressionMatch twin = count.match(shownBy(page, "twin"));
    QVERIFY(twin.captured(1).toInt() > 0);
    QVERIFY(twin.captured(1).toInt() < twin.captured(2).toInt());
}

void ReportTest::escapesWhatComesFromOutside()
{
    const QString page =
        writeReport("label,name,version\n<script>x</script>,<i>App</i>,1.0\n",
                    sampleCatalogue().replace("Firmware twin", "&lt;img onerror=x&gt;"));
    const QString text = contentOf(page);
    QVERIFY(text.contains("&lt;script&gt;x"));
    QVERIFY(text.contains("&lt;i&gt;App"));
    QVERIFY(!text.contains("<script>x"));
    QVERIFY(!text.contains("<i>App"));
    QVERIFY(!text.contains("<img"));
}

void ReportTest::fitsIntoANarrowWindow()
{
    // The longest words that there are: without a blank or a hyphen where a line could break.
    const QByteArray word(120, 'W');
    QByteArray catalogue = sampleCatalogue().replace("\"App\"", '"' + word + '"');
    catalogue.replace("CAM-1", word).replace("1.5", "1.5" + word).replace("Win", word + "X");
    const QString page = writeReport(
        "label,name,version,cameras\n" + word + ',' + word + ",1.0," + word + "=4.0\n", catalogue);
    QString measured = contentOf(page);
    measured.replace("</body>", "<script>document.querySelectorAll('details').forEach(function (d) "
                                "{ d.open = true; });"
                                "parent.postMessage(document.documentElement.scrollWidth - "
                                "document.documentElement.clientWidth, '*')"
                                "</script></body>");
    writeFile(m_folder.path(), "measured.html", measured.toUtf8());
    const QString frame =
        writeFile(m_folder.path(), "frame.html",
                  "<p>unknown</p><script>onmessage = function (event) { "
                  "document.querySelector('p').textContent = 'beyond: ' + event.data; "
                  "}</script><iframe style=\"width:400px;border:0\" "
                  "src=\"measured.html\"></iframe>");
    const QString shown = shownBy(frame);
    QVERIFY2(shown.contains("<p>beyond: 0</p>"), qPrintable(shown));
}

void ReportTest::showsTheShareOfTheField()
{
    const QString page =
        writeReport("label,name,version,count\nOld,App,1.0,500\nBeta,App,1.0,1\nNew,App,2.0,499\n");
    const QString matrix = element(contentOf(page), "<h2 id=\"matrix\">", "</section>");
    QVERIFY2(matrix.contains("<td>501</td><td class=\"share\">50%<span class=\"bar\" "
                             "aria-hidden=\"true\"><span style=\"width:50.1%\">"),
             qPrintable(matrix));
    QVERIFY(matrix.contains("<tr class=\"nothing\"><td>Application App</td><td>nothing</td>"
                            "<td>499</td><td class=\"share\">50%"));
    // The percent sign of a link that begins no code.
    const QString found = shownBy(page, "50%");
    QVERIFY2(found.contains(QRegularExpression("[^\\d]2 of \\d+ rows")), qPrintable(found));

    const QString rare = contentOf(writeReport("name,version,count\nApp,1.0,9999\nApp,2.0,1\n"));
    QVERIFY(rare.contains("<td class=\"share\">&lt;1%<"));
    QVERIFY(rare.contains("<td class=\"share\">&gt;99%<"));
}

void ReportTest::tellsEqualNamesApart()
{
    QByteArray catalogue = sampleCatalogue();
    catalogue.replace("Firmware fr", "Firmware")
        .replace("2026-01-06\" url=\"c.bin", "2026-01-07 09:30:00\" url=\"c.bin");
    const QString page = contentOf(writeReport(headquarters, catalogue));
    QVERIFY2(page.contains("<td>Firmware 4.2 (bin, 2026-01-06, de, en), Firmware twin 4.2 (bin), "
                           "Firmware 4.2 (bin, 2026-01-07 09:30:00, fr)</td><td>1</td>"),
             qPrintable(page.mid(page.indexOf("<main>"))));
    QVERIFY(page.contains("<td>Firmware 4.2 (line 7, bin, 2026-01-06, de, en)</td>"));
    QVERIFY(page.contains("<td>Firmware 4.2 (line 9, bin, 2026-01-07 09:30:00, fr)</td>"));
    QVERIFY(page.contains("<td>Firmware twin 4.2 (line 8)</td>"));
}

void ReportTest::saysWhatIsLeftOut_data()
{
    QTest::addColumn<int>("kinds");
    QTest::addColumn<bool>("isSaid");

    QTest::newRow("as many as are shown") << 200 << false;
    QTest::newRow("one more") << 201 << true;
}

void ReportTest::saysWhatIsLeftOut()
{
    QFETCH(int, kinds);
    QFETCH(bool, isSaid);

    QByteArray field = "label,name,version\n";
    for (int i = 0; i < kinds; ++i) {
        field += QString("Place %1,App,1.0\n").arg(i).toUtf8();
    }
    const QString page = contentOf(writeReport(field));
    QCOMPARE(page.contains("first 200 of 201 kinds of installation"), isSaid);
    QCOMPARE(page.count("<details>"), 200);
    QVERIFY(page.contains("<summary>Place 199: 1 offered"));
}

void ReportTest::explainsInstallationsThatAreOnlyCalledAlike()
{
    const QString page =
        contentOf(writeReport("name,version,cameras,beta,count\nApp,1.0,,,3\nApp,1.0,CAM-1=4.0,,1\n"
                              "App,1.0,,yes,1\nApp,1.0,,,4\n"));
    QCOMPARE(page.count("<details>"), 3);
    const QString platforms = "for Mac32, Mac64, MacPP with ";
    QVERIFY2(page.contains("<p>7 installations: App 1.0 " + platforms +
                           "no camera; lists mpkg, dmg.</p>"),
             qPrintable(page));
    QVERIFY(page.contains("<p>1 installation: App 1.0 " + platforms +
                          "CAM-1 4.0; lists mpkg, dmg.</p>"));
    QVERIFY(page.contains("no camera; lists mpkg, dmg; wants beta versions.</p>"));
}

void ReportTest::footNamesCatalogueAndCommand()
{
    const QString catalogue = writeFile(m_folder.path(), "it's.xml", sampleCatalogue());
    QFile file(catalogue);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime(QDate(2026, 11, 20), QTime(10, 20, 30)),
                             QFileDevice::FileModificationTime));
    file.close();
    const QString list = writeFile(m_folder.path(), "field.csv", headquarters);
    const QString page = m_folder.filePath("foot.html");
    runWorkbench({"report", catalogue, "--installations", list, "--out", page});
    const QString foot = element(contentOf(page), "<footer>", "</footer>");
    QVERIFY2(foot.contains("It was last changed on 2026-11-20 10:20:30."), qPrintable(foot));
    QVERIFY(foot.contains("Its newest package is of 2026-01-06 00:00:00."));
    const QString command =
        QString("<code>update-catalogue report '%1' --installations %2 --out %3</code>")
            .arg(QString(catalogue).replace("'", "'\\''").toHtmlEscaped(), list, page);
    QVERIFY2(foot.contains(command), qPrintable(foot));
}

void ReportTest::footKeepsPasswords()
{
    vx::UpdateServer server;
    vx::ServedReply reply;
    reply.body = sampleCatalogue();
    reply.headers.append(
        qMakePair(QByteArray("Last-Modified"), QByteArray("Fri, 20 Nov 2026 10:20:30 GMT")));
    server.setReply("/catalogue.xml", reply);
    QVERIFY(server.start());
    QUrl address = server.url("/catalogue.xml");
    address.setUserName("reader");
    address.setPassword("secret");
    const QString list = writeFile(m_folder.path(), "field.csv", headquarters);
    const QString page = m_folder.filePath("foot.html");
    runWorkbench({"report", address.toString(), "--installations", list, "--out", page});
    const QString text = contentOf(page);
    const QString changed = QDateTime(QDate(2026, 11, 20), QTime(10, 20, 30), Qt::UTC)
                                .toLocalTime()
                                .toString("yyyy-MM-dd hh:mm:ss");
    QVERIFY(text.contains("It was last changed on " + changed));
    QVERIFY(text.contains("reader@127.0.0.1"));
    QVERIFY(!text.contains("secret"));
}

void ReportTest::countsOneFinding()
{
    const QString page = contentOf(
        writeReport(headquarters, "<a><package name=\"App\" release=\"2.0\" status=\"STABLE\" "
                                  "file-size=\"1000000\" release-date=\"2026-01-01\" "
                                  "url=\"http://h.example.com/App.mpkg.zip\"/></a>"));
    QVERIFY2(page.contains("<caption>1 finding: 1 error</caption>"), qPrintable(page));
}

VX_TEST_MAIN(ReportTest)
#include "tst_Report.moc"
