#pragma once

#include <QList>
#include <QString>

#include "tests/host/NetworkHttp/Daemon.h"

namespace vx::test {

/** squid as a proxy that asks for user and password, "clerk" and "secret" for those who ask. */
class Squid : public Daemon
{
public:
    enum Scheme { Open, Basic, Digest };

    explicit Squid(Scheme scheme);

    /** Writes the passwords, then starts. */
    bool start();

    /** One request as squid saw it. */
    struct Entry
    {
        QByteArray method;
        int status = 0;
        /** Whether the request carried user and password. */
        bool hasLogin = false;
    };

    /** What squid has logged so far. It writes a request down when that has ended. */
    QList<Entry> log() const;

    /** How many of them were refused, although they carried a login. */
    int refusedLogins() const;

private:
    bool writePasswords() const;

    Scheme m_scheme;
};

} // namespace vx::test
