#include "download/internal/catalogue/CatalogueFieldParsers.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <initializer_list>
#include <limits>
#include <optional>

#include "base/LogLine.h"

namespace vx {

namespace {

constexpr int shortestUsualSuffix = 3;
constexpr int longestUsualSuffix = 7;

/** The whole part of @p number, or 0 where a conversion to the type would be undefined. */
quintptr truncated(double number)
{
    const double limit = std::ldexp(1.0, std::numeric_limits<quintptr>::digits);
    // What is no number fails both comparisons.
    return number >= 0 && number < limit ? static_cast<quintptr>(number) : 0;
}

/** The number in front of a unit of two characters, cut to whole units before it is shifted. */
quintptr inUnits(const QString& text, int shift)
{
    return truncated(text.chopped(2).toDouble()) << shift;
}

/** Takes the last section between dots off the end of @p name. Empty sections do not count. */
QStringView takeLastSection(QStringView& name)
{
    while (name.endsWith(QLatin1Char('.'))) {
        name.chop(1);
    }
    const QStringView section = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1);
    name.chop(section.length());
    return section;
}

/** The suffix that the last two sections make together, or the last alone. */
QString compoundSuffix(QStringView last, QStringView beforeIt)
{
    if (last == QLatin1String("zip") && beforeIt == QLatin1String("mpkg")) {
        return beforeIt.toString();
    }
    const bool isCompressed = last == QLatin1String("gz") || last == QLatin1String("bz2");
    if (isCompressed && beforeIt == QLatin1String("tar")) {
        return beforeIt.toString() + QLatin1Char('.') + last.toString();
    }
    return last.toString();
}

/** The number that @p count digits from @p from on make, or -1 if there is anything else. */
int digits(const QString& text, int from, int count)
{
    int number = 0;
    for (int i = from; i < from + count; ++i) {
        const ushort character = text.at(i).unicode();
        if (character < '0' || character > '9') {
            return -1;
        }
        number = number * 10 + (character - '0');
    }
    return number;
}

bool hasCharactersAt(const QString& text, std::initializer_list<int> places, char character)
{
    return std::all_of(places.begin(), places.end(), [&text, character](int place) {
        return text.at(place) == QLatin1Char(character);
    });
}

QDate plainDate(const QString& text)
{
    const int year = digits(text, 0, 4);
    if (year < 0 || !hasCharactersAt(text, {4, 7}, '-')) {
        return {};
    }
    return {year, digits(text, 5, 2), digits(text, 8, 2)};
}

QTime plainTime(const QString& text)
{
    if (text.at(10) != QLatin1Char(' ') || !hasCharactersAt(text, {13, 16}, ':')) {
        return {};
    }
    return {digits(text, 11, 2), digits(text, 14, 2), digits(text, 17, 2)};
}

/** What local time is ahead of UTC, in seconds. QDateTime looks up the zone's file for it. */
std::optional<long> offsetAt(std::time_t moment)
{
    std::tm local = {};
    return localtime_r(&moment, &local) != nullptr ? std::optional<long>(local.tm_gmtoff)
                                                   : std::nullopt;
}

/**
 * Whether the local time may come twice, because the clocks are put back about then. Which of the
 * two the system takes depends on what it was asked before.
 */
bool mayComeTwice(const QDateTime& time)
{
    constexpr std::time_t threeDays = 3L * 24 * 60 * 60; // zones have changed the date, too
    const auto about = QDateTime(time.date(), time.time(), Qt::UTC).toSecsSinceEpoch();
    return offsetAt(about - threeDays) != offsetAt(about + threeDays);
}

QDateTime plainDateTime(const QString& text)
{
    if (text.length() == 10) {
        return QDateTime(plainDate(text), QTime(0, 0));
    }
    if (text.length() == 19) {
        const QTime time = plainTime(text);
        return time.isValid() ? QDateTime(plainDate(text), time) : QDateTime();
    }
    return {};
}

/**
 * What QDateTime::fromString returns for a text plainly of one of the two forms, and an invalid
 * time for any other. The general parser takes as long for one time as all else for a whole
 * package.
 */
QDateTime quicklyRead(const QString& text)
{
    const QDateTime time = plainDateTime(text);
    return time.isValid() && !mayComeTwice(time) ? time : QDateTime();
}

} // namespace

quintptr CatalogueFieldParsers::parseFileSize(const QString& text)
{
    if (text.endsWith(QLatin1String("MB"), Qt::CaseInsensitive)) {
        return inUnits(text, 20);
    }
    if (text.endsWith(QLatin1String("kB"), Qt::CaseInsensitive)) {
        return inUnits(text, 10);
    }
    return text.toULong();
}

QDateTime CatalogueFieldParsers::parseReleaseDate(const QString& text)
{
    const QDateTime quick = quicklyRead(text);
    if (quick.isValid()) {
        return quick;
    }
    const QDateTime withTime = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (withTime.isValid()) {
        return withTime;
    }
    const QDateTime day = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd"));
    // Where the clocks are put forward at midnight, Qt 6 begins the day at one o'clock. For Qt 5
    // there is no such time, and a release would have another identity for either.
    return day.isValid() && day.time() == QTime(0, 0) ? day : QDateTime();
}

QString CatalogueFieldParsers::parsePackageSuffix(const QString& name)
{
    QStringView rest(name);
    const QStringView last = takeLastSection(rest);
    const QString suffix = compoundSuffix(last, takeLastSection(rest));
    if (suffix.length() < shortestUsualSuffix || suffix.length() > longestUsualSuffix) {
        // The line names another operation; whoever searches logs for it relies on that.
        logLine(3, QLatin1String("DownloadManager::parsePackageType() -> parsed suspicious package "
                                 "suffix '") +
                       suffix + QLatin1String("' in ") + name);
    }
    return suffix;
}

} // namespace vx
