#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>

// The one place that silences Qt's deprecation warnings. What stands here is required as it is:
// several values under one key of a QMap, the long date of the system's locale, and the separator
// behaviour in its former type. Everywhere else such a warning is an error.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif

namespace vx {

/** The values of QString::SplitBehavior under names that give no warning. */
constexpr QString::SplitBehavior keepEmptyParts = QString::KeepEmptyParts;
constexpr QString::SplitBehavior skipEmptyParts = QString::SkipEmptyParts;

/** Adds @p value under @p key and keeps those already there; a lookup gives the last one added. */
template <typename Key, typename Value>
void insertMulti(QMap<Key, Value>& map, const Key& key, const Value& value)
{
    map.insertMulti(key, value);
}

/** The date in the long form of the system's locale; empty for an invalid date. */
inline QString longDateText(const QDate& date)
{
    return date.toString(Qt::SystemLocaleLongDate);
}

/** Date and time in the long form of the system's locale; empty for an invalid time. */
inline QString longDateText(const QDateTime& time)
{
    return time.toString(Qt::SystemLocaleLongDate);
}

} // namespace vx

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
