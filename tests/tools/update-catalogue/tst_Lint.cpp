#include <QNetworkProxy>
#include <QtTest>

#include "host/Core/Log.h"
#include "tests/support/TestMain.h"
#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/lint/Linter.h"

namespace {

/** A catalogue without findings; each row of the tests changes one thing in it. */
const QByteArray soundCatalogue =
    "<?xml version=\"1.0\"?>\n"
    "<softwareList status=\"STABLE\" base-url=\"http://download.example/\">\n"
    "  <package name=\"Manager\" release=\"5.3\" platform=\"Mac64\">\n"
    "    <release-date>2026-11-20 10:00:00</release-date>\n"
    "    <file-size>1000</file-size>\n"
    "    <url>Manager.mpkg.zip</url>\n"
    "  </package>\n"
    "  <package name=\"Firmware\" release=\"4.2\" platform=\"CAM-1\" language=\"de en\">\n"
    "    <release-date>2026-11-20</release-date>\n"
    "    <file-size>2kB</file-size>\n"
    "    <url>firmware.bin</url>\n"
    "    <release-notes language=\"en\" url=\"http://www.example/notes\"/>\n"
    "  </package>\n"
    "</softwareList>\n";

vx::LintOptions clientOptions()
{
    vx::LintOptions options;
    options.platforms = QStringList{"Mac32", "Mac64", "MacPP"};
    options.listedTypes = QStringList{"mpkg", "dmg"};
    options.installableTypes = QStringList{"mpkg"};
    return options;
}

vx::FindingList lint(const QByteArray& catalogue, const vx::LintOptions& options = clientOptions())
{
    return vx::lintCatalogue({"catalogue.xml", catalogue}, options);
}

QStringList rulesOf(const vx::FindingList& findings)
{
    QStringList rules;
    for (const vx::Finding& finding : findings) {
        rules.append(finding.rule);
    }
    rules.removeDuplicates();
    return rules;
}

} // namespace

class tst_Lint : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void soundCatalogueHasNoFinding();
    void oneChangeOneFinding_data();
    void oneChangeOneFinding();
    void everyRuleIsTested();
    void documentsThatAreNoCatalogue_data();
    void documentsThatAreNoCatalogue();
    void comparesSizesWithFiles_data();
    void comparesSizesWithFiles();
    void comparesSizesWithTheServer_data();
    void comparesSizesWithTheServer();
    void selectsRules();
    void findsPlacesInOtherEncodings();
    void findsStartOfTagOfSeveralLines();
};

void tst_Lint::initTestCase()
{
    vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(3), nullptr);
}

void tst_Lint::soundCatalogueHasNoFinding()
{
    QCOMPARE(rulesOf(lint(soundCatalogue)), QStringList());
}

