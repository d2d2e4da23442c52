#pragma once

#include <QDateTime>
#include <QLibraryInfo>
#include <QLocale>
#include <QMap>
#include <QMetaType>
#include <QRegExp>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTextCodec>
#include <QTextStream>
#include <QVariant>

// What differs between Qt 5 and Qt 6, under one name for both. Three things are required as they
// were in the older one: several values under one key of a map, the long date of the system's
// locale, and the separator behaviour in its former type. The deprecation warnings that Qt 5 has
// for them are silenced here alone; everywhere else such a warning is an error.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif

namespace vx {

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

/** A map that may hold several values under one key. */
template <typename Key, typename Value>
using MultiValueMap = QMap<Key, Value>;

/** Whether the empty parts of a text that is split are kept. */
using SplitBehavior = QString::SplitBehavior;
constexpr SplitBehavior keepEmptyParts = QString::KeepEmptyParts;
constexpr SplitBehavior skipEmptyParts = QString::SkipEmptyParts;

/** The parts of @p text between the matches of @p separator. */
inline QStringList splitText(const QString& text, const QRegExp& separator, SplitBehavior behavior)
{
    return text.split(separator, behavior);
}

/** Adds @p value under @p key and keeps those already there; a lookup gives the last one added. */
template <typename Key, typename Value>
void insertMulti(MultiValueMap<Key, Value>& map, const Key& key, const Value& value)
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

/** The number of the meta-type registered as @p name, QMetaType::UnknownType if there is none. */
inline int metaTypeId(const char* name)
{
    return QMetaType::type(name);
}

/** Lets @p stream read and write UTF-8, whatever the locale. */
inline void useUtf8(QTextStream& stream)
{
    stream.setCodec("UTF-8");
}

/** Whether bytes of @p store beyond ASCII are UTF-8, as Qt 6 writes them, and not Latin-1. */
inline void setUtf8(QSettings& store, bool isUtf8)
{
    store.setIniCodec(isUtf8 ? QTextCodec::codecForName("UTF-8") : nullptr);
}

/** Where Qt keeps the translations of its own texts. */
inline QString qtTranslationsFolder()
{
    return QLibraryInfo::location(QLibraryInfo::TranslationsPath);
}

/** Whether @p value is missing, or a text or a time that is null. */
inline bool isNullValue(const QVariant& value)
{
    return value.isNull();
}

#else

template <typename Key, typename Value>
using MultiValueMap = QMultiMap<Key, Value>;

using SplitBehavior = Qt::SplitBehavior;
constexpr SplitBehavior keepEmptyParts = Qt::KeepEmptyParts;
constexpr SplitBehavior skipEmptyParts = Qt::SkipEmptyParts;

inline QStringList splitText(const QString& text, const QRegExp& separator, SplitBehavior behavior)
{
    return separator.splitString(text, behavior);
}

template <typename Key, typename Value>
void insertMulti(MultiValueMap<Key, Value>& map, const Key& key, const Value& value)
{
    map.insert(key, value);
}

inline QString longDateText(const QDate& date)
{
    return QLocale::system().toString(date, QLocale::LongFormat);
}

inline QString longDateText(const QDateTime& time)
{
    return QLocale::system().toString(time, QLocale::LongFormat);
}

inline int metaTypeId(const char* name)
{
    return QMetaType::fromName(name).id();
}

inline void useUtf8(QTextStream& stream)
{
    stream.setEncoding(QStringConverter::Utf8);
}

// Qt 6 takes them for nothing else.
inline void setUtf8(QSettings&, bool) {}

inline QString qtTranslationsFolder()
{
    return QLibraryInfo::path(QLibraryInfo::TranslationsPath);
}

inline bool isNullValue(const QVariant& value)
{
    const bool isTime = value.userType() == QMetaType::QDateTime;
    const bool isText = value.userType() == QMetaType::QString;
    return value.isNull() || (isTime && value.toDateTime().isNull()) ||
           (isText && value.toString().isNull());
}

#endif

} // namespace vx

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
