// The command as a release manager meets it; how values are written is tested at PackageFacts.
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"
#include "tools/signing/SigningKey.h"

using vx::test::runWorkbench;
using vx::test::WorkbenchRun;
using vx::test::writeFile;

namespace {

/** Digests of "abc" and of nothing, as FIPS 180-2 gives them. */
const char digestOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const char digestOfNothing[] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

/** CRLF, Latin-1, no last end of line, a size that both packages inherit. */
const QByteArray catalogue =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n"
    "<softwareList base-url=\"http://h.example/\" file-size=\"5\">\r\n"
    "  <!-- f\xfcr alle -->\r\n"
    "  <package name=\"B\xfcro\" release=\"2.0\">\r\n    <url>a.zip</url>\r\n  </package>\r\n"
    "  <package url='b.zip' file-size='1MB' name='Firmware' release='1'/>\r\n"
    "</softwareList>";

QByteArray hashedCatalogue()
{
    QByteArray expected = catalogue + "\r\n";
    expected.replace("</url>", "</url>\r\n    <file-size>3</file-size>\r\n    <sha256>" +
                                   QByteArray(digestOfAbc) + "</sha256>");
    expected.replace("'1MB'", "'0' sha256='" + QByteArray(digestOfNothing) + "'");
    return expected;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class HashTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void writesInPlace();
    void writesElsewhere();
    void printsJson();
    void missingFileIsAFinding();
    void sealedIsRefused();
    void dropsTheSeal();
    void brokenSealIsNotDropped_data();
    void brokenSealIsNotDropped();
    void refusesWhatCannotBeEdited_data();
    void refusesWhatCannotBeEdited();
    void keepsLinksAndPermissions();
    void replacesNothingButFiles();
    void unreadableFile();
    void fullDisk();

private:
    QStringList hash(const QStringList& more = QStringList()) const
    {
        return QStringList{"hash", m_catalogue, "--files", m_files} + more;
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_catalogue;
    QString m_files;
};

void HashTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(QDir(m_folder->path()).mkdir("packages"));
    m_files = m_folder->filePath("packages");
    writeFile(m_files, "a.zip", "abc");
    writeFile(m_files, "b.zip", "");
    m_catalogue = writeFile(m_folder->path(), "catalogue.xml", catalogue);
}

void HashTest::writesInPlace()
{
    const WorkbenchRun run = runWorkbench(hash());
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(contentOf(m_catalogue), hashedCatalogue());
    QVERIFY(run.output.startsWith(QString(digestOfAbc) + "           3  a.zip  B\u00fcro 2.0\n"));
    QVERIFY(run.output.endsWith(": 2 packages.\n"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"catalogue.xml"});

    QCOMPARE(runWorkbench(hash()).exitCode, 0);
    QCOMPARE(contentOf(m_catalogue), hashedCatalogue());
}

void HashTest::writesElsewhere()
{
    const QString out = m_folder->filePath("new.xml");
    QCOMPARE(runWorkbench(hash({"--out", out})).exitCode, 0);
    QCOMPARE(contentOf(out), hashedCatalogue());

    QProcess process;
    process.start(UPDATE_CATALOGUE, hash({"--out", "-"}));
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), hashedCatalogue());

    process.start(UPDATE_CATALOGUE, {"hash", "-", "--files", m_files});
    process.write(catalogue);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), hashedCatalogue());
    QCOMPARE(contentOf(m_catalogue), catalogue);
}

void HashTest::printsJson()
{
    const QJsonDocument json = runWorkbench(hash({"--json"})).json();
    QCOMPARE(json["catalogue"].toString(), m_catalogue);
    QCOMPARE(json["out"].toString(), m_catalogue);
    QCOMPARE(json["packages"][0]["package"].toString(), QString("B\u00fcro 2.0"));
    QCOMPARE(json["packages"][0]["file"].toString(), m_files + "/a.zip");
    QCOMPARE(json["packages"][0]["line"].toInt(), 4);
    QCOMPARE(json["packages"][0]["size"].toInt(), 3);
    QCOMPARE(json["packages"][0]["sha256"].toString(), QString(digestOfAbc));
    QCOMPARE(json["packages"][1]["sha256"].toString(), QString(digestOfNothing));
    QVERIFY(json["findings"].isArray() && json["findings"][0].isUndefined());
}

void HashTest::missingFileIsAFinding()
{
    QVERIFY(QFile::remove(m_files + "/b.zip"));
    const WorkbenchRun run = runWorkbench(hash());
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.startsWith(
        m_catalogue + ":7:3: error: \"Firmware 1\": The file \"b.zip\" is not in the folder " +
        m_files + ". [missing-file]\n1 finding"));
    QVERIFY(run.output.endsWith("Nothing is written.\n"));
    QCOMPARE(contentOf(m_catalogue), catalogue);

    const QJsonDocument json = runWorkbench(hash({"--json", "--out", "new.xml"})).json();
    QVERIFY(json["out"].isNull());
    QCOMPARE(json["findings"][0]["rule"].toString(), QString("missing-file"));
    QCOMPARE(runWorkbench(hash({"--out", "-"})).output.left(9), m_catalogue.left(9));

    writeFile(m_folder->path(), "catalogue.xml", "<a><package/></a>");
    QVERIFY(runWorkbench(hash()).output.contains("Its address names no file."));
}