void tst_Lint::oneChangeOneFinding_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("sentence");

    const auto row = [](const char* rule, const char* before, const char* after, int line,
                        int column, const char* sentence) {
        QTest::newRow(rule) << QByteArray(before) << QByteArray(after) << line << column
                            << QString(sentence);
    };
    row("unknown-element", "<file-size>2kB</file-size>",
        "<file-size>2kB</file-size><coment>new</coment>", 10, 31, "Did you mean \"comment\"?");
    row("unknown-element ", "<url>firmware.bin</url>", "<url>firmware.bin</url><zzzzzzzz/>", 11, 28,
        "It has no effect.");
    row("unknown-attribute", "release=\"4.2\"", "release=\"4.2\" Public-Name=\"x\"", 8, 3,
        "Did you mean \"public-name\"?");
    row("unvisited", "<url>firmware.bin</url>", "<url>firmware.bin</url><package/>", 11, 28,
        "A \"package\" inside \"package\" is not visited");
    row("unvisited ", "</softwareList>", "<file><package-set/></file></softwareList>", 14, 7,
        "A \"package-set\" inside \"file\" is not visited");
    row("further-file", "<url>Manager.mpkg.zip</url>",
        "<file><url>Manager.mpkg.zip</url></file><file><url>b.mpkg.zip</url></file>", 6, 45,
        "Only the first \"file\" of a package is read");
    row("repeated-field", "<file-size>1000</file-size>",
        "<file-size>1000</file-size><file-size>2000</file-size>", 5, 32, "\"2000\" has no effect");
    row("no-size", "    <file-size>1000</file-size>\n", "\n", 3, 3, "never ends");
    row("unreadable-size", ">1000<", ">0<", 5, 5, "reads as 0");
    row("unreadable-size unit", ">1000<", ">12 GB<", 5, 5, "about 12884901888");
    row("unreadable-size fraction", ">1000<", ">0.5MB<", 5, 5, "about 524288");
    row("unreadable-size words", ">1000<", ">large<", 5, 5, "Give the size in bytes.");
    row("lost-fraction", ">1000<", ">1.9MB<", 5, 5, "reads as 1048576 bytes");
    row("lost-fraction kB", ">1000<", ">1.5kb<", 5, 5, "about 1536");
    row("no-address", "<url>firmware.bin</url>", "<url></url>", 11, 5, "names no host and file");
    row("ignored-scheme", "base-url=\"http:", "base-url=\"https:", 6, 5, "port 80 of");
    row("ignored-port", "download.example/", "download.example:8080/", 6, 5, "The port 8080");
    row("suspicious-suffix", "firmware.bin", "firmware", 11, 5, "what follows the last dot");
    row("suspicious-suffix query", "firmware.bin", "firmware.bin?v=1", 11, 5, "\"bin?v=1\"");
    row("capital-suffix", "Manager.mpkg.zip", "Manager.MPKG.ZIP", 6, 5, "known as \"mpkg\" only");
    row("unlisted-type", "Manager.mpkg.zip", "Manager.zip", 6, 5, "and not \"zip\"");
    row("not-installable", "Manager.mpkg.zip", "Manager.dmg", 6, 5, "stays disabled");
    row("unknown-status", "status=\"STABLE\"", "status=\"Stable\"", 2, 1, "The status \"Stable\"");
    row("unreadable-date", ">2026-11-20<", ">20.11.2026<", 9, 5, "users see no date");
    row("unreadable-release", "release=\"4.2\"", "release=\"four\"", 8, 3, "is no version number");
    row("unreadable-release none", " release=\"4.2\"", "", 8, 3, "nobody is offered");
    row("release-spelling", "</softwareList>",
        "<package name=\"Manager\" release=\"5.30.0\" platform=\"Mac64\" file-size=\"1\" "
        "url=\"a.dmg\"/><package name=\"Manager\" release=\"5.30\" platform=\"Mac64\" "
        "file-size=\"2\" url=\"b.mpkg\"/></softwareList>",
        14, 86, "The release \"5.30\" equals \"5.30.0\" of line 14");
    row("equal-identity", "</softwareList>",
        "<package name=\"Other\" release=\"4.2\" platform=\"CAM-2\" language=\"de en\" "
        "file-size=\"2048\" url=\"other.bin\" release-date=\"2026-11-20\"/></softwareList>",
        14, 1, "those of \"Firmware 4.2\" in line 8");
    row("hidden-by-empty", "release=\"5.3\" platform", "release=\"5.3\" base-url=\"\" platform", 3,
        3, "hides \"http://download.example/\" of line 2");
    row("inherited-from-far", "<file-size>2kB</file-size>", "", 8, 3, "3 packages share");
    row("words-add-up", "status=\"STABLE\"", "status=\"STABLE\" platform=\"Mac32\"", 3, 3,
        "to \"Mac64\" come \"Mac32\"");
    row("no-platform", " platform=\"CAM-1\"", "", 8, 3, "offered to nobody");
    row("hidden-from-english", "language=\"de en\"", "language=\"en\"", 8, 3, "Show all languages");
    row("notes-without-en", "language=\"en\" url", "language=\"fr\" url", 12, 5, "none in \"en\"");
    row("notes-language", "release-notes language=\"en\" url", "release-notes url", 12, 5,
        "under the language \"de en\"");
}

