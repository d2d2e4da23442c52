#include <QtTest>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/LintRun.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::lint;

namespace {

/** A catalogue with @p text as its third line. */
QByteArray withThirdLine(const char* text)
{
    return QByteArray("<?xml version=\"1.0\"?>\n<softwareList>\n") + text +
           "\n<package name=\"a\"><comment>b</comment></package>\n</softwareList>\n";
}

} // namespace

class DocumentFaultTest : public QObject
{
    Q_OBJECT

private slots:
    void says_data();
    void says();
    void limitsKeepTheirWords();
    void otherCommandsSayTheSame();
    void everyCutIsExplained();
};

void DocumentFaultTest::says_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("sentence");

    const auto row = [](const char* name, const char* thirdLine, int line, int column,
                        const char* sentence) {
        QTest::newRow(name) << withThirdLine(thirdLine) << line << column
                            << QString::fromUtf8(sentence);
    };
    row("bare &", "<package><name>A & B</name></package>", 3, 18, "write \"&amp;\"");
    row("bare & in a value", "<package name=\"A & B\"/>", 3, 18, "write \"&amp;\"");
    row("entity of HTML", "<package><name>A&nbsp;B</name></package>", 3, 17, "\"&nbsp;\"");
    row("bare <", "<package><name>A < B</name></package>", 3, 18, "write \"&lt;\"");
    row("typographic quotes", "<package name=\u201cA\u201d/>", 3, 15, "typographic quote");
    row("typographic quote at the end", "<package name=\"A\u201d/>", 3, 15, "no closing quote");
    row("no quotes", "<package name=A/>", 3, 15, "\"name\" must stand in quotes");
    row("no closing quote", "<package name=\"A/>", 3, 15, "\"name\" has no closing quote");
    row("no value", "<package name/>", 3, 10, "\"name\" in the tag \"<package\" has no value");
    row("no blank", "<package name=\"A\"release=\"1\"/>", 3, 18, "A blank is missing");
    row("attribute twice", "<package name=\"A\" name=\"B\"/>", 3, 19, "stands twice");
    row("tag without end", "<package name=\"A\"", 3, 1,
        "The tag \"<package\" that begins here has no \">\"");
    row("stray slash", "<package / name=\"A\"/>", 3, 10, "\"/\" has no place in the tag");
    row("never closed", "<package-set>", 3, 1,
        "\"<package-set>\", opened here, is never closed: in line 5 \"</softwareList>\"");
    row("closed by another name", "<package><name>A</nmae></package>", 3, 17,
        "\"<name>\" of line 3 waits for \"</name>\"");
    row("closed twice", "<package></package></package>", 3, 20, "\"</package>\" closes");
    row("hyphens", "<!-- a -- b -->", 3, 8, "may not stand in a comment");
    row("comment without end", "<!-- a", 3, 1, "\"-->\" is missing");
    row("CDATA without end", "<package><comment><![CDATA[a</comment></package>", 3, 19,
        "\"]]>\" is missing");
    row("control character", "<package><name>a\vb</name></package>", 3, 17, "U+000b");
    row("byte of another encoding", "<package><name>Gr\xfcn</name></package>", 3, 18,
        "The byte 0xFC is no text in UTF-8");
    row("behind another letter", "<package><name>\u00fc\xe4</name></package>", 3, 17, "0xE4");
    QTest::newRow("blank before the declaration")
        << QByteArray("\n<?xml version=\"1.0\"?>\n<a/>") << 2 << 1 << "must be the very first";
    QTest::newRow("quotes of the declaration")
        << QByteArray("<?xml version=\u201c1.0\u201d?>\n<a/>") << 1 << 15 << "typographic quote";
    QTest::newRow("never closed to the end")
        << QByteArray("<a>\n<b>") << 2 << 1 << "\"</b>\" is missing";
    QTest::newRow("two documents") << QByteArray("<a/>\n<b/>") << 2 << 1 << "one outermost element";
    QTest::newRow("text behind") << QByteArray("<a/>\nb") << 2 << 1 << "behind the end";
    QTest::newRow("nothing") << QByteArray() << 1 << 1 << "cannot be read";
}

void DocumentFaultTest::says()
{
    QFETCH(QByteArray, document);
    QFETCH(int, line);
    QFETCH(int, column);
    QFETCH(QString, sentence);

    const vx::FindingList findings = lint(document);
    QCOMPARE(findings.size(), 1);
    const vx::Finding& finding = findings.first();
    QCOMPARE(finding.rule, QString("not-well-formed"));
    QVERIFY2(finding.sentence.contains(sentence), qPrintable(finding.sentence));
    QVERIFY(finding.sentence.endsWith("everybody is told \"No update available!\"."));
    QCOMPARE(finding.position.line, line);
    QCOMPARE(finding.position.column, column);
}

void DocumentFaultTest::limitsKeepTheirWords()
{
    const QByteArray deep = QByteArray("<a>").repeated(1001) + QByteArray("</a>").repeated(1001);
    const vx::FindingList findings = lint(deep);
    QVERIFY2(findings.first().sentence.startsWith("The elements of the document are nested"),
             qPrintable(findings.first().sentence));
}

void DocumentFaultTest::otherCommandsSayTheSame()
{
    const vx::test::WorkbenchRun run = vx::test::runWorkbench(
        {"explain", "-", "--application", "A", "--version", "1"}, "<a>\n<b>A & B</b></a>");
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.errors, QString("update-catalogue: standard input:2:6: \"&\" stands alone: write "
                                 "\"&amp;\".\n"));
}

void DocumentFaultTest::everyCutIsExplained()
{
    const QByteArray document = vx::test::soundCatalogue();
    const int end = document.lastIndexOf('>');
    for (int length = document.indexOf("<softwareList") + 1; length < end; ++length) {
        const vx::FindingList findings = lint(document.left(length));
        QCOMPARE(findings.size(), 1);
        const QString sentence = findings.first().sentence;
        const QByteArray why = sentence.toUtf8() + " after " + QByteArray::number(length);
        QVERIFY2(sentence.contains("never closed") || sentence.contains("has no \">\"") ||
                     sentence.contains("closing quote") || sentence.contains("has no value") ||
                     sentence.contains("in quotes") || sentence.contains("stands alone"),
                 why.constData());
    }
}

VX_TEST_MAIN(DocumentFaultTest)
#include "tst_DocumentFault.moc"
