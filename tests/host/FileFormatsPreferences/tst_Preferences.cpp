#include <QSettings>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QtTest>

#include <ctime>
#include <memory>

#include "host/FileFormatsPreferences/Preferences.h"
#include "tests/support/TestMain.h"

using vx::Preferences;

namespace {

const QString key = QStringLiteral("key");

/** Moves the process to another time zone while it lives. */
class InTimeZone
{
public:
    explicit InTimeZone(const QByteArray& zone)
        : m_before(qgetenv("TZ"))
    {
        set(zone);
    }
    ~InTimeZone() { set(m_before); }
    Q_DISABLE_COPY(InTimeZone)

private:
    static void set(const QByteArray& zone)
    {
        zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
        tzset();
    }
    QByteArray m_before;
};

} // namespace

class PreferencesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void keepsATime_data();
    void keepsATime();
    void storesTimesAsText();
    void keepsTheMomentAcrossTimeZones();
    void readsOtherFormsOfTime_data();
    void readsOtherFormsOfTime();
    void readsATimeStoredBySettings();
    void givesTheDefaultTime_data();
    void givesTheDefaultTime();
    void readsFlags_data();
    void readsFlags();
    void readsNumbers_data();
    void readsNumbers();
    void readsText_data();
    void readsText();
    void readsInGroupsAndArrays();

private:
    /** Writes the file, so that what follows is read from text and not from memory. */
    void reopen() { m_settings = std::make_unique<QSettings>(m_file, QSettings::IniFormat); }
    void store(const QVariant& value)
    {
        m_settings->setValue(key, value);
        reopen();
    }
    void storeLine(const QByteArray& line);

    QTemporaryDir m_folder;
    QString m_file = m_folder.filePath(QStringLiteral("settings.ini"));
    std::unique_ptr<QSettings> m_settings;
};

void PreferencesTest::init()
{
    m_settings.reset();
    QFile::remove(m_file);
    reopen();
}

void PreferencesTest::storeLine(const QByteArray& line)
{
    m_settings.reset();
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\n" + line + '\n');
    file.close();
    reopen();
}

void PreferencesTest::keepsATime_data()
{
    QTest::addColumn<QDateTime>("time");
    const QDate leapDay(2024, 2, 29);
    const QTime noon(12, 5, 9, 42);
    QTest::newRow("local") << QDateTime(leapDay, noon);
    QTest::newRow("UTC") << QDateTime(leapDay, noon, Qt::UTC);
    QTest::newRow("offset") << QDateTime(leapDay, noon, Qt::OffsetFromUTC, -12600);
    QTest::newRow("midnight") << QDateTime(leapDay, QTime(0, 0));
    QTest::newRow("last millisecond") << QDateTime(leapDay, QTime(23, 59, 59, 999), Qt::UTC);
    QTest::newRow("before 1970") << QDateTime(QDate(1901, 1, 1), noon, Qt::UTC);
    QTest::newRow("after 2038") << QDateTime(QDate(2525, 12, 31), noon, Qt::UTC);
}

void PreferencesTest::keepsATime()
{
    QFETCH(QDateTime, time);
    Preferences::setDateTimeValue(*m_settings, key, time);
    reopen();
    const QDateTime read = Preferences::dateTimeValue(*m_settings, key, QDateTime());
    QCOMPARE(read, time);
    QCOMPARE(read.toMSecsSinceEpoch(), time.toMSecsSinceEpoch());
    QCOMPARE(read.timeSpec(), Qt::LocalTime);
}

void PreferencesTest::storesTimesAsText()
{
    const QDateTime time(QDate(2024, 2, 29), QTime(13, 5, 9, 42), Qt::OffsetFromUTC, 3600);
    Preferences::setDateTimeValue(*m_settings, key, time);
    QCOMPARE(m_settings->value(key), QVariant(QStringLiteral("2024-02-29T12:05:09.042Z")));
}

void PreferencesTest::keepsTheMomentAcrossTimeZones()
{
    QDateTime time;
    {
        const InTimeZone west("WEST5");
        time = QDateTime(QDate(2024, 2, 29), QTime(22, 0));
        Preferences::setDateTimeValue(*m_settings, key, time);
        reopen();
        time = time.toUTC();
    }
    const InTimeZone east("EAST-9");
    const QDateTime read = Preferences::dateTimeValue(*m_settings, key, QDateTime());
    QCOMPARE(read, time);
    QCOMPARE(read.date(), QDate(2024, 3, 1));
    QCOMPARE(read.time(), QTime(12, 0));
}

void PreferencesTest::readsOtherFormsOfTime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("expected");
    const QDate day(2024, 2, 29);
    const QTime time(13, 5, 9);
    QTest::newRow("without milliseconds")
        << "2024-02-29T13:05:09Z" << QDateTime(day, time, Qt::UTC);
    QTest::newRow("offset") << "2024-02-29T13:05:09+02:00"
                            << QDateTime(day, QTime(11, 5, 9), Qt::UTC);
    QTest::newRow("local") << "2024-02-29T13:05:09" << QDateTime(day, time);
    QTest::newRow("blank in place of T") << "2024-02-29 13:05:09" << QDateTime(day, time);
    QTest::newRow("date only") << "2024-02-29" << QDateTime(day, QTime(0, 0));
    QTest::newRow("white space around")
        << " 2024-02-29T13:05:09Z " << QDateTime(day, time, Qt::UTC);
}

void PreferencesTest::readsOtherFormsOfTime()
{
    QFETCH(QString, text);
    QFETCH(QDateTime, expected);
    store(text);
    QCOMPARE(Preferences::dateTimeValue(*m_settings, key, QDateTime()), expected);
}

