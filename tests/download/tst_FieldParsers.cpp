#include <QtTest>

#include <cmath>
#include <limits>

#include "download/DownloadManager.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"

using vx::DownloadManager;

namespace {

constexpr quintptr megabyte = 1048576;

/** The definition of a release date, without the short way that the engine takes to it. */
QDateTime parsedByQt(const QString& text)
{
    const QDateTime withTime = QDateTime::fromString(text, "yyyy-MM-dd hh:mm:ss");
    const QDateTime day = QDateTime::fromString(text, "yyyy-MM-dd");
    if (withTime.isValid()) {
        return withTime;
    }
    // Qt 6 begins a day without midnight later.
    return day.isValid() && day.time() == QTime(0, 0) ? day : QDateTime();
}

/** Lives in another time zone, for the library and for Qt, until destroyed. */
class TimeZone
{
public:
    explicit TimeZone(const char* name)
        : m_previous(qgetenv("TZ"))
        , m_wasSet(qEnvironmentVariableIsSet("TZ"))
    {
        qputenv("TZ", name);
        tzset();
    }
    ~TimeZone()
    {
        if (m_wasSet) {
            qputenv("TZ", m_previous);
        } else {
            qunsetenv("TZ");
        }
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    QByteArray m_previous;
    bool m_wasSet;
};

/** Whether both parsers agree about @p text in every respect. */
bool agree(const QString& text)
{
    const QDateTime ours = DownloadManager::parseReleaseDate(text);
    const QDateTime theirs = parsedByQt(text);
    return ours == theirs && ours.isValid() == theirs.isValid() && ours.date() == theirs.date() &&
           ours.time() == theirs.time() && ours.timeSpec() == theirs.timeSpec() &&
           ours.toString(Qt::ISODateWithMs) == theirs.toString(Qt::ISODateWithMs);
}

} // namespace

class FieldParsersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void fileSize_data();
    void fileSize();
    void hostileFileSize_data();
    void hostileFileSize();
    void releaseDate_data();
    void releaseDate();
    void datesAgreeWithQt_data();
    void datesAgreeWithQt();
    void skippedTimesAreNone_data();
    void skippedTimesAreNone();
    void repeatedTimesKeepTheirText_data();
    void repeatedTimesKeepTheirText();
    void repeatedHourAgreesWithQt_data();
    void repeatedHourAgreesWithQt();
    void oddDatesAgreeWithQt_data();
    void oddDatesAgreeWithQt();
    void suffix_data();
    void suffix();
    void suspiciousSuffixIsLoggedWhole();
    void suffixAgreesWithQtSections();
};

void FieldParsersTest::initTestCase()
{
    // For suffixes that are tried by the thousand. LogCapture still sees all.
    vx::Log::instance().setLogLevel(4);
}

void FieldParsersTest::fileSize_data()
{
    QTest::addColumn<quintptr>("bytes");

    const auto add = [](const char* text, quintptr bytes) { QTest::newRow(text) << bytes; };
    add("12MB", 12 * megabyte);
    add("12mb", 12 * megabyte);
    add("12Mb", 12 * megabyte);
    add("12mB", 12 * megabyte);
    add("2KB", 2048);
    add("2kB", 2048);
    add("2kb", 2048);
    add("700kB", 716800);
    add("2048", 2048);
    add("0", 0);
    add("", 0);
    add("abc", 0);
    add("MB", 0);
    add("kB", 0);
    add("1.9MB", megabyte);
    add("1.5MB", megabyte);
    add("0.5MB", 0);
    add("1.5", 0);
    add("1e2kB", 102400);
    add("0x10", 0);
    add("-5", 0);
    add("12 MB", 12 * megabyte);
    add("12B", 0);
    add("12GB", 0);
    add("12MB ", 0);
    add("1,5MB", 0);
}

void FieldParsersTest::fileSize()
{
    QTEST(DownloadManager::parseFileSize(QString::fromUtf8(QTest::currentDataTag())), "bytes");
}

