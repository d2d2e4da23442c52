#include <QtTest>

#include "tests/download/EngineProbe.h"
#include "tests/support/FixedClock.h"
#include "tests/support/TestMain.h"

using namespace vx;
using vx::test::EngineProbe;
using vx::test::FixedClock;

namespace {

const QDateTime now(QDate(2026, 3, 31), QTime(10, 20, 30, 456));

QByteArray isoTime(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

QByteArray item(int index, const QByteArray& id, const QByteArray& time)
{
    const QByteArray prefix = "hist\\" + QByteArray::number(index) + '\\';
    return prefix + "version=" + id + '\n' + prefix + "time=" + time + '\n';
}

PackageInfoList deliver(EngineProbe& engine, const QByteArray& catalogue)
{
    QBuffer input;
    input.setData(catalogue);
    input.open(QIODevice::ReadOnly);
    QSignalSpy spy(&engine, SIGNAL(packageFound(PackageInfoList)));
    DownloadManager::RequestData record;
    record.callbackReceiver = nullptr;
    record.callbackSlot = nullptr;
    engine.queryResult(&input, &record);
    return spy.value(0).value(0).value<PackageInfoList>();
}

const char onePackage[] = "<s><package release-date='2012-06-01' file-size='7'/></s>";
const char onePackageId[] = "1-2012-06-01T00:00:00-7";

} // namespace

class UpdateHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void emptyStoreGivesDefaults();
    void storeWrittenByHand();
    void layoutDecidesAboutTheServer_data();
    void layoutDecidesAboutTheServer();
    void storesExactlyTheseKeys();
    void formerKeyIsDropped();
    void bothReadWhatTheyWrote();
    void passwordsAreNotStored();
    void groupStaysOpenAsItWas();
    void itemsFadeAfterTwoYears_data();
    void itemsFadeAfterTwoYears();
    void leapDayCountsAsItsEve();
    void damagedItemsAreSkipped_data();
    void damagedItemsAreSkipped();
    void gapsAndSizes_data();
    void gapsAndSizes();
    void laterItemOfAKeyWins();
    void itemsInMemoryStay();
    void onlySurvivorsAreStored();
    void emptyHistoryStoresNoItems();
    void hundredThousandItems();
    void seenPackagesStayKnown();
    void unstoredPackagesAreNewAgain();
    void fadedPackageIsNewAgain();
    void catalogueBytesAreUnchanged();
    void emptyPathTouchesNoFile();
    void missingFileLeavesTheCatalogue();
    void emptyCatalogueOverwritesNothing();
    void unreadableFileGivesNoPackages();
    void unwritablePathIsPassedOver();
    void garbageIsNoHistory();

private:
    QString ini() const { return m_folder->filePath("application.ini"); }
    void write(const QByteArray& text) const;
    QByteArray text() const;
    /** Loads @p text, as the group "Download" of the store. */
    void load(EngineProbe& engine, const QByteArray& text) const;
    void store(EngineProbe& engine, const QString& catalogueFile = QString()) const;

    QScopedPointer<QTemporaryDir> m_folder;
};

void UpdateHistoryTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void UpdateHistoryTest::write(const QByteArray& text) const
{
    QFile file(ini());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(text), qint64(text.size()));
}

