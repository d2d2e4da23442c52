#include "host/NetworkHttp/QHttpHeader.h"

bool QHttpHeader::hasKey(const QString& key) const
{
    return !allValues(key).isEmpty();
}

QString QHttpHeader::value(const QString& key) const
{
    return allValues(key).value(0);
}

QStringList QHttpHeader::allValues(const QString& key) const
{
    QStringList values;
    for (const auto& field : m_fields) {
        if (field.first.compare(key, Qt::CaseInsensitive) == 0) {
            values.append(field.second);
        }
    }
    return values;
}

QStringList QHttpHeader::keys() const
{
    QStringList names;
    for (const auto& field : m_fields) {
        names.append(field.first);
    }
    return names;
}

void QHttpHeader::addValue(const QString& key, const QString& value)
{
    m_fields.append(qMakePair(key, value));
}

void QHttpHeader::clear()
{
    m_fields.clear();
}
