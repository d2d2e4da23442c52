#pragma once

#include <QByteArray>
#include <QList>

#include "tools/server/UpdateServer.h"

namespace vx::test {

/** A catalogue with one package per name; each is a kilobyte larger than the one before. */
inline QByteArray catalogueOf(const QList<QByteArray>& names)
{
    QByteArray text("<softwareList release-date='2012-06-01 12:30:00' release='1.0'>");
    int size = 1;
    for (const QByteArray& name : names) {
        text += "<package name='" + name + "' file-size='" + QByteArray::number(size++) +
                "kB' platform='Mac64' type='Application'/>";
    }
    return text + "</softwareList>";
}

/** The answer of status 200 with @p body. */
inline ServedReply okay(const QByteArray& body)
{
    ServedReply reply;
    reply.body = body;
    return reply;
}

} // namespace vx::test