QByteArray UpdateHistoryTest::text() const
{
    QFile file(ini());
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void UpdateHistoryTest::load(EngineProbe& engine, const QByteArray& text) const
{
    write("[Download]\n" + text);
    QSettings settings(ini(), QSettings::IniFormat);
    engine.loadHistory(settings, QString());
}

void UpdateHistoryTest::store(EngineProbe& engine, const QString& catalogueFile) const
{
    QSettings settings(ini(), QSettings::IniFormat);
    engine.storeHistory(settings, catalogueFile);
}

void UpdateHistoryTest::emptyStoreGivesDefaults()
{
    EngineProbe engine;
    engine.lastCheck = now;
    engine.regularCheck = true;
    load(engine, "");
    QVERIFY(engine.lastCheck.isNull());
    QVERIFY(!engine.isRegularCheck());
    QVERIFY(engine.updateHistory.isEmpty());
    QCOMPARE(int(engine.serverHost.proxyPreference), 2);
}

void UpdateHistoryTest::storeWrittenByHand()
{
    const FixedClock clock(now);
    write("[General]\nver=1\n[Download]\n"
          "last-check=2026-03-30T08:15:00.250Z\nreg-check=true\nver=3\n"
          "server-address=updates.example.com\nserver-port=8080\n"
          "proxy-preference=1\nproxy-address=proxy.example.com\nproxy-port=3128\n" +
          item(1, "1-2012-06-01T12:30:00-1024", "2026-01-02T03:04:05.678Z") +
          item(2, "\"1-2012-06-01T12:30:00-2048\"", "2025-12-31T23:00:00.000Z") + "hist\\size=2\n");
    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe engine(settings, QString());
    QCOMPARE(engine.lastCheck.toUTC(),
             QDateTime(QDate(2026, 3, 30), QTime(8, 15, 0, 250), Qt::UTC));
    QVERIFY(engine.isRegularCheck());
    QCOMPARE(engine.server().server.address, QString("updates.example.com"));
    QCOMPARE(engine.server().server.port, 8080);
    QCOMPARE(engine.server().proxyPreference, HttpHost::OwnProxy);
    QCOMPARE(engine.server().proxy.address, QString("proxy.example.com"));
    QCOMPARE(engine.server().proxy.port, 3128);
    QCOMPARE(engine.updateHistory.size(), 2);
    QCOMPARE(engine.updateHistory.value("1-2012-06-01T12:30:00-1024").toUTC(),
             QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5, 678), Qt::UTC));
    QVERIFY(engine.updateHistory.contains("1-2012-06-01T12:30:00-2048"));
}

void UpdateHistoryTest::layoutDecidesAboutTheServer_data()
{
    QTest::addColumn<QByteArray>("layout");
    QTest::addColumn<bool>("migrates");
    QTest::newRow("missing") << QByteArray() << true;
    QTest::newRow("0") << QByteArray("ver=0\n") << true;
    QTest::newRow("2") << QByteArray("ver=2\n") << true;
    QTest::newRow("no number") << QByteArray("ver=three\n") << true;
    QTest::newRow("3") << QByteArray("ver=3\n") << false;
    QTest::newRow("4") << QByteArray("ver=4\n") << false;
}

void UpdateHistoryTest::layoutDecidesAboutTheServer()
{
    QFETCH(QByteArray, layout);
    QFETCH(bool, migrates);
    EngineProbe engine;
    engine.serverPath = "/kept";
    load(engine, layout + "reg-check=true\nserver-address=own.example.com\nserver-port=81\n"
                          "proxy-preference=1\nproxy-address=proxy.example.com\nproxy-port=3128\n");
    const QUrl defaultServer(DownloadManager::UPDATE_URL);
    QCOMPARE(engine.serverHost.server.address,
             migrates ? defaultServer.host() : QString("own.example.com"));
    QCOMPARE(engine.serverHost.server.port, migrates ? defaultServer.port(80) : 81);
    QCOMPARE(int(engine.serverHost.proxyPreference), migrates ? 2 : 1);
    QCOMPARE(engine.serverPath,
             migrates ? HttpClient::encodedUrlPath(defaultServer) : QString("/kept"));
    // Everything else is carried over from any layout.
    QCOMPARE(engine.serverHost.proxy.address, QString("proxy.example.com"));
    QVERIFY(engine.isRegularCheck());
}

