// What the catalogue guide says of packages, servers and proxies, beside what a real client does
// with a real server.
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include <functional>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/client/CheckTexts.h"
#include "tests/client/InstallationFixture.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

/** A sentence of the guide, and whether a client does what it says. */
struct Sentence
{
    QString text;
    std::function<bool()> holds;
};

QString page(const QString& name)
{
    QFile document(QFINDTESTDATA("../../../docs/" + name));
    return document.open(QIODevice::ReadOnly) ? QString::fromUtf8(document.readAll()) : QString();
}

/** The sentences of the section @p title: its paragraphs, items and rows of tables. */
QStringList linesOf(const QString& title)
{
    static const QRegularExpression other("^(\\| (---|What they do)|$)");
    QString text =
        page("catalogue-guide.md").section("\n## " + title + '\n', 1).section("\n## ", 0, 0);
    text.remove(QRegularExpression("```.*?```\n", QRegularExpression::DotMatchesEverythingOption));
    QStringList lines;
    for (const QString& line : text.split('\n')) {
        if (!other.match(line).hasMatch()) {
            lines.append(line);
        }
    }
    return lines;
}

const QString nothingRead = QStringLiteral("parseServerResponse() -> no update available");
const QString unzipped = QStringLiteral("unzipped succesfully to ");

bool waitFor(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, 20000);
}

ServedReply reply(int status, const QByteArray& body = QByteArray(),
                  const QByteArray& header = QByteArray(), const QByteArray& value = QByteArray())
{
    ServedReply reply;
    reply.status = status;
    reply.body = body;
    if (!header.isEmpty()) {
        reply.headers.append(qMakePair(header, value));
    }
    return reply;
}

ServedReply redirect(int status, const QString& target)
{
    return reply(status, QByteArray(), "Location", target.toLatin1());
}

QStringList namesOf(const QList<QUrl>& urls)
{
    QStringList names;
    for (const QUrl& url : urls) {
        names.append(QFileInfo(url.toLocalFile()).fileName());
    }
    names.sort();
    return names;
}

/** The names of what is opened after an archive with @p entries was installed. */
QStringList openedOf(const ZipBuilder& archive, const QString& name = "a.mpkg.zip")
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install(name, archive.bytes());
    waitFor([&] { return !fixture.log.lines(1).filter(unzipped).isEmpty(); });
    return namesOf(desktop.opened());
}

bool isOpenedAndDeleted()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install("a.mpkg.zip", ZipBuilder{file("A.mpkg/x"), file("B.mpkg/x")}.bytes());
    return waitFor([&] { return desktop.opened().size() == 2; }) &&
           namesOf(desktop.opened()) == QStringList({"A.mpkg", "B.mpkg"}) &&
           desktop.opened().first().toLocalFile().startsWith(QDir::tempPath()) &&
           !QFile::exists(fixture.downloadPath());
}

bool nothingIsSaidWithoutABundle()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    const ZipBuilder archive{file("folder/Deep.mpkg/x"), file("Flat.mpkg"), file("Other/x"),
                             softLink("Link.mpkg", "Other"), file(".Hidden.mpkg/x")};
    fixture.install("a.mpkg.zip", archive.bytes());
    // One box has asked whether to proceed.
    return waitFor([&] { return !fixture.log.lines(1).filter(unzipped).isEmpty(); }) &&
           desktop.opened().isEmpty() && fixture.boxes.seen().size() == 1 &&
           fixture.log.lines(3).isEmpty();
}

bool permissionsAndLinksAreKept()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    const ZipBuilder archive{file("A.mpkg/run", "content", 0755), file("A.mpkg/read"),
                             softLink("A.mpkg/link", "run")};
    fixture.install("a.mpkg.zip", archive.bytes());
    if (!waitFor([&] { return desktop.opened().size() == 1; })) {
        return false;
    }
    const QDir bundle(desktop.opened().first().toLocalFile());
    return QFileInfo(bundle.filePath("run")).permission(QFile::ExeOwner) &&
           !QFileInfo(bundle.filePath("read")).permission(QFile::ExeOwner) &&
           QFileInfo(bundle.filePath("link")).isSymLink();
}

/** Whether the user is told that @p archive can't be unpacked, and nothing of it is opened. */
bool isRefused(const QByteArray& archive)
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install("a.mpkg.zip", archive);
    return waitFor([&] { return fixture.boxes.seen().size() == 2; }) &&
           fixture.boxes.seen().last().text.startsWith(
               "Downloaded file could not be unpacked:<br>") &&
           desktop.opened().isEmpty();
}

