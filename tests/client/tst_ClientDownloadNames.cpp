#include <QDirIterator>
#include <QProgressDialog>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/client/InstallationFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QByteArray content(500, 'x');

/** Everything that the run may reach, apart from the settings, which are meant to change. */
QMap<QString, QByteArray> surroundings()
{
    QMap<QString, QByteArray> found;
    const QString root = QFileInfo(QDir::tempPath()).absolutePath();
    QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (!path.startsWith(root + "/config")) {
            QFile file(path);
            const bool readable = entries.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
            found[path.mid(root.size())] = readable ? file.readAll() : QByteArray();
        }
    }
    return found;
}

QStringList added(const QMap<QString, QByteArray>& before, const QMap<QString, QByteArray>& after)
{
    QStringList names;
    for (const QString& name : after.keys()) {
        if (!before.contains(name)) {
            names << name;
        }
    }
    return names;
}

/** Whether everything that was there is there unchanged. */
bool isUntouched(const QMap<QString, QByteArray>& before, const QMap<QString, QByteArray>& after)
{
    for (auto entry = before.begin(); entry != before.end(); ++entry) {
        if (!after.contains(entry.key()) || after.value(entry.key()) != entry.value()) {
            return false;
        }
    }
    return true;
}

} // namespace

// The name of a file on disk is taken from a catalogue, which is somebody else's text.
class ClientDownloadNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void usable_data();
    void usable();
    void unusable_data();
    void unusable();
    void cancellingWithAnUnusableName_data();
    void cancellingWithAnUnusableName();

private:
    QMap<QString, QByteArray> m_before;
};

void ClientDownloadNamesTest::init()
{
    // Worth something, and where a bad name would lead.
    const QString root = QFileInfo(QDir::tempPath()).absolutePath();
    for (const QString& path : {QDir::tempPath() + "/neighbour", root + "/home/letter"}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("precious");
    }
    m_before = surroundings();
}

void ClientDownloadNamesTest::usable_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* title, const QString& rest, const QString& path,
                        const QString& name) {
        QTest::newRow(title) << "http://download.example.com" + rest << path << name;
    };
    row("plain", "/files/mini-12.msi", "/files/mini-12.msi", "mini-12.msi");
    row("blanks", "/files/a b  c.msi", "/files/a b  c.msi", "a b  c.msi");
    row("encoded blank", "/files/a%20b.msi", "/files/a b.msi", "a b.msi");
    row("letters", QString::fromUtf8("/files/Größe ж.msi"), QString::fromUtf8("/files/Größe ж.msi"),
        QString::fromUtf8("Größe ж.msi"));
    row("empty sections", "/files/mini-12.msi//", "/files/mini-12.msi//", "mini-12.msi");
    row("query", "/files/get?name=mini-12.msi", "/files/get", "get?name=mini-12.msi");
    row("way up in a query", "/files/get?f=../../mini-12.msi", "/files/get", "mini-12.msi");
    row("fragment", "/files/get#../mini-12.msi", "/files/get", "mini-12.msi");
    row("encoded slashes", "/files/..%2F..%2Fmini-12.msi", "/files/../../mini-12.msi",
        "..%2F..%2Fmini-12.msi");
    row("backslashes", "/files/..%5C..%5Cmini-12.msi", "/files/..\\..\\mini-12.msi",
        "..%5C..%5Cmini-12.msi");
    row("line feed", "/files/m%0A15.msi", "/files/m\n15.msi", "m%0A15.msi");
    row("zero", "/files/m%0015.msi", QString("/files/m") + QChar(0) + "15.msi", "m%0015.msi");
    row("hidden", "/files/.mini-12.msi", "/files/.mini-12.msi", ".mini-12.msi");
    row("looks like an option", "/files/-rf.msi", "/files/-rf.msi", "-rf.msi");
    row("shell", "/files/$(id);mini-12.msi", "/files/$(id);mini-12.msi", "$(id);mini-12.msi");
    row("home", "/files/~.msi", "/files/~.msi", "~.msi");
    row("only dots", "/files/....msi", "/files/....msi", "....msi");
    row("longest", "/" + QString(251, 'm') + ".msi", "/" + QString(251, 'm') + ".msi",
        QString(251, 'm') + ".msi");
}