void HashTest::sealedIsRefused()
{
    const QByteArray sealed = vx::SigningKey::generate().sealed(catalogue, 1);
    writeFile(m_folder->path(), "catalogue.xml", sealed);
    const WorkbenchRun run = runWorkbench(hash());
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.errors.contains("give --drop-seal"));
    QCOMPARE(run.output, QString());
    QCOMPARE(contentOf(m_catalogue), sealed);
}

void HashTest::dropsTheSeal()
{
    const QByteArray ended = catalogue + "\r\n";
    writeFile(m_folder->path(), "catalogue.xml", vx::SigningKey::generate().sealed(ended, 1));
    QCOMPARE(runWorkbench(hash({"--drop-seal"})).exitCode, 0);
    QCOMPARE(contentOf(m_catalogue), hashedCatalogue());
    QCOMPARE(runWorkbench(hash({"--drop-seal"})).exitCode, 0);
    QCOMPARE(contentOf(m_catalogue), hashedCatalogue());
}

void HashTest::brokenSealIsNotDropped_data()
{
    QTest::addColumn<QByteArray>("document");

    const QByteArray sealed = vx::SigningKey::generate().sealed(catalogue, 1);
    QTest::newRow("unreadable") << QByteArray(sealed).replace("timestamp", "time");
    QTest::newRow("something behind") << sealed + "<!-- more -->";
}

void HashTest::brokenSealIsNotDropped()
{
    QFETCH(QByteArray, document);

    writeFile(m_folder->path(), "catalogue.xml", document);
    QCOMPARE(runWorkbench(hash({"--drop-seal"})).exitCode, 1);
    QCOMPARE(contentOf(m_catalogue), document);
}

void HashTest::refusesWhatCannotBeEdited_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("reason");

    const char16_t wide[] = u"\ufeff<a><package url=\"a.zip\"/></a>\n";
    QTest::newRow("UTF-16") << QByteArray(reinterpret_cast<const char*>(wide),
                                          sizeof wide - sizeof wide[0])
                            << "UTF-16";
    QTest::newRow("entity") << QByteArray("<!DOCTYPE a [<!ENTITY p \"<package url='a.zip'/>\">]>"
                                          "<a>&p;</a>\n")
                            << "entities";
    QTest::newRow("no XML") << QByteArray("<a><package url=\"a.zip\">") << "catalogue.xml";
}

void HashTest::refusesWhatCannotBeEdited()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, reason);

    writeFile(m_folder->path(), "catalogue.xml", document);
    const WorkbenchRun run = runWorkbench(hash());
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(run.errors.contains(reason), qPrintable(run.errors));
    QCOMPARE(contentOf(m_catalogue), document);
}

void HashTest::keepsLinksAndPermissions()
{
    QVERIFY(QFile::setPermissions(m_catalogue, QFile::ReadOwner | QFile::WriteOwner));
    const QString link = m_folder->filePath("link.xml");
    QVERIFY(QFile::link(m_catalogue, link));
    QCOMPARE(runWorkbench({"hash", link, "--files", m_files}).exitCode, 0);
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(contentOf(m_catalogue), hashedCatalogue());
    struct stat status = {};
    QCOMPARE(::stat(qPrintable(m_catalogue), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 0777), 0600);
}

void HashTest::replacesNothingButFiles()
{
    const QString pipe = m_folder->filePath("pipe");
    QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
    const QString nowhere = m_folder->filePath("nowhere");
    QVERIFY(QFile::link(m_folder->filePath("missing"), nowhere));
    for (const QString& out : {pipe, nowhere, m_files, QString("/dev/null")}) {
        const WorkbenchRun run = runWorkbench(hash({"--out", out}));
        QCOMPARE(run.exitCode, 3);
        QVERIFY(run.errors.contains("is no regular file"));
    }
    QVERIFY(!QFile::exists(m_folder->filePath("missing")));
    QCOMPARE(runWorkbench(hash({"--out", m_folder->filePath("no/such/folder.xml")})).exitCode, 3);
}

void HashTest::unreadableFile()
{
    // A folder opens, and can't be read; that holds for root, too.
    QVERIFY(QFile::remove(m_files + "/a.zip"));
    QVERIFY(QFile::link("/proc/self/mem", m_files + "/a.zip"));
    const WorkbenchRun run = runWorkbench(hash());
    QCOMPARE(run.exitCode, 3);
    QVERIFY(run.errors.contains("a.zip: cannot be read"));
    QCOMPARE(contentOf(m_catalogue), catalogue);
}

void HashTest::fullDisk()
{
    QProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(UPDATE_CATALOGUE, hash({"--out", "-"}));
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 3);
    QVERIFY(process.readAllStandardError().contains("standard output cannot be written"));
}

VX_TEST_MAIN(HashTest)
#include "tst_Hash.moc"