void FieldParsersTest::hostileFileSize_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<quintptr>("bytes");

    const quintptr highest = ~(std::numeric_limits<quintptr>::max() >> 1);
    QTest::newRow("huge") << "1e300MB" << quintptr(0);
    QTest::newRow("too huge for a double") << "1e999MB" << quintptr(0);
    QTest::newRow("no number") << "nanMB" << quintptr(0);
    QTest::newRow("infinite") << "infMB" << quintptr(0);
    QTest::newRow("minus infinite") << "-infkB" << quintptr(0);
    QTest::newRow("negative") << "-1MB" << quintptr(0);
    QTest::newRow("above minus one") << "-0.9kB" << quintptr(0);
    QTest::newRow("minus nought") << "-0kB" << quintptr(0);
    QTest::newRow("tiny") << "1e-400MB" << quintptr(0);
    QTest::newRow("many digits") << QString(100000, '9') + "MB" << quintptr(0);
    QTest::newRow("many digits, bytes") << QString(100000, '9') << quintptr(0);
    QTest::newRow("many zeros first") << QString(100000, '0') + "7kB" << quintptr(7168);
    QTest::newRow("first too large for the type")
        << QString::number(std::ldexp(1.0, std::numeric_limits<quintptr>::digits), 'f', 0) + "kB"
        << quintptr(0);
    QTest::newRow("highest bits are shifted out")
        << QString::number(std::ldexp(1.0, std::numeric_limits<quintptr>::digits - 1), 'f', 0) +
               "kB"
        << quintptr(0);
    QTest::newRow("highest bit is kept")
        << QString::number(std::ldexp(1.0, std::numeric_limits<quintptr>::digits - 11), 'f', 0) +
               "kB"
        << highest;
    QTest::newRow("largest in bytes") << QString::number(std::numeric_limits<ulong>::max())
                                      << quintptr(std::numeric_limits<ulong>::max());
    QTest::newRow("one more") << "18446744073709551616" << quintptr(0);
    QTest::newRow("embedded null") << QString::fromLatin1("1\0"
                                                          "2MB",
                                                          5)
                                   << quintptr(0);
    QTest::newRow("other digits") << QString::fromUtf8("\xd9\xa1\xd9\xa2MB") << quintptr(0);
}

void FieldParsersTest::hostileFileSize()
{
    QFETCH(QString, text);
    QTEST(DownloadManager::parseFileSize(text), "bytes");
}

void FieldParsersTest::releaseDate_data()
{
    QTest::addColumn<QDateTime>("date");

    const auto add = [](const char* text, const QDateTime& date) { QTest::newRow(text) << date; };
    const QDate june(2012, 6, 1);
    add("2012-06-01 12:30:15", QDateTime(june, QTime(12, 30, 15)));
    add("2012-06-01", QDateTime(june, QTime(0, 0)));
    add("2012-02-29", QDateTime(QDate(2012, 2, 29), QTime(0, 0)));
    for (const char* text :
         {"", "2012-06-01 12:30", "2012-06-01T12:30:15", "2011-02-29", "2012-13-01",
          "2012-06-01 24:00:00", "2012-06-01 12:30:60", "x", "01.06.2012", "2012-06-xx",
          "2012-06-01 xx:30:15", "2012/06/01", "2012-06-01 12.30.15", "0000-00-00"}) {
        add(text, QDateTime());
    }
}

void FieldParsersTest::releaseDate()
{
    QFETCH(QDateTime, date);
    const QDateTime parsed = DownloadManager::parseReleaseDate(QTest::currentDataTag());
    QCOMPARE(parsed, date);
    QCOMPARE(parsed.isValid(), date.isValid());
    QCOMPARE(parsed.timeSpec(), Qt::LocalTime);
}

void FieldParsersTest::datesAgreeWithQt_data()
{
    QTest::addColumn<QByteArray>("zone");

    // With and without summer time, with a change at midnight, by half an hour and by a whole day.
    for (const char* zone : {"UTC", "Europe/Berlin", "America/New_York", "America/Sao_Paulo",
                             "Asia/Beirut", "Australia/Lord_Howe", "Pacific/Apia"}) {
        QTest::newRow(zone) << QByteArray(zone);
    }
}

void FieldParsersTest::datesAgreeWithQt()
{
    QFETCH(QByteArray, zone);
    const TimeZone timeZone(zone.constData());
    for (const int year : {1, 1900, 1970, 2011, 2018, 2040, 9999}) {
        // Every day of the years in which the rules above apply.
        const int step = year == 2011 || year == 2018 ? 1 : 13;
        for (QDate day(year, 1, 1); day.year() == year; day = day.addDays(step)) {
            const QString text = day.toString("yyyy-MM-dd");
            QVERIFY2(agree(text), qPrintable(text));
            const QString hour = QString("%1").arg(day.dayOfYear() % 6, 2, 10, QChar('0'));
            const QString withTime = text + ' ' + hour + ":30:00";
            QVERIFY2(agree(withTime), qPrintable(withTime));
        }
    }
}