void tst_Lint::oneChangeOneFinding()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(int, line);
    QFETCH(int, column);
    QFETCH(QString, sentence);
    const QString rule = QString(QTest::currentDataTag()).section(' ', 0, 0);
    QByteArray catalogue = soundCatalogue;
    if (rule == "inherited-from-far") {
        catalogue.replace("status=\"STABLE\"", "status=\"STABLE\" file-size=\"7\"");
        catalogue.replace("</softwareList>", "<package name=\"x\" release=\"1\" platform=\"Z\" "
                                             "url=\"z.bin\" file-size=\"3\" language=\"de en\"/>"
                                             "</softwareList>");
    }
    QVERIFY2(catalogue.contains(before), "the row changes nothing");
    catalogue.replace(before, after);

    vx::LintOptions options = clientOptions();
    options.rules = QStringList{rule};
    const vx::FindingList findings = lint(catalogue, options);
    QVERIFY(!findings.isEmpty());
    QCOMPARE(findings.first().position.line, line);
    QCOMPARE(findings.first().position.column, column);
    QVERIFY2(findings.first().sentence.contains(sentence), qPrintable(findings.first().sentence));
    QVERIFY(rulesOf(lint(catalogue)).contains(rule));
}

void tst_Lint::everyRuleIsTested()
{
    const QStringList elsewhere{"not-well-formed", "no-package", "size-mismatch"};
    QFile source(QFINDTESTDATA("tst_Lint.cpp"));
    QVERIFY(source.open(QIODevice::ReadOnly));
    const QString text = source.readAll();
    for (const vx::Rule& rule : vx::allRules()) {
        QVERIFY2(text.contains("row(\"" + rule.name + "\"") || elsewhere.contains(rule.name),
                 qPrintable(rule.name));
        QVERIFY(rule.check != nullptr || elsewhere.contains(rule.name));
    }
}

void tst_Lint::documentsThatAreNoCatalogue_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("rule");
    QTest::addColumn<int>("line");

    QTest::newRow("empty") << QByteArray() << "not-well-formed" << 1;
    QTest::newRow("text") << QByteArray("hello") << "not-well-formed" << 1;
    QTest::newRow("tag") << QByteArray("<a>\n<b>\n</a>") << "not-well-formed" << 3;
    QTest::newRow("too deep") << QByteArray("<a>").repeated(1001) +
                                     QByteArray("</a>").repeated(1001)
                              << "not-well-formed" << 1;
    QTest::newRow("no package") << QByteArray("\n<softwareList/>") << "no-package" << 2;
}

void tst_Lint::documentsThatAreNoCatalogue()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, rule);
    QFETCH(int, line);

    const vx::FindingList findings = lint(document);
    QCOMPARE(rulesOf(findings), QStringList{rule});
    QCOMPARE(findings.first().position.line, line);
    QVERIFY(findings.first().sentence.contains("No update available!"));
}

void tst_Lint::comparesSizesWithFiles_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("equal") << 1000 << QString();
    QTest::newRow("short") << 999 << "every download fails";
    QTest::newRow("long") << 1001 << "passes as complete";
    QTest::newRow("missing") << -1 << "not to be had";
}

void tst_Lint::comparesSizesWithFiles()
{
    QFETCH(int, bytes);
    QFETCH(QString, sentence);
    QTemporaryDir folder;
    QFile firmware(folder.filePath("firmware.bin"));
    QVERIFY(firmware.open(QIODevice::WriteOnly) && firmware.resize(2048));
    if (bytes >= 0) {
        QFile package(folder.filePath("Manager.mpkg.zip"));
        QVERIFY(package.open(QIODevice::WriteOnly) && package.resize(bytes));
    }

    vx::LintOptions options = clientOptions();
    options.files = folder.path();
    const vx::FindingList findings = lint(soundCatalogue, options);
    QCOMPARE(findings.size(), sentence.isEmpty() ? 0 : 1);
    if (!findings.isEmpty()) {
        QCOMPARE(findings.first().rule, QString("size-mismatch"));
        QVERIFY(findings.first().sentence.contains(sentence));
    }
}

