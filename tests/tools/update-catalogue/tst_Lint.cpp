#include <QNetworkProxy>
#include <QtTest>

#include "host/Core/Log.h"
#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/LintRun.h"
#include "tools/server/UpdateServer.h"

using vx::test::clientOptions;
using vx::test::lint;
using vx::test::rulesOf;
using vx::test::soundCatalogue;

class LintTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void documentsThatAreNoCatalogue_data();
    void documentsThatAreNoCatalogue();
    void comparesSizesWithFiles_data();
    void comparesSizesWithFiles();
    void comparesSizesWithTheServer_data();
    void comparesSizesWithTheServer();
    void selectsRules();
    void countsBySeverity();
    void findingsAreOneLine();
    void firmwareBesideARowForEnglishIsMeant_data();
    void firmwareBesideARowForEnglishIsMeant();
    void comparesWithTheField_data();
    void comparesWithTheField();
    void findsPlacesInOtherEncodings();
    void findsStartOfTagOfSeveralLines();
};

void LintTest::initTestCase()
{
    vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(3), nullptr);
}

void LintTest::documentsThatAreNoCatalogue_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("rule");
    QTest::addColumn<int>("line");

    QTest::newRow("empty") << QByteArray() << "not-well-formed" << 1;
    QTest::newRow("text") << QByteArray("hello") << "not-well-formed" << 1;
    QTest::newRow("tag") << QByteArray("<a>\n<b>\n</a>") << "not-well-formed" << 2;
    QTest::newRow("too deep") << QByteArray("<a>").repeated(1001) +
                                     QByteArray("</a>").repeated(1001)
                              << "not-well-formed" << 1;
    QTest::newRow("no package") << QByteArray("\n<softwareList/>") << "no-package" << 2;
}

void LintTest::documentsThatAreNoCatalogue()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, rule);
    QFETCH(int, line);

    const vx::FindingList findings = lint(document);
    QCOMPARE(rulesOf(findings), QStringList{rule});
    QCOMPARE(findings.first().position.line, line);
    QVERIFY(findings.first().sentence.contains("No update available!"));
}

void LintTest::comparesSizesWithFiles_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("equal") << 1000 << QString();
    QTest::newRow("short") << 999 << "every download fails";
    QTest::newRow("long") << 1001 << "passes as complete";
    QTest::newRow("missing") << -1 << "not to be had";
}

void LintTest::comparesSizesWithFiles()
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
    const vx::FindingList findings = lint(soundCatalogue(), options);
    QCOMPARE(findings.size(), sentence.isEmpty() ? 0 : 1);
    if (!findings.isEmpty()) {
        QCOMPARE(findings.first().rule, QString("size-mismatch"));
        QVERIFY(findings.first().sentence.contains(sentence));
    }
}

void LintTest::comparesSizesWithTheServer_data()
{
    comparesSizesWithFiles_data();
}

void LintTest::comparesSizesWithTheServer()
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
    const vx::FindingList findings = lint(soundCatalogue(), options);
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

void LintTest::selectsRules()
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

void LintTest::countsBySeverity()
{
    QCOMPARE(vx::findingCount({}), QString("0 findings"));
    vx::FindingList findings{vx::Finding()};
    findings.first().severity = vx::Severity::Note;
    QCOMPARE(vx::findingCount(findings), QString("1 finding: 1 note"));
    QVERIFY(vx::holdsAtLeast(findings, vx::Severity::Note));
    QVERIFY(!vx::holdsAtLeast(findings, vx::Severity::Warning));
    findings.append(vx::Finding());
    findings.append(vx::Finding());
    QCOMPARE(vx::findingCount(findings), QString("3 findings: 2 warnings, 1 note"));
    QVERIFY(vx::holdsAtLeast(findings, vx::Severity::Warning));
    QVERIFY(!vx::holdsAtLeast(findings, vx::Severity::Error));
    findings.first().severity = vx::Severity::Error;
    QVERIFY(vx::holdsAtLeast(findings, vx::Severity::Error));
}

void LintTest::findingsAreOneLine()
{
    QByteArray catalogue = soundCatalogue();
    catalogue.replace("name=\"Firmware\"", "name=\"Firm&#10;ware\" status=\"&#13;&#x2028;x\"");
    vx::LintOptions options = clientOptions();
    options.rules = QStringList{"unknown-status"};
    const vx::FindingList findings = lint(catalogue, options);
    QVERIFY(!findings.isEmpty());
    for (const vx::Finding& finding : findings) {
        QCOMPARE(finding.package, QString("Firm\\nware 4.2"));
        QCOMPARE(finding.sentence, vx::oneLine(finding.sentence));
    }
    QVERIFY(findings.first().sentence.contains("\\r\\u2028x"));
}

void LintTest::firmwareBesideARowForEnglishIsMeant_data()
{
    QTest::addColumn<QByteArray>("twin");
    QTest::addColumn<bool>("meant");

    QTest::newRow("beside") << QByteArray("release=\"4.2\" platform=\"CAM-1\"") << true;
    QTest::newRow("other release") << QByteArray("release=\"4.3\" platform=\"CAM-1\"") << false;
    QTest::newRow("other camera") << QByteArray("release=\"4.2\" platform=\"CAM-2\"") << false;
    QTest::newRow("for those with beta versions")
        << QByteArray("release=\"4.2\" platform=\"CAM-1\" status=\"BETA\"") << false;
}

void LintTest::firmwareBesideARowForEnglishIsMeant()
{
    QFETCH(QByteArray, twin);
    QFETCH(bool, meant);
    QByteArray catalogue = soundCatalogue();
    catalogue.replace("language=\"de en\"", "language=\"fr\"");
    catalogue.replace("</softwareList>",
                      "<package language=\"de en\" url=\"z.bin\" " + twin + "/></softwareList>");
    vx::LintOptions options = clientOptions();
    options.rules = QStringList{"hidden-from-english"};
    QCOMPARE(lint(catalogue, options).isEmpty(), meant);
}

void LintTest::comparesWithTheField_data()
{
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("camera");
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("fits") << "Manager"
                          << "CAM-1" << QString() << QString();
    QTest::newRow("other camera") << "Manager"
                                  << "CAM-2"
                                  << "platform-not-in-field"
                                  << "\"CAM-1\" fits no camera";
    QTest::newRow("longer name") << "Manager"
                                 << "CAM-10"
                                 << "platform-too-wide"
                                 << "cameras called \"CAM-10\"";
    QTest::newRow("other application") << "Viewer"
                                       << "CAM-1"
                                       << "application-without-package"
                                       << "No package is named \"Viewer\"";
}

void LintTest::comparesWithTheField()
{
    QFETCH(QString, application);
    QFETCH(QString, camera);
    QFETCH(QString, rule);
    QFETCH(QString, sentence);
    vx::Installation installation;
    installation.criteria = vx::defaultCriteria();
    installation.criteria.applicationName = application;
    installation.criteria.currentCameraVersions.append({camera, vx::VersionNumber("4.1")});
    vx::LintOptions options = clientOptions();
    options.installations.append(installation);

    const vx::FindingList findings = lint(soundCatalogue(), options);
    QCOMPARE(rulesOf(findings), rule.isEmpty() ? QStringList() : QStringList{rule});
    if (!findings.isEmpty()) {
        QVERIFY2(findings.first().sentence.contains(sentence),
                 qPrintable(findings.first().sentence));
    }
}

void LintTest::findsPlacesInOtherEncodings()
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

void LintTest::findsStartOfTagOfSeveralLines()
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

VX_TEST_MAIN(LintTest)
#include "tst_Lint.moc"
