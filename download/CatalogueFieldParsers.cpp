#include <cmath>
#include <limits>

#include "download/DownloadManager.h"
#include "package/LogLine.h"

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

QString sectionFromEnd(const QString& name, int section)
{
    return name.section(QLatin1Char('.'), -section, -section, QString::SectionSkipEmpty);
}

/** The suffix that the last two sections make together, or the last alone. */
QString compoundSuffix(const QString& last, const QString& beforeIt)
{
    if (last == QLatin1String("zip") && beforeIt == QLatin1String("mpkg")) {
        return beforeIt;
    }
    const bool compressed = last == QLatin1String("gz") || last == QLatin1String("bz2");
    if (compressed && beforeIt == QLatin1String("tar")) {
        return beforeIt + QLatin1Char('.') + last;
    }
    return last;
}

} // namespace

quintptr DownloadManager::parseFileSize(const QString& text)
{
    if (text.endsWith(QLatin1String("MB"), Qt::CaseInsensitive)) {
        return inUnits(text, 20);
    }
    if (text.endsWith(QLatin1String("kB"), Qt::CaseInsensitive)) {
        return inUnits(text, 10);
    }
    return text.toULong();
}

QDateTime DownloadManager::parseReleaseDate(const QString& text)
{
    const QDateTime withTime = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (withTime.isValid()) {
        return withTime;
    }
    return QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd"));
}

QString DownloadManager::parsePackageSuffix(const QString& name)
{
    const QString suffix = compoundSuffix(sectionFromEnd(name, 1), sectionFromEnd(name, 2));
    if (suffix.length() < shortestUsualSuffix || suffix.length() > longestUsualSuffix) {
        // The line names another operation; whoever searches logs for it relies on that.
        logLine(3, QLatin1String("DownloadManager::parsePackageType() -> parsed suspicious package "
                                 "suffix '") +
                       suffix + QLatin1String("' in ") + name);
    }
    return suffix;
}

} // namespace vx