void tst_Lint::comparesSizesWithTheServer_data()
{
    comparesSizesWithFiles_data();
}

void tst_Lint::comparesSizesWithTheServer()
{
    QFETCH(int, bytes);
    QFETCH(QString, sentence);
    // As a proxy it answers for the host of the catalogue, at port 80.
    vx::UpdateServer server;
    vx::ServedReply firmware;
    firmware.body = QByteArray(2048, 'f');
    server.setReply("/firmware.bin", firmware);
    vx::ServedReply package;
    package.body = QByteArray(std::max(bytes, 0), 'p');
    package.status = bytes < 0 ? 404 : 200;
    server.setReply("/Manager.mpkg.zip", package);
    QVERIFY(server.start());
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, "127.0.0.1", server.port()));

    vx::LintOptions options = clientOptions();
    options.checkUrls = true;
    const vx::FindingList findings = lint(soundCatalogue, options);
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QCOMPARE(findings.size(), sentence.isEmpty() ? 0 : 1);
    if (!findings.isEmpty()) {
        QCOMPARE(findings.first().rule, QString("size-mismatch"));
        QVERIFY(findings.first().sentence.contains(sentence));
        QVERIFY(findings.first().sentence.contains("on the server"));
    }
    QCOMPARE(server.requests().size(), 2);
    QCOMPARE(server.requests().first().method, QByteArray("HEAD"));
}

void tst_Lint::selectsRules()
{
    const QByteArray catalogue = "<softwareList><package/></softwareList>";
    QVERIFY(rulesOf(lint(catalogue)).contains("no-size"));

    vx::LintOptions options = clientOptions();
    options.withoutRules = QStringList{"no-size"};
    QVERIFY(!rulesOf(lint(catalogue, options)).contains("no-size"));
    QVERIFY(rulesOf(lint(catalogue, options)).contains("no-platform"));
    options.rules = QStringList{"no-size", "no-platform"};
    QCOMPARE(rulesOf(lint(catalogue, options)), QStringList{"no-platform"});
}

void tst_Lint::findsPlacesInOtherEncodings()
{
    const QString text = QString("<?xml version=\"1.0\" encoding=\"%1\"?>\n"
                                 "<a><!-- <b> --><c t=\"\u00fc>\"/><package/></a>");
    const QByteArray latin = text.arg("ISO-8859-1").toLatin1();
    const QByteArray utf16 = QTextCodec::codecForName("UTF-16")->fromUnicode(text.arg("UTF-16"));
    for (const QByteArray& catalogue : {text.arg("UTF-8").toUtf8(), latin, utf16}) {
        vx::LintOptions options = clientOptions();
        options.rules = QStringList{"unknown-element"};
        const vx::FindingList findings = lint(catalogue, options);
        QCOMPARE(findings.size(), 1);
        QCOMPARE(findings.first().position.line, 2);
        QCOMPARE(findings.first().position.column, 16);
    }
}

void tst_Lint::findsStartOfTagOfSeveralLines()
{
    vx::LintOptions options = clientOptions();
    options.rules = QStringList{"no-size"};
    const vx::FindingList findings = lint(
        "<!DOCTYPE a [\n<!ENTITY e \"x\">\n]>\n<a>\n <package\n  name=\"&e;\"\n  /></a>", options);
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings.first().position.line, 5);
    QCOMPARE(findings.first().position.column, 2);
    QCOMPARE(findings.first().package, QString("x"));
}

VX_TEST_MAIN(tst_Lint)
#include "tst_Lint.moc"