void FieldParsersTest::skippedTimesAreNone_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("exists");

    const auto add = [](const char* zone, const char* text, bool exists) {
        QTest::addRow("%s, %s", zone, text) << QByteArray(zone) << QString(text) << exists;
    };
    add("Europe/Berlin", "2024-03-31", true);
    add("Europe/Berlin", "2024-03-31 01:59:59", true);
    add("Europe/Berlin", "2024-03-31 02:00:00", false);
    add("Europe/Berlin", "2024-03-31 02:30:00", false);
    add("Europe/Berlin", "2024-03-31 03:00:00", true);
    add("America/Sao_Paulo", "2018-11-03", true);
    add("America/Sao_Paulo", "2018-11-04", false);
    add("America/Sao_Paulo", "2018-11-04 00:30:00", false);
    add("America/Sao_Paulo", "2018-11-04 01:00:00", true);
    add("Asia/Beirut", "2011-03-27", false);
    add("Pacific/Apia", "2011-12-30", false); // the whole day
    add("Pacific/Apia", "2011-12-30 12:00:00", false);
    add("Pacific/Apia", "2011-12-31", true);
}

// The date is part of what a package is known by, so that no Qt may put another time in its place.
void FieldParsersTest::skippedTimesAreNone()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, text);
    QFETCH(bool, exists);
    const TimeZone timeZone(zone.constData());
    const QDateTime date = DownloadManager::parseReleaseDate(text);
    QCOMPARE(date.isValid(), exists);
    QCOMPARE(date.isNull(), !exists);
    QCOMPARE(date.toString("yyyy-MM-dd hh:mm:ss").left(text.size()), exists ? text : QString());
}

void FieldParsersTest::repeatedTimesKeepTheirText_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("text");
    QTest::newRow("hour") << QByteArray("Europe/Berlin") << "2024-10-27 02:30:00";
    QTest::newRow("half an hour") << QByteArray("Australia/Lord_Howe") << "2018-04-01 01:45:00";
    QTest::newRow("midnight") << QByteArray("America/Havana") << "2015-11-01 00:00:00";
}

void FieldParsersTest::repeatedTimesKeepTheirText()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, text);
    const TimeZone timeZone(zone.constData());
    const QDateTime date = DownloadManager::parseReleaseDate(text);
    QVERIFY(date.isValid());
    QCOMPARE(date.toString("yyyy-MM-dd hh:mm:ss"), text);
}

void FieldParsersTest::repeatedHourAgreesWithQt_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("day");

    const auto add = [](const char* zone, const QDate& day) {
        QTest::newRow(zone) << QByteArray(zone) << day;
    };
    add("Europe/Berlin", QDate(2012, 10, 28));
    add("America/Havana", QDate(2015, 11, 1)); // midnight is in that hour
    add("America/New_York", QDate(2018, 11, 4));
    add("America/Sao_Paulo", QDate(2018, 2, 17));
    add("Australia/Lord_Howe", QDate(2018, 4, 1)); // half an hour
    add("Asia/Kathmandu", QDate(1986, 1, 1));
    add("Pacific/Kwajalein", QDate(1969, 9, 30)); // a whole day
}

// The system reads such a time now as one and now as the other, after what it has read before.
void FieldParsersTest::repeatedHourAgreesWithQt()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDate, day);
    const TimeZone timeZone(zone.constData());
    for (int quarter = -96; quarter < 192; ++quarter) {
        const QDateTime time = QDateTime(day, QTime(0, 0), Qt::UTC).addSecs(quarter * 900);
        for (const char* format : {"yyyy-MM-dd hh:mm:ss", "yyyy-MM-dd"}) {
            const QString text = time.toString(format);
            for (const int months : {-4, -1, 1, 4}) {
                const QString before = day.addMonths(months).toString("yyyy-MM-dd");
                parsedByQt(before);
                const QDateTime theirs = parsedByQt(text);
                DownloadManager::parseReleaseDate(before);
                const QDateTime ours = DownloadManager::parseReleaseDate(text);
                QVERIFY2(ours.toMSecsSinceEpoch() == theirs.toMSecsSinceEpoch(),
                         qPrintable(text + " after " + before));
            }
        }
    }
}