void ClientDownloadNamesTest::usable()
{
    QFETCH(QString, url);
    QFETCH(QString, path);
    QFETCH(QString, name);
    InstallationFixture fixture;
    fixture.server.setHandler([](const ServedRequest&) {
        ServedReply reply;
        reply.body = content;
        return reply;
    });
    fixture.openList({url}, content.size());
    fixture.boxes.willClick("Proceed");
    QVERIFY(QMetaObject::invokeMethod(&fixture.client(), "installPackage", Q_ARG(int, 0)));
    QTRY_VERIFY(!availableDialog());
    QCOMPARE(fixture.boxes.seen().value(1).title,
             url.endsWith(".msi") ? QString() : QStringLiteral("Download Error"));
    QCOMPARE(fixture.server.requests().last().path, path);
    const auto after = surroundings();
    QVERIFY(isUntouched(m_before, after));
    if (url.endsWith(".msi")) {
        const QStringList files = added(m_before, after).filter("/");
        QVERIFY2(files.last().startsWith("/tmp/"), qPrintable(files.join(' ')));
        QCOMPARE(QFileInfo(files.last()).fileName(), name);
        QCOMPARE(after.value(files.last()), content);
    }
}

void ClientDownloadNamesTest::unusable_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("folder above") << "http://download.example.com/files/..";
    QTest::newRow("two folders above, with blanks for slashes")
        << "http://download.example.com/a/../..";
    QTest::newRow("same folder") << "http://download.example.com/files/.";
    QTest::newRow("folder above, then slashes") << "http://download.example.com/files/..//";
    QTest::newRow("too long") << "http://download.example.com/" + QString(300, 'm');
    QTest::newRow("far too long") << "http://download.example.com/" + QString(70000, 'm');
    QTest::newRow("too long in bytes")
        << "http://download.example.com/" + QString(200, QChar(0x20ac)) + ".msi";
    QTest::newRow("no address") << "";
    QTest::newRow("nothing but slashes") << "///";
    QTest::newRow("way up in a query") << "http://download.example.com/get?f=/..";
    QTest::newRow("not a URL") << "http://[bad/..";
}

void ClientDownloadNamesTest::unusable()
{
    QFETCH(QString, url);
    InstallationFixture fixture;
    fixture.server.setHandler([](const ServedRequest&) {
        ServedReply reply;
        reply.body = content;
        return reply;
    });
    fixture.openList({url}, content.size());
    fixture.boxes.willClick("Proceed");
    QVERIFY(QMetaObject::invokeMethod(&fixture.client(), "installPackage", Q_ARG(int, 0)));
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    QTRY_VERIFY(!progressDialog());
    QCOMPARE(fixture.boxes.seen().last().title, QStringLiteral("Download Error"));
    QVERIFY(fixture.boxes.seen().last().text.startsWith("Error downloading! Http status code "));
    QVERIFY(availableDialog()->isVisible());

    const auto after = surroundings();
    QVERIFY(isUntouched(m_before, after));
    // At most the download's own empty folder is left.
    const QStringList left = added(m_before, after);
    QVERIFY2(left.size() <= 1, qPrintable(left.join(' ')));
    if (!left.isEmpty()) {
        QVERIFY(left.first().startsWith("/tmp/"));
        QVERIFY(QDir(QFileInfo(QDir::tempPath()).absolutePath() + left.first()).isEmpty());
    }
}

void ClientDownloadNamesTest::cancellingWithAnUnusableName_data()
{
    unusable_data();
}

void ClientDownloadNamesTest::cancellingWithAnUnusableName()
{
    QFETCH(QString, url);
    InstallationFixture fixture;
    fixture.openList({url}, content.size());
    fixture.boxes.willClick("Proceed");
    QVERIFY(QMetaObject::invokeMethod(&fixture.client(), "installPackage", Q_ARG(int, 0)));
    QVERIFY(progressDialog());
    emit progressDialog()->canceled();
    QTRY_VERIFY(!progressDialog());
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QVERIFY(isUntouched(m_before, surroundings()));
    const QString path = fixture.downloadPath();
    QCOMPARE(fixture.log.contains(3, "SoftwareUpdateClient::abortDownload() -> could not remove "
                                     "downloaded files: " +
                                         path),
             QFileInfo(path).fileName() != "");
}

VX_TEST_MAIN(ClientDownloadNamesTest)
#include "tst_ClientDownloadNames.moc"