void UpdateHistoryTest::storesExactlyTheseKeys()
{
    EngineProbe engine(QUrl("http://updates.example.com:8080/"));
    engine.lastCheck = now;
    engine.updateHistory.insert("1-a-1", now);
    store(engine);
    QSettings settings(ini(), QSettings::IniFormat);
    settings.beginGroup("Download");
    QCOMPARE(settings.value("ver").toInt(), 3);
    QCOMPARE(settings.value("reg-check").toBool(), true);
    QCOMPARE(settings.value("last-check").toByteArray(), isoTime(now));
    QCOMPARE(settings.value("hist/size").toInt(), 1);
    QCOMPARE(settings.value("hist/1/version").toString(), QString("1-a-1"));
    QCOMPARE(settings.value("hist/1/time").toByteArray(), isoTime(now));
    for (const QString& key : settings.allKeys()) {
        QVERIFY2(key.startsWith("server-") || key.startsWith("proxy-") || key.startsWith("hist/") ||
                     QStringList({"ver", "reg-check", "last-check"}).contains(key),
                 qPrintable(key));
    }
    settings.endGroup();
    QCOMPARE(settings.childGroups(), QStringList("Download"));
    QCOMPARE(settings.childKeys(), QStringList());
}

void UpdateHistoryTest::formerKeyIsDropped()
{
    EngineProbe engine;
    load(engine, "regular-check=true\n");
    QVERIFY(!engine.isRegularCheck());
    store(engine);
    QVERIFY(!text().contains("regular-check"));
    QVERIFY(text().contains("reg-check=false"));
}

void UpdateHistoryTest::bothReadWhatTheyWrote()
{
    const FixedClock clock(now);
    EngineProbe written(QUrl("http://updates.example.com/"));
    written.setProxy(HttpHost::OwnProxy, "proxy.example.com:3128");
    written.setRegularCheck(true);
    written.lastCheck = now.addSecs(-60);
    written.lastCatalogue = "<softwareList/>";
    for (int i = 0; i < 50; ++i) {
        written.updateHistory.insert(QString::fromUtf8("1-\xc3\xa4 \"%1\"; = \\%1").arg(i),
                                     now.addDays(-i));
    }
    const QString file = m_folder->filePath("catalogue.xml");
    store(written, file);

    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe read(settings, file);
    QCOMPARE(read.updateHistory, written.updateHistory);
    QCOMPARE(read.lastCheck, written.lastCheck);
    QCOMPARE(read.lastCatalogue, written.lastCatalogue);
    QCOMPARE(read.isRegularCheck(), true);
    QCOMPARE(QString(read.server().server), QString("http://updates.example.com"));
    QCOMPARE(QString(read.server().proxy), QString("http://proxy.example.com:3128"));
    QCOMPARE(read.server().proxyPreference, HttpHost::OwnProxy);
}

void UpdateHistoryTest::passwordsAreNotStored()
{
    EngineProbe engine;
    engine.serverHost.server = HttpAccess("updates.example.com", 80, "user", "secret1");
    engine.serverHost.proxy = HttpAccess("proxy.example.com", 80, "user", "secret2");
    store(engine);
    QVERIFY(text().contains("updates.example.com"));
    QVERIFY(!text().contains("secret"));
}

void UpdateHistoryTest::groupStaysOpenAsItWas()
{
    QSettings settings(ini(), QSettings::IniFormat);
    settings.beginGroup("Host");
    settings.beginGroup("Updates");
    EngineProbe written(QUrl("http://updates.example.com/"));
    written.updateHistory.insert("1-b-2", QDateTime::currentDateTime());
    written.storeHistory(settings, QString());
    QCOMPARE(settings.group(), QString("Host/Updates"));
    QCOMPARE(settings.value("Download/ver").toInt(), 3);

    EngineProbe read;
    read.loadHistory(settings, QString());
    QCOMPARE(settings.group(), QString("Host/Updates"));
    QCOMPARE(read.updateHistory.keys(), QStringList("1-b-2"));
    settings.endGroup();
    settings.endGroup();
    QCOMPARE(settings.value("Host/Updates/Download/hist/size").toInt(), 1);
    QVERIFY(!settings.contains("Download/ver"));
}

