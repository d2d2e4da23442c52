#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include "host/NetworkHttp/NetworkHttpExport.h"

/**
 * The header fields of one HTTP answer, in the order in which the server sent them.
 *
 * A value type. Field names are compared without regard to case, as RFC 9110 section 5.1 demands,
 * and are kept as they arrived. Values are read as Latin-1, the one reading that loses no byte.
 * Outside the namespace, where the HTTP client has its types.
 */
class VX_NETWORKHTTP_EXPORT QHttpHeader
{
public:
    /** Whether there is a field called @p key. */
    bool hasKey(const QString& key) const;

    /** The value of the first field called @p key; an empty text if there is none. */
    QString value(const QString& key) const;

    /** The values of all fields called @p key, in order, as a server sends several "Set-Cookie". */
    QStringList allValues(const QString& key) const;

    /** The names of all fields, in order, a repeated one as often as it came. */
    QStringList keys() const;

    /** Appends a field, whether or not one of the name is there. */
    void addValue(const QString& key, const QString& value);

    /** Forgets all fields. */
    void clear();

private:
    QList<QPair<QString, QString>> m_fields;
};
