#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

/** What is in a tree, without modes and types, which no checksum guards. */
QMap<QByteArray, QByteArray> payloadOf(const QString& folder)
{
    QMap<QByteArray, QByteArray> payload = treeOf(folder);
    for (QByteArray& line : payload) {
        const int contentAt = line.startsWith("file ") ? line.indexOf(' ', 5) : line.indexOf(' ');
        line = line.startsWith("folder ") ? QByteArray() : line.mid(contentAt + 1);
    }
    return payload;
}

/** Among changed modes are some that keep an ordinary user from reading and removing. */
void openToOwner(const QString& path)
{
    const QFileInfo entry(path);
    if (entry.isSymLink()) {
        return;
    }
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (entry.isDir()) {
        const QStringList names =
            QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QString& name : names) {
            openToOwner(QDir(path).filePath(name));
        }
    }
}

} // namespace

/** An archive that was cut or changed on its way. */
class DamagedArchivesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cutAnywhere();
    void changedAnywhere_data();
    void changedAnywhere();
    void notAnArchive_data();
    void notAnArchive();
    void impossibleZip64End_data();
    void impossibleZip64End();
    void cutWhileItIsOpen();

private:
    QByteArray sampleArchive();
    QString path(const QString& name) const { return m_folder->filePath(name); }

    QScopedPointer<QTemporaryDir> m_folder;
};

void DamagedArchivesTest::init()
{
    m_folder.reset(new QTemporaryDir);
}

/** A small one with all kinds of entries, from the program that most are made with. */
QByteArray DamagedArchivesTest::sampleArchive()
{
    writeFile(path("packed/a/stored.txt"), "first\n");
    writeFile(path("packed/a/deflated.txt"), QByteArray("second line\n").repeated(20));
    QDir().mkpath(path("packed/empty"));
    QFile::link("a/stored.txt", path("packed/link"));
    runTool(path("packed"), "zip", {"-qryX", "../sample.zip", "a", "empty", "link"});
    return contentOf(path("sample.zip"));
}

void DamagedArchivesTest::cutAnywhere()
{
    const QByteArray archive = sampleArchive();
    QVERIFY(archive.size() > 300);
    for (int length = 0; length < archive.size(); ++length) {
        writeFile(path("a.zip"), archive.left(length));
        const QString reason = unpackWithReader(path("a.zip"), path("target"));
        QVERIFY2(reason.contains("incomplete"), qPrintable(QString::number(length) + reason));
        QVERIFY2(!QFileInfo::exists(path("target")), qPrintable(QString::number(length)));
    }
}

void DamagedArchivesTest::changedAnywhere_data()
{
    QTest::addColumn<int>("change");
    QTest::newRow("lowest bit") << 0x01;
    QTest::newRow("a bit in the middle") << 0x20;
    QTest::newRow("highest bit") << 0x80;
    QTest::newRow("all bits") << 0xFF;
}

/** A change is noticed, or it makes no difference to what is in the files. */
void DamagedArchivesTest::changedAnywhere()
{
    QFETCH(int, change);
    const QByteArray archive = sampleArchive();
    const auto original = payloadOf(path("packed"));
    int noticed = 0;
    for (int at = 0; at < archive.size(); ++at) {
        QByteArray changed = archive;
        changed[at] = static_cast<char>(changed.at(at) ^ change);
        writeFile(path("a.zip"), changed);
        const QString target = path("target%1").arg(at);
        if (unpackWithReader(path("a.zip"), target).isEmpty()) {
            openToOwner(target);
            QVERIFY2(payloadOf(target) == original, qPrintable(QString::number(at)));
        } else {
            ++noticed;
            QVERIFY2(!QFileInfo::exists(target), qPrintable(QString::number(at)));
        }
    }
    QVERIFY2(noticed > archive.size() / 2, qPrintable(QString::number(noticed)));
}

void DamagedArchivesTest::notAnArchive_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("Not found\n").repeated(100);
    QTest::newRow("the signature alone") << QByteArray("PK\3\4");
    QTest::newRow("ends of archives") << QByteArray("PK\5\6").repeated(100);
    QTest::newRow("directory outside")
        << QByteArray("PK\5\6\0\0\0\0\1\0\1\0\377\377\377\0\0\0\0\0\0\0", 22);
    QTest::newRow("Zip64 end outside")
        << QByteArray("PK\6\7\0\0\0\0\377\377\377\377\377\377\377\377\1\0\0\0", 20) +
               QByteArray("PK\5\6\0\0\0\0\1\0\1\0\0\0\0\0\0\0\0\0\0\0", 22);
}

void DamagedArchivesTest::impossibleZip64End_data()
{
    QTest::addColumn<QByteArray>("archive");
    const QByteArray archive = ZipBuilder{file("a"), file("b")}.useZip64().bytes();
    const int end = archive.lastIndexOf("PK\6\6");
    const int locator = archive.lastIndexOf("PK\6\7");
    const auto row = [&archive](const char* tag, int at, quint64 value) {
        QByteArray changed = archive;
        qToLittleEndian(value, changed.data() + at);
        QTest::newRow(tag) << changed;
    };
    for (const int at : {40, 48}) {
        row(at == 40 ? "length of 2^63" : "offset of 2^63", end + at, quint64(1) << 63);
        row(at == 40 ? "length of 2^64 - 1" : "offset of 2^64 - 1", end + at, ~quint64(0));
        row(at == 40 ? "length of 2^63 - 1" : "offset of 2^63 - 1", end + at, ~quint64(0) >> 1);
    }
    QByteArray lost = archive;
    lost[end] = 'x';
    QTest::newRow("no end record") << lost;
    qToLittleEndian(~quint64(0), lost.data() + locator + 8);
    QTest::newRow("locator beyond the end of the file") << lost;
    qToLittleEndian(static_cast<quint64>(lost.size()), lost.data() + locator + 8);
    QTest::newRow("locator at the end of the file") << lost;
}

void DamagedArchivesTest::impossibleZip64End()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    const QString reason = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(reason.contains("damaged or incomplete"), qPrintable(reason));
    QVERIFY(!QFileInfo::exists(path("target")));
}

void DamagedArchivesTest::notAnArchive()
{
    QFETCH(QByteArray, content);
    writeFile(path("a.zip"), content);
    const QString reason = unpackWithReader(path("a.zip"), path("target"));
    QVERIFY2(reason.contains("incomplete"), qPrintable(reason));
    QVERIFY(!QFileInfo::exists(path("target")));
}

/** Somebody else cuts the file between opening and unpacking. */
void DamagedArchivesTest::cutWhileItIsOpen()
{
    ZipBuilder{file("a"), file("b", QByteArray(1000000, 'b'))}.write(path("a.zip"));
    vx::ZipReader reader(path("a.zip"), nullptr);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(QFile::resize(path("a.zip"), 500000));
    VX_VERIFY_THROWS(reader.extractFiles(reader.fileList(QRegExp()), path("target"), false),
                     vx::IOException);
    QVERIFY(!QFileInfo::exists(path("target")));
}

VX_TEST_MAIN(DamagedArchivesTest)
#include "tst_DamagedArchives.moc"
