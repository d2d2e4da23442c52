// The application's next version may be built with another Qt: it must know what this one has seen.
#include <QTemporaryDir>
#include <QtTest>

#include "host/CoreQt/QtVersions.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/FixedClock.h"
#include "tests/support/TestMain.h"

using namespace vx;
using vx::test::EngineProbe;
using vx::test::FixedClock;

class HistoryOfOtherQtTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void reads_data() { addFiles(); }
    void reads();
    void writesTheFileOfItsOwn_data() { addFiles(); }
    void writesTheFileOfItsOwn();

private:
    static void addFiles();
    static QByteArray contentOf(const QString& path);
    QString historyFile() const { return m_folder->filePath("application.ini"); }
    QString catalogueFile() const { return m_folder->filePath("catalogue.xml"); }

    const FixedClock m_clock{QDateTime(QDate(2024, 4, 1), QTime(12, 0))};
    QScopedPointer<QTemporaryDir> m_folder;
};

void HistoryOfOtherQtTest::addFiles()
{
    QTest::addColumn<int>("version");
    QTest::newRow("Qt 5") << 5;
    QTest::newRow("Qt 6") << 6;
}

QByteArray HistoryOfOtherQtTest::contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void HistoryOfOtherQtTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(QFile::copy(QFINDTESTDATA("histories/catalogue.xml"), catalogueFile()));
}

void HistoryOfOtherQtTest::reads()
{
    QFETCH(int, version);
    const QString file = QStringLiteral("histories/written-by-qt%1.ini").arg(version);
    QVERIFY(QFile::copy(QFINDTESTDATA(file), historyFile()));
    QSettings settings(historyFile(), QSettings::IniFormat);
    setUtf8(settings, version == 6);
    const EngineProbe engine(settings, catalogueFile());

    QCOMPARE(engine.lastCheck.toUTC(), QDateTime(QDate(2024, 3, 31), QTime(6, 0), Qt::UTC));
    QVERIFY(engine.isRegularCheck());
    QCOMPARE(QString(engine.server().server), QString("http://updates.example.com:8080"));
    QCOMPARE(engine.server().proxyPreference, HttpHost::OwnProxy);
    QCOMPARE(QString(engine.server().proxy), QString("http://proxy.example.com:3128"));
    QCOMPARE(engine.server().proxy.user, QString::fromUtf8("J\xc3\xbcrgen"));
    QCOMPARE(engine.updateHistory.size(), 1);
    QCOMPARE(engine.updateHistory.value("1-2024-03-28T00:00:00-1024").toUTC(),
             QDateTime(QDate(2024, 3, 30), QTime(11, 30, 15, 250), Qt::UTC));

    const PackageInfoList packages = engine.recentPackages();
    QCOMPARE(packages.size(), 1);
    QVERIFY(engine.updateHistory.contains(packages.first().stringID()));
    QCOMPARE(packages.first().comment, QString::fromUtf8("F\xc3\xbcr Dome-24 und Mini-12 "
                                                         "\xe7\x9b\xa3\xe8\xa6\x96 "
                                                         "\xf0\x9f\x93\xb7"));
}

// What this Qt writes is one of the two files that both of them read.
void HistoryOfOtherQtTest::writesTheFileOfItsOwn()
{
    QFETCH(int, version);
    const QString file = QStringLiteral("histories/written-by-qt%1.ini");
    QVERIFY(QFile::copy(QFINDTESTDATA(file.arg(version)), historyFile()));
    {
        QSettings settings(historyFile(), QSettings::IniFormat);
        setUtf8(settings, version == 6);
        EngineProbe engine(settings, catalogueFile());
        setUtf8(settings, false);
        engine.storeHistory(settings, catalogueFile());
    }
    QCOMPARE(contentOf(historyFile()), contentOf(QFINDTESTDATA(file.arg(QT_VERSION_MAJOR))));
    QCOMPARE(contentOf(catalogueFile()), contentOf(QFINDTESTDATA("histories/catalogue.xml")));
}

VX_TEST_MAIN(HistoryOfOtherQtTest)
#include "tst_HistoryOfOtherQt.moc"