bool allKindsOfArchivesAreAsSaid()
{
    ZipEntry locked = file("A.mpkg/x");
    locked.flags = ZipEntry::encryptedFlag;
    ZipEntry damaged = file("A.mpkg/x");
    damaged.crc32 = 1;
    const ZipEntry good = file("A.mpkg/y");
    return openedOf(ZipBuilder{deflate(file("A.mpkg/x")), good}) == QStringList{"A.mpkg"} &&
           isRefused(ZipBuilder{good, locked}.bytes()) &&
           isRefused(ZipBuilder{good, damaged}.bytes()) &&
           isRefused(ZipBuilder{good, file("../B.mpkg/x")}.bytes()) &&
           isRefused(ZipBuilder{good, softLink("A.mpkg/out", "../../out")}.bytes());
}

bool typeIsThatOfTheAddress()
{
    InstallationFixture fixture;
    const UrlRecorder desktop;
    fixture.install("a.zip", ZipBuilder{file("A.mpkg/x")}.bytes());
    return waitFor([&] {
               return !fixture.log.lines(1).filter("installZipPackage() -> unzipping").isEmpty();
           }) &&
           desktop.opened().isEmpty();
}

/** Whether the Install button is enabled for a package of the application of @p type. */
bool isInstallable(const char* type)
{
    ClientFixture fixture;
    fixture.start();
    const QByteArray url = QByteArray("http://download.example.com/a.") + type;
    if (fixture.openAvailableDialog({changed(applicationPackage(), {{"url", url.constData()}})}) ==
        nullptr) {
        return false;
    }
    auto* table = availableDialog()->findChild<QTableWidget*>("tableWidget");
    table->selectRow(0);
    return availableDialog()->findChild<QPushButton*>("installPushButton")->isEnabled();
}

/** Whether a check that gets @p answer says "No update available!". */
bool readsNothing(const ServedReply& answer)
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", answer);
    return fixture.check() && fixture.log.contains(3, nothingRead);
}

/** How a check ends whose first answer redirects to a whole address. */
bool isFollowed(int status)
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", redirect(status, fixture.server.url("/b.xml").toString()));
    fixture.server.setReply("/b.xml", reply(200, catalogueXml({applicationPackage()})));
    fixture.client().checkForUpdate();
    return waitFor([&] {
               return availableDialog() != nullptr || fixture.log.contains(3, nothingRead);
           }) &&
           availableDialog() != nullptr;
}

bool circleHasNoEnd()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", redirect(301, fixture.server.url().toString()));
    fixture.client().checkForUpdate();
    return waitFor([&] { return fixture.server.requests().size() > 30; }) &&
           fixture.client().requestTimer()->isActive() &&
           fixture.client().requestTimer()->interval() == 15000;
}

bool relativeTargetFails()
{
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/", redirect(302, "b.xml"));
    fixture.server.setReply("/b.xml", reply(200, catalogueXml({applicationPackage()})));
    fixture.client().checkForUpdate();
    return waitFor([&] { return fixture.log.contains(3, timeoutLine); }) &&
           fixture.server.requests().size() == 1;
}

bool localFileIsRead()
{
    QTemporaryDir folder;
    QFile catalogue(folder.filePath("c.xml"));
    if (!catalogue.open(QIODevice::WriteOnly)) {
        return false;
    }
    catalogue.write(catalogueXml({applicationPackage()}));
    catalogue.close();
    ClientFixture fixture;
    fixture.start();
    fixture.server.setReply("/",
                            redirect(302, QUrl::fromLocalFile(catalogue.fileName()).toString()));
    fixture.client().checkForUpdate();
    return waitFor([] { return availableDialog() != nullptr; });
}

/** Whether the download of a package of ten bytes ends well, by the answers that @p serve sets. */
bool downloads(const std::function<void(InstallationFixture&)>& serve)
{
    InstallationFixture fixture;
    serve(fixture);
    fixture.openList({"http://download.example.com/files/a.msi"}, 10);
    fixture.proceedWith(0);
    const auto hasEnded = [&] {
        return !fixture.log.lines(1).filter("installMSIPackage()").isEmpty() ||
               fixture.boxes.seen().size() == 2;
    };
    return waitFor(hasEnded) && fixture.boxes.seen().size() == 1;
}

/** Whether a package is fetched at the end of so many redirects. */
bool downloadsAfter(int hops, int status)
{
    return downloads([=](InstallationFixture& fixture) {
        QString from = "/files/a.msi";
        for (int hop = 1; hop <= hops; ++hop) {
            const QString to = QString("/hop%1").arg(hop);
            fixture.serve(from, redirect(status, "http://download.example.com" + to));
            from = to;
        }
        fixture.serve(from, QByteArray(10, 'x'));
    });
}

bool redirectsToOtherSchemesFail()
{
    QTemporaryDir folder;
    QFile package(folder.filePath("a.msi"));
    if (!package.open(QIODevice::WriteOnly) || package.write(QByteArray(10, 'x')) != 10) {
        return false;
    }
    package.close();
    const QString target = QUrl::fromLocalFile(package.fileName()).toString();
    return !downloads([&](InstallationFixture& fixture) {
        fixture.serve("/files/a.msi", redirect(302, target));
    });
}

