#include "host/FileFormatsPreferences/Preferences.h"

#include <QSettings>

namespace vx {

QDateTime Preferences::dateTimeValue(const QSettings& settings, const QString& key,
                                     const QDateTime& defaultValue)
{
    return settings.value(key, defaultValue).toDateTime();
}

bool Preferences::boolValue(const QSettings& settings, const QString& key, bool defaultValue)
{
    return settings.value(key, defaultValue).toBool();
}

int Preferences::intValue(const QSettings& settings, const QString& key, int defaultValue)
{
    return settings.value(key, defaultValue).toInt();
}

QString Preferences::stringValue(const QSettings& settings, const QString& key,
                                 const QString& defaultValue)
{
    return settings.value(key, defaultValue).toString();
}

void Preferences::setDateTimeValue(QSettings& settings, const QString& key, const QDateTime& value)
{
    settings.setValue(key, value.toUTC().toString(Qt::ISODateWithMs));
}

} // namespace vx