void UpdateHistoryTest::itemsFadeAfterTwoYears_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<bool>("stays");
    const QDateTime border = now.addYears(-2);
    QTest::newRow("exactly two years") << border << true;
    QTest::newRow("a millisecond more") << border.addMSecs(-1) << false;
    QTest::newRow("a millisecond less") << border.addMSecs(1) << true;
    QTest::newRow("just now") << now << true;
    QTest::newRow("in the future") << now.addYears(10) << true;
    QTest::newRow("long ago") << QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC) << false;
}

void UpdateHistoryTest::itemsFadeAfterTwoYears()
{
    QFETCH(QDateTime, time);
    const FixedClock clock(now);
    QCOMPARE(QDateTime::currentDateTime(), now);
    EngineProbe engine;
    load(engine, "ver=3\n" + item(1, "1-x-1", isoTime(time)) + "hist\\size=1\n");
    QTEST(engine.updateHistory.contains("1-x-1"), "stays");
}

void UpdateHistoryTest::leapDayCountsAsItsEve()
{
    const FixedClock clock(QDateTime(QDate(2028, 2, 29), QTime(12, 0)));
    const QDateTime border(QDate(2026, 2, 28), QTime(12, 0));
    EngineProbe engine;
    load(engine, item(1, "kept", isoTime(border)) + item(2, "gone", isoTime(border.addMSecs(-1))) +
                     "hist\\size=2\n");
    QCOMPARE(engine.updateHistory.keys(), QStringList("kept"));
}

void UpdateHistoryTest::damagedItemsAreSkipped_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<bool>("taken");
    QTest::newRow("sound") << item(1, "x", "2026-01-01T00:00:00.000Z") << true;
    QTest::newRow("no time") << QByteArray("hist\\1\\version=x\n") << false;
    QTest::newRow("empty time") << item(1, "x", "") << false;
    QTest::newRow("no date") << item(1, "x", "yesterday") << false;
    QTest::newRow("impossible date") << item(1, "x", "2026-02-30T00:00:00.000Z") << false;
    QTest::newRow("a number") << item(1, "x", "1767225600") << false;
    QTest::newRow("a list") << item(1, "x", "2026-01-01, 2026-01-02") << false;
    QTest::newRow("an invalid value") << item(1, "x", "@Invalid()") << false;
    QTest::newRow("another type") << item(1, "x", "@Size(1 2)") << false;
    QTest::newRow("broken bytes") << item(1, "x", "@ByteArray(\\xff\\xfe") << false;
}

void UpdateHistoryTest::damagedItemsAreSkipped()
{
    QFETCH(QByteArray, lines);
    const FixedClock clock(now);
    EngineProbe engine;
    load(engine, lines + item(2, "sound", "2026-01-01T00:00:00.000Z") + "hist\\size=2\n");
    QVERIFY(engine.updateHistory.contains("sound"));
    QTEST(engine.updateHistory.contains("x"), "taken");
}

void UpdateHistoryTest::gapsAndSizes_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QStringList>("ids");
    QTest::newRow("all") << QByteArray("9") << QStringList{"a", "b", "c"};
    QTest::newRow("up to the second") << QByteArray("3") << QStringList{"a", "b"};
    QTest::newRow("only the first") << QByteArray("2") << QStringList{"a"};
    QTest::newRow("0") << QByteArray("0") << QStringList();
    QTest::newRow("negative") << QByteArray("-1") << QStringList();
    QTest::newRow("no number") << QByteArray("many") << QStringList();
    QTest::newRow("lying") << QByteArray("2147483647") << QStringList{"a", "b", "c"};
}

// Of the array 1, 2 (empty), 3, 9, so much is read as its size says.
void UpdateHistoryTest::gapsAndSizes()
{
    QFETCH(QByteArray, size);
    const FixedClock clock(now);
    const QByteArray time = isoTime(now);
    EngineProbe engine;
    load(engine, item(9, "c", time) + item(1, "a", time) + item(3, "b", time) +
                     "hist\\x\\time=" + time + "\nhist\\0\\time=" + time +
                     "\nhist\\-4\\time=" + time + "\nhist\\size=" + size + '\n');
    QStringList ids = engine.updateHistory.keys();
    ids.sort();
    QTEST(ids, "ids");
}

