#pragma once

#include <QDateTime>
#include <QString>

#include "host/FileFormatsPreferences/FileFormatsPreferencesExport.h"

class QSettings;

namespace vx {

/**
 * Typed access to a settings store.
 *
 * Keys lie below the group or array entry that the caller has opened. A reader returns the default
 * when the key is absent or its value cannot be read as the type; nothing is reported.
 *
 * A time is stored as text: ISO 8601 with milliseconds, in UTC and marked with "Z", as in
 * "2024-02-29T12:05:09.042Z". It means the same moment in any time zone and any version of Qt, and
 * a person can read it.
 */
class VX_FILEFORMATSPREFERENCES_EXPORT Preferences
{
public:
    Preferences() = delete;

    /**
     * The time under @p key in local time, or @p defaultValue. Besides the form that
     * setDateTimeValue writes, any ISO 8601 text and a QDateTime that QSettings stored by itself
     * are read; a text without an offset is taken as local time.
     */
    static QDateTime dateTimeValue(const QSettings& settings, const QString& key,
                                   const QDateTime& defaultValue);

    /** The flag under @p key: "true" and numbers other than 0 are true, "false" and 0 false. */
    static bool boolValue(const QSettings& settings, const QString& key, bool defaultValue);

    /** The number under @p key, or @p defaultValue if it is not a number or too large for an int.
     */
    static int intValue(const QSettings& settings, const QString& key, int defaultValue);

    /** The text under @p key; a list of texts, which has no text of its own, yields the default. */
    static QString stringValue(const QSettings& settings, const QString& key,
                               const QString& defaultValue);

    /**
     * Stores @p value, to the millisecond. A null or invalid time is stored as an empty text, which
     * dateTimeValue reads as absent.
     */
    static void setDateTimeValue(QSettings& settings, const QString& key, const QDateTime& value);
};

} // namespace vx