void PreferencesTest::readsATimeStoredBySettings()
{
    for (const Qt::TimeSpec spec : {Qt::LocalTime, Qt::UTC}) {
        const QDateTime time(QDate(2024, 2, 29), QTime(13, 5, 9, 42), spec);
        store(time);
        QCOMPARE(Preferences::dateTimeValue(*m_settings, key, QDateTime()), time);
    }
}

void PreferencesTest::givesTheDefaultTime_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("absent") << QVariant();
    QTest::newRow("null time") << QVariant(QDateTime());
    QTest::newRow("empty") << QVariant(QString());
    QTest::newRow("no time") << QVariant(QStringLiteral("yesterday"));
    QTest::newRow("no such day") << QVariant(QStringLiteral("2023-02-29T00:00:00Z"));
    QTest::newRow("German form") << QVariant(QStringLiteral("29.02.2024 13:05:09"));
    QTest::newRow("number") << QVariant(20240229);
    QTest::newRow("list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
}

void PreferencesTest::givesTheDefaultTime()
{
    QFETCH(QVariant, stored);
    if (stored.isValid()) {
        store(stored);
    }
    const QDateTime other(QDate(2001, 2, 3), QTime(4, 5), Qt::UTC);
    QCOMPARE(Preferences::dateTimeValue(*m_settings, key, other), other);
    QVERIFY(Preferences::dateTimeValue(*m_settings, key, QDateTime()).isNull());
    Preferences::setDateTimeValue(*m_settings, key, QDateTime());
    QCOMPARE(Preferences::dateTimeValue(*m_settings, key, other), other);
}

void PreferencesTest::readsFlags_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("whenDefaultIsTrue");
    QTest::addColumn<bool>("whenDefaultIsFalse");
    QTest::newRow("true") << QByteArray("key=true") << true << true;
    QTest::newRow("false") << QByteArray("key=false") << false << false;
    QTest::newRow("capitals") << QByteArray("key=FALSE") << false << false;
    QTest::newRow("1") << QByteArray("key=1") << true << true;
    QTest::newRow("0") << QByteArray("key=0") << false << false;
    QTest::newRow("-3") << QByteArray("key=-3") << true << true;
    QTest::newRow("white space") << QByteArray("key=\" true \"") << true << true;
    QTest::newRow("absent") << QByteArray("other=true") << true << false;
    QTest::newRow("empty") << QByteArray("key=") << true << false;
    QTest::newRow("no flag") << QByteArray("key=perhaps") << true << false;
    QTest::newRow("list") << QByteArray("key=true, true") << true << false;
}

void PreferencesTest::readsFlags()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, whenDefaultIsTrue);
    QFETCH(bool, whenDefaultIsFalse);
    storeLine(line);
    QCOMPARE(Preferences::boolValue(*m_settings, key, true), whenDefaultIsTrue);
    QCOMPARE(Preferences::boolValue(*m_settings, key, false), whenDefaultIsFalse);
}

void PreferencesTest::readsNumbers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("expected");
    QTest::newRow("number") << QByteArray("key=3") << 3;
    QTest::newRow("zero") << QByteArray("key=0") << 0;
    QTest::newRow("negative") << QByteArray("key=-2147483648") << std::numeric_limits<int>::min();
    QTest::newRow("largest") << QByteArray("key=2147483647") << std::numeric_limits<int>::max();
    QTest::newRow("too large") << QByteArray("key=2147483648") << -7;
    QTest::newRow("far too large") << QByteArray("key=99999999999999999999") << -7;
    QTest::newRow("fraction") << QByteArray("key=3.5") << -7;
    QTest::newRow("flag") << QByteArray("key=true") << -7;
    QTest::newRow("text") << QByteArray("key=three") << -7;
    QTest::newRow("empty") << QByteArray("key=") << -7;
    QTest::newRow("absent") << QByteArray("other=3") << -7;
}

void PreferencesTest::readsNumbers()
{
    QFETCH(QByteArray, line);
    QFETCH(int, expected);
    storeLine(line);
    QCOMPARE(Preferences::intValue(*m_settings, key, -7), expected);
}

void PreferencesTest::readsText_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text") << QByteArray("key=a b") << "a b";
    QTest::newRow("quoted") << QByteArray("key=\" a, b \"") << " a, b ";
    QTest::newRow("number") << QByteArray("key=3") << "3";
    QTest::newRow("empty") << QByteArray("key=") << "";
    QTest::newRow("absent") << QByteArray("other=a") << "default";
    QTest::newRow("list") << QByteArray("key=a, b") << "default";
}

void PreferencesTest::readsText()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, expected);
    storeLine(line);
    QCOMPARE(Preferences::stringValue(*m_settings, key, QStringLiteral("default")), expected);
}

void PreferencesTest::readsInGroupsAndArrays()
{
    const QDateTime time(QDate(2024, 2, 29), QTime(13, 5), Qt::UTC);
    m_settings->beginGroup(QStringLiteral("Download"));
    m_settings->beginWriteArray(QStringLiteral("hist"), 1);
    m_settings->setArrayIndex(0);
    Preferences::setDateTimeValue(*m_settings, key, time);
    m_settings->endArray();
    m_settings->endGroup();
    reopen();
    QVERIFY(Preferences::dateTimeValue(*m_settings, key, QDateTime()).isNull());
    m_settings->beginGroup(QStringLiteral("Download"));
    QCOMPARE(m_settings->beginReadArray(QStringLiteral("hist")), 1);
    m_settings->setArrayIndex(0);
    QCOMPARE(Preferences::dateTimeValue(*m_settings, key, QDateTime()), time);
}

VX_TEST_MAIN(PreferencesTest)
#include "tst_Preferences.moc"