void UpdateHistoryTest::laterItemOfAKeyWins()
{
    const FixedClock clock(now);
    EngineProbe engine;
    load(engine, item(10, "same", "2026-03-01T00:00:00.000Z") +
                     item(9, "same", "2026-02-01T00:00:00.000Z") + "hist\\size=10\n");
    QCOMPARE(engine.updateHistory.size(), 1);
    QCOMPARE(engine.updateHistory.value("same").toUTC().date(), QDate(2026, 3, 1));
}

void UpdateHistoryTest::itemsInMemoryStay()
{
    const FixedClock clock(now);
    EngineProbe engine;
    engine.updateHistory.insert("old", now.addYears(-20));
    engine.updateHistory.insert("both", now.addYears(-20));
    load(engine, item(1, "both", isoTime(now)) + item(2, "new", isoTime(now)) + "hist\\size=2\n");
    QCOMPARE(engine.updateHistory.size(), 3);
    QCOMPARE(engine.updateHistory.value("old"), now.addYears(-20));
    QCOMPARE(engine.updateHistory.value("both"), now);
}

void UpdateHistoryTest::onlySurvivorsAreStored()
{
    const FixedClock clock(now);
    const QByteArray recent = isoTime(now);
    const QByteArray old = isoTime(now.addYears(-3));
    write("[Download]\nver=3\n" + item(1, "a", old) + item(2, "b", recent) + item(3, "c", old) +
          item(4, "d", recent) + item(5, "e", old) + "hist\\size=5\n");
    QSettings settings(ini(), QSettings::IniFormat);
    EngineProbe engine(settings, QString());
    engine.storeHistory(settings, QString());
    settings.sync();
    settings.beginGroup("Download/hist");
    QStringList keys = settings.allKeys();
    keys.sort();
    QCOMPARE(keys, QStringList({"1/time", "1/version", "2/time", "2/version", "size"}));
    QCOMPARE(settings.value("size").toInt(), 2);
    QStringList ids{settings.value("1/version").toString(), settings.value("2/version").toString()};
    ids.sort();
    QCOMPARE(ids, QStringList({"b", "d"}));
}

void UpdateHistoryTest::emptyHistoryStoresNoItems()
{
    write("[Download]\nver=3\n" + item(1, "a", "") + "hist\\size=1\n");
    QSettings settings(ini(), QSettings::IniFormat);
    EngineProbe engine(settings, QString());
    engine.storeHistory(settings, QString());
    settings.sync();
    QVERIFY(!text().contains("version"));
    QCOMPARE(settings.value("Download/hist/size").toInt(), 0);
}

void UpdateHistoryTest::hundredThousandItems()
{
    const FixedClock clock(now);
    EngineProbe written(QUrl("http://updates.example.com/"));
    for (int i = 0; i < 100000; ++i) {
        written.updateHistory.insert(QStringLiteral("1-2012-06-01T12:30:00-%1").arg(i),
                                     now.addSecs(-i));
    }
    store(written);
    EngineProbe read;
    QSettings settings(ini(), QSettings::IniFormat);
    read.loadHistory(settings, QString());
    QCOMPARE(read.updateHistory, written.updateHistory);
}

void UpdateHistoryTest::seenPackagesStayKnown()
{
    EngineProbe first(QUrl("http://updates.example.com/"));
    QCOMPARE(DownloadManager::countNew(deliver(first, onePackage)), 1);
    store(first);
    QSettings settings(ini(), QSettings::IniFormat);
    EngineProbe second(settings, QString());
    QCOMPARE(DownloadManager::countNew(deliver(second, onePackage)), 0);
}