void FieldParsersTest::oddDatesAgreeWithQt_data()
{
    QTest::addColumn<QString>("text");

    for (const char* text :
         {"+012-06-01", "-012-06-01", "2012-6-1", "2012-006-1", " 2012-06-01", "2012-06-01 ",
          "2012-06-01  1:02:03", "2012-06-01 1:2:3", "2012-06-01 -1:02:03", "2012-06-01 12:30:15Z",
          "2012-06-01-12:30:15", "0000-01-01", "0001-01-01 00:00:00", "99999-01-01",
          "2012-06-01 23:59:60",
          "\xd9\xa1\xd9\xa2\xd9\xa3\xd9\xa4-\xd9\xa0\xd9\xa6-\xd9\xa0\xd9\xa1"}) {
        QTest::newRow(text) << QString::fromUtf8(text);
    }
}

void FieldParsersTest::oddDatesAgreeWithQt()
{
    QFETCH(QString, text);
    for (const char* locale : {"C", "de_DE", "ar_EG", "fa_IR"}) {
        QLocale::setDefault(QLocale(locale));
        const bool same = agree(text) && agree("2012-06-01") && agree("2012-06-01 12:30:15");
        QLocale::setDefault(QLocale::c());
        QVERIFY2(same, locale);
    }
}

void FieldParsersTest::suffix_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("logged");

    const auto add = [](const char* name, const char* suffix, bool logged) {
        QTest::newRow(name) << suffix << logged;
    };
    add("http://host/a.mpkg.zip", "mpkg", false);
    add("http://host/a.tar.zip", "zip", false);
    add("http://host/a.zip", "zip", false);
    add("http://host/a.tar.gz", "tar.gz", false);
    add("http://host/a.mpkg.gz", "gz", true);
    add("http://host/a.gz", "gz", true);
    add("http://host/a.tar.bz2", "tar.bz2", false);
    add("http://host/a.mpkg.bz2", "bz2", false);
    add("http://host/a.bz2", "bz2", false);
    for (const char* suffix : {"tar", "mpkg", "dmg", "exe", "msi", "deb", "rpk"}) {
        add(QByteArray("http://host/a.").append(suffix).constData(), suffix, false);
        add(QByteArray("http://host/tar.mpkg.").append(suffix).constData(), suffix, false);
    }
    add("http://host/a.abc", "abc", false);
    add("http://host/a.abcdefg", "abcdefg", false);
    add("http://host/a.ab", "ab", true);
    add("http://host/a.abcdefgh", "abcdefgh", true);
    add("", "", true);
    add("...", "", true);
    add("nodots", "nodots", false);
    add("a long name without dots", "a long name without dots", true);
    add("http://host/a.zip.", "zip", false);
    add("http://host/a.mpkg..zip...", "mpkg", false);
    add("http://host/a.tar..gz", "tar.gz", false);
    add("http://host/a.zip?k=1", "zip?k=1", false);
    add("http://host/a.zip?key=value", "zip?key=value", true);
    add("http://host/a.ZIP", "ZIP", false);
    add("http://host/a.MPKG.ZIP", "ZIP", false);
    add("http://host/a.MPKG.zip", "zip", false);
    add("http://host/a.TAR.gz", "gz", true);
    add("zip", "zip", false);
    add("mpkg.zip", "mpkg", false);
}

void FieldParsersTest::suffix()
{
    QFETCH(bool, logged);
    vx::test::LogCapture log;
    const QString name = QTest::currentDataTag();
    QTEST(DownloadManager::parsePackageSuffix(name), "suffix");
    QCOMPARE(log.lines(3).size(), logged ? 1 : 0);
    QVERIFY(log.lines(1).isEmpty());
    QVERIFY(log.lines(2).isEmpty());
}

void FieldParsersTest::suspiciousSuffixIsLoggedWhole()
{
    vx::test::LogCapture log;
    DownloadManager::parsePackageSuffix("http://host/a.gz");
    QVERIFY(log.contains(3, "DownloadManager::parsePackageType() -> parsed suspicious package "
                            "suffix 'gz' in http://host/a.gz"));
}

void FieldParsersTest::suffixAgreesWithQtSections()
{
    // Every text of up to seven characters of these three; none of them makes a compound suffix.
    const QString alphabet = "a.b";
    for (int number = 0; number < 2187; ++number) {
        QString text;
        for (int rest = number; rest > 0; rest /= 3) {
            text += alphabet.at(rest % 3);
        }
        QCOMPARE(DownloadManager::parsePackageSuffix(text),
                 text.section('.', -1, -1, QString::SectionSkipEmpty));
    }
}

VX_TEST_MAIN(FieldParsersTest)
#include "tst_FieldParsers.moc"