ServedReply earlyHints()
{
    ServedReply hints;
    hints.fault = ServedReply::Raw;
    hints.body = "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n"
                 "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nxxxxxxxxxx";
    return hints;
}

bool earlyHintsEndARequest()
{
    InstallationFixture fixture;
    fixture.serve("/files/a.msi", earlyHints());
    fixture.openList({"http://download.example.com/files/a.msi"}, 10);
    fixture.proceedWith(0);
    return waitFor([&] { return fixture.boxes.seen().size() == 2; }) &&
           fixture.boxes.seen().last().text == "Error downloading! Http status code 103" &&
           readsNothing(earlyHints());
}

bool signInPageIsTaken()
{
    const QByteArray page = "<html><body>Please sign in</body></html>";
    const auto answerWith = [](const QByteArray& body) {
        return [body](InstallationFixture& fixture) {
            fixture.serve("/files/a.msi", reply(200, body));
        };
    };
    return readsNothing(reply(200, page)) && downloads(answerWith(page)) &&
           !downloads(answerWith("<html>"));
}

bool slowAnswerFails()
{
    ClientFixture fixture;
    fixture.start();
    ServedReply stalled = reply(200, catalogueXml({applicationPackage()}));
    stalled.fault = ServedReply::Stall;
    stalled.bytesBeforeFault = stalled.body.size() - 1;
    fixture.server.setReply("/", stalled);
    fixture.client().checkForUpdate();
    QTimer* const timer = fixture.client().requestTimer();
    const bool isAsSaid = timer->isSingleShot() && timer->interval() == 15000;
    timer->start(0);
    return isAsSaid && waitFor([&] { return fixture.log.contains(3, timeoutLine); }) &&
           availableDialog() == nullptr;
}

bool asksEachTimeAndWithoutCondition()
{
    ClientFixture fixture;
    fixture.start();
    ServedReply answer = reply(200, catalogueXml(nothingNew()), "ETag", "\"1\"");
    answer.headers.append(qMakePair(QByteArray("Cache-Control"), QByteArray("max-age=3600")));
    fixture.server.setReply("/", answer);
    if (!fixture.check() || !fixture.check() || fixture.server.requests().size() != 2) {
        return false;
    }
    const auto headers = fixture.server.requests().last().headers;
    return !headers.contains("if-none-match") && !headers.contains("if-modified-since");
}

bool encodingIsNotRead()
{
    const QByteArray brotli("\x8b\x02\x80\x03", 4);
    ClientFixture fixture;
    fixture.start();
    fixture.check();
    return readsNothing(reply(200, brotli, "Content-Encoding", "br")) &&
           fixture.server.requests().last().headers.value("accept-encoding").contains("gzip");
}

const QList<Sentence>& sentencesOfPackages()
{
    static const QList<Sentence> list{
        {R"~(An `.mpkg.zip` is a ZIP archive with the installer bundle, a folder whose name ends in `.mpkg`, at its top. On a Mac, in the folder that holds the bundle:)~",
         [] { return openedOf(ZipBuilder{file("A.mpkg/x")}) == QStringList{"A.mpkg"}; }},
        {R"~(- When the user installs it, it is downloaded, unpacked into a temporary folder and deleted. Each bundle at the top of that folder is then opened, as a double click would.)~",
         isOpenedAndDeleted},
        {R"~(- A bundle inside another folder, a file or a symbolic link with such a name and a hidden folder are not opened. If there is no bundle nothing happens, and the user is told nothing.)~",
         nothingIsSaidWithoutABundle},
        {R"~(- What else lies at the top is unpacked and left alone.)~",
         [] {
             return openedOf(ZipBuilder{file("A.mpkg/x"), file("readme"), file("__MACOSX/x")}) ==
                    QStringList{"A.mpkg"};
         }},
        {R"~(- Permissions of files and symbolic links are kept, so that programs in the bundle can be run. `-y` packs a link as a link, `-r` the folders with all that is in them.)~",
         permissionsAndLinksAreKept},
        {R"~(- Files are stored or deflated. An archive with a password, a damaged one and one with a name or a link that leads out of its folder are not unpacked at all: the user reads "Downloaded file could not be unpacked:" and why.)~",
         allKindsOfArchivesAreAsSaid},
        {R"~(- The type is told from the end of the address, whatever the file holds: `CameraManager.zip` with a bundle in it is no `.mpkg.zip`.)~",
         typeIsThatOfTheAddress},
        {R"~(- A `.dmg` is listed, and the user downloads it by hand: its Install button stays disabled, unless the application says otherwise.)~",
         [] { return isInstallable("mpkg") && !isInstallable("dmg"); }},
    };
    return list;
}