void UpdateHistoryTest::unstoredPackagesAreNewAgain()
{
    EngineProbe first(QUrl("http://updates.example.com/"));
    store(first);
    QCOMPARE(DownloadManager::countNew(deliver(first, onePackage)), 1);
    QSettings settings(ini(), QSettings::IniFormat);
    EngineProbe second(settings, QString());
    QCOMPARE(DownloadManager::countNew(deliver(second, onePackage)), 1);
}

void UpdateHistoryTest::fadedPackageIsNewAgain()
{
    const FixedClock clock(now);
    EngineProbe engine;
    load(engine, item(1, onePackageId, isoTime(now.addYears(-2).addSecs(-1))) + "hist\\size=1\n");
    QCOMPARE(DownloadManager::countNew(deliver(engine, onePackage)), 1);
    QCOMPARE(engine.updateHistory.value(onePackageId), now);
    // Within a run the time of first sight is never refreshed.
    QCOMPARE(DownloadManager::countNew(deliver(engine, onePackage)), 0);
    QCOMPARE(engine.updateHistory.value(onePackageId), now);
}

void UpdateHistoryTest::catalogueBytesAreUnchanged()
{
    QByteArray bytes;
    for (int i = 0; i < 1000; ++i) {
        bytes.append(static_cast<char>(i));
    }
    bytes.append("\r\n\n\xef\xbb\xbf");
    const QString file = m_folder->filePath(QString::fromUtf8("K\xc3\xa4talog 1.xml"));
    EngineProbe written;
    written.lastCatalogue = bytes;
    store(written, file);
    QFile stored(file);
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QCOMPARE(stored.readAll(), bytes);

    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe read(settings, file);
    QCOMPARE(read.lastCatalogue, bytes);
}

void UpdateHistoryTest::emptyPathTouchesNoFile()
{
    EngineProbe engine;
    engine.lastCatalogue = "kept";
    store(engine);
    QSettings settings(ini(), QSettings::IniFormat);
    engine.loadHistory(settings, QString());
    QCOMPARE(engine.lastCatalogue, QByteArray("kept"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList("application.ini"));
}

void UpdateHistoryTest::missingFileLeavesTheCatalogue()
{
    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe engine(settings, m_folder->filePath("missing.xml"));
    QVERIFY(engine.lastCatalogue.isEmpty());
    QVERIFY(engine.recentPackages().isEmpty());
    QVERIFY(!QFile::exists(m_folder->filePath("missing.xml")));
}

void UpdateHistoryTest::emptyCatalogueOverwritesNothing()
{
    const QString path = m_folder->filePath("catalogue.xml");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("former");
    file.close();
    EngineProbe engine;
    store(engine, path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("former"));
}

void UpdateHistoryTest::unreadableFileGivesNoPackages()
{
    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe engine(settings, m_folder->path()); // a folder in the file's place
    QVERIFY(engine.lastCatalogue.isEmpty());
    QVERIFY(engine.recentPackages().isEmpty());
}

void UpdateHistoryTest::unwritablePathIsPassedOver()
{
    EngineProbe engine;
    engine.lastCatalogue = "text";
    engine.updateHistory.insert("1-c-3", QDateTime::currentDateTime());
    store(engine, m_folder->filePath("no/such/folder/catalogue.xml"));
    QVERIFY(text().contains("1-c-3"));
}

void UpdateHistoryTest::garbageIsNoHistory()
{
    QByteArray garbage("[Download]\nhist\\size=3\nhist\\1\\time=@Variant(\\0\\0\\0");
    for (int i = 0; i < 4096; ++i) {
        garbage.append(static_cast<char>((i * 7919) >> 3));
    }
    write(garbage);
    QSettings settings(ini(), QSettings::IniFormat);
    const EngineProbe engine(settings, QString());
    QVERIFY(engine.updateHistory.isEmpty());
    QCOMPARE(settings.group(), QString());
}

VX_TEST_MAIN(UpdateHistoryTest)
#include "tst_UpdateHistory.moc"
