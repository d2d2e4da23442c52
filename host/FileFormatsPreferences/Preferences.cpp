#include "host/FileFormatsPreferences/Preferences.h"

#include <QSettings>

namespace vx {

namespace {

QString textValue(const QSettings& settings, const QString& key)
{
    return settings.value(key).toString().trimmed();
}

} // namespace

QDateTime Preferences::dateTimeValue(const QSettings& settings, const QString& key,
                                     const QDateTime& defaultValue)
{
    const QVariant value = settings.value(key);
    const QDateTime time = value.userType() == QMetaType::QDateTime
                               ? value.toDateTime()
                               : QDateTime::fromString(textValue(settings, key), Qt::ISODateWithMs);
    return time.isValid() ? time.toLocalTime() : defaultValue;
}

bool Preferences::boolValue(const QSettings& settings, const QString& key, bool defaultValue)
{
    const QString text = textValue(settings, key);
    for (const bool flag : {false, true}) {
        if (text.compare(QVariant(flag).toString(), Qt::CaseInsensitive) == 0) {
            return flag;
        }
    }
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber ? number != 0 : defaultValue;
}

int Preferences::intValue(const QSettings& settings, const QString& key, int defaultValue)
{
    bool isNumber = false;
    // By way of the text: a variant would cut a larger number down to an int without a word.
    const int number = textValue(settings, key).toInt(&isNumber);
    return isNumber ? number : defaultValue;
}

QString Preferences::stringValue(const QSettings& settings, const QString& key,
                                 const QString& defaultValue)
{
    const QVariant value = settings.value(key);
    const bool isText = value.isValid() && value.userType() != QMetaType::QStringList;
    return isText ? value.toString() : defaultValue;
}

void Preferences::setDateTimeValue(QSettings& settings, const QString& key, const QDateTime& value)
{
    settings.setValue(key, value.toUTC().toString(Qt::ISODateWithMs));
}

} // namespace vx