const QList<Sentence>& sentencesOfServers()
{
    static const QList<Sentence> list{
        {R"~(| redirect the catalogue with 308, as servers with automatic HTTPS do | a check does not follow 308: "No update available!"; a download follows it | give the `https://` address to the application; never put a catalogue with an `http://` address behind such a server |)~",
         [] { return !isFollowed(308) && downloadsAfter(1, 308); }},
        {R"~(| redirect it with 301, 302, 303 or 307 | followed, each hop within 15 s of its own, without an end if it is a circle | one hop, to a whole address: a relative one is not completed, and lighttpd and Caddy send what they are given |)~",
         [] {
             return isFollowed(301) && isFollowed(302) && isFollowed(303) && isFollowed(307) &&
                    circleHasNoEnd() && relativeTargetFails();
         }},
        {R"~(| redirect it to a `file:` address | the file of the user's machine is read as the catalogue | trust only your own server |)~",
         localFileIsRead},
        {R"~(| redirect a package | 20 hops at most, to http and https only; 308 as well | as you like |)~",
         [] {
             return downloadsAfter(20, 302) && !downloadsAfter(21, 302) &&
                    redirectsToOtherSchemesFail();
         }},
        {R"~(| 204 or 304, an empty body | "No update available!" | always 200 with the whole catalogue; a client sends no condition |)~",
         [] {
             return readsNothing(reply(204)) && readsNothing(reply(304)) &&
                    readsNothing(reply(200)) && asksEachTimeAndWithoutCondition();
         }},
        {R"~(| an encoding that nobody asked for (brotli) | "No update available!" | gzip for the catalogue at most; nothing for packages |)~",
         encodingIsNotRead},
        {R"~(| Early Hints (103) or 102 before the answer | a check says "No update available!", a download fails with status code 103: Qt takes it for the answer | switch it off for these addresses |)~",
         earlyHintsEndARequest},
        {R"~(| a sign-in page in place of the answer | "No update available!"; a package shorter than the page counts as downloaded | HTTPS for the catalogue; exact sizes |)~",
         signInPageIsTaken},
        // A name with several addresses is the business of the system's resolver.
        {R"~(| several addresses behind one name, the first of them silent | the check fails after 15 s: the others are not reached in time | take dead machines out of the name at once |)~",
         slowAnswerFails},
        {R"~(| answer after more than 15 s, to the last byte | a failed check | see [Server load](server-load.md) |)~",
         slowAnswerFails},
        {R"~(| a cache between | an old catalogue with a new package, or the other way round, until its time is over | a short life for the catalogue, a new file name for each package |)~",
         asksEachTimeAndWithoutCondition},
        {R"~(`update-catalogue serve --scenario` plays most of these, and the client's log names each with what to do about it. [Server load](server-load.md) reckons what the checks of a whole field cost and what to put in front of the server; [Reliability](reliability.md#servers-and-proxies) lists the servers and proxies that were tried.)~",
         [] {
             return page("server-load.md").contains("What to put in front") &&
                    page("reliability.md").contains("\n## Servers and proxies\n");
         }},
    };
    return list;
}

QList<Sentence> allSentences()
{
    return sentencesOfPackages() + sentencesOfServers();
}

} // namespace

class CatalogueGuideAtWorkTest : public QObject
{
    Q_OBJECT

private slots:
    void everySentenceHolds_data();
    void everySentenceHolds();
    void everySentenceHasItsTest_data();
    void everySentenceHasItsTest();
};

void CatalogueGuideAtWorkTest::everySentenceHolds_data()
{
    QTest::addColumn<int>("index");
    const QList<Sentence> all = allSentences();
    for (int i = 0; i < all.size(); ++i) {
        QTest::newRow(qPrintable(all.at(i).text.left(60))) << i;
    }
}

void CatalogueGuideAtWorkTest::everySentenceHolds()
{
    QFETCH(int, index);
    QVERIFY(allSentences().at(index).holds());
}

void CatalogueGuideAtWorkTest::everySentenceHasItsTest_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("isOfPackages");

    QTest::newRow("packages") << "What a package must hold" << true;
    QTest::newRow("servers") << "What servers and proxies make of it" << false;
}

void CatalogueGuideAtWorkTest::everySentenceHasItsTest()
{
    QFETCH(QString, title);
    QFETCH(bool, isOfPackages);

    QStringList tested;
    for (const Sentence& sentence : isOfPackages ? sentencesOfPackages() : sentencesOfServers()) {
        tested.append(sentence.text);
    }
    QCOMPARE(linesOf(title), tested);
}

VX_TEST_MAIN(CatalogueGuideAtWorkTest)
#include "tst_CatalogueGuideAtWork.moc"
