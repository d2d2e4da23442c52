#include "tests/host/NetworkHttp/Squid.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <algorithm>

namespace vx::test {

namespace {

const char configuration[] = R"(
http_port 127.0.0.1:%1
pid_filename %2/log/squid.pid
cache_log %2/log/cache.log
logformat short %rm %>Hs "%{Proxy-Authorization}>h"
access_log stdio:%2/log/access.log logformat=short
cache deny all
cache_mem 8 MB
netdb_filename none
coredump_dir %2/log
pinger_enable off
shutdown_lifetime 0 seconds
visible_hostname proxy.example.com
)";

const char basic[] = R"(
auth_param basic program /usr/lib/squid/basic_ncsa_auth %2/passwords
auth_param basic children 1 startup=1
auth_param basic realm A test
)";

const char digest[] = R"(
auth_param digest program /usr/lib/squid/digest_file_auth %2/passwords
auth_param digest children 1 startup=1
auth_param digest realm A test
)";

QString configurationOf(Squid::Scheme scheme)
{
    const QString text = QString::fromLatin1(configuration);
    if (scheme == Squid::Open) {
        return text + "http_access allow all\n";
    }
    return text + QString::fromLatin1(scheme == Squid::Basic ? basic : digest) +
           "acl known proxy_auth REQUIRED\nhttp_access allow known\nhttp_access deny all\n";
}

QByteArray basicEntry()
{
    QProcess openssl;
    openssl.start(programPath("openssl"), {"passwd", "-apr1", "secret"});
    return openssl.waitForFinished() ? "clerk:" + openssl.readAllStandardOutput() : QByteArray();
}

} // namespace

Squid::Squid(Scheme scheme)
    : Daemon("squid", {"-N", "-f", "%1"}, configurationOf(scheme))
    , m_scheme(scheme)
{
    // squid refuses to work as root.
    setUserForRoot("proxy");
}

bool Squid::start()
{
    return writePasswords() && Daemon::start();
}

bool Squid::writePasswords() const
{
    const QString log = folder() + "/log";
    const auto everything = QFile::Permissions(0x7777);
    QFile passwords(folder() + "/passwords");
    const QByteArray entry = m_scheme == Digest ? QByteArray("clerk:secret\n") : basicEntry();
    return passwords.open(QIODevice::WriteOnly) && passwords.write(entry) == entry.size() &&
           QDir().mkpath(log) && QFile::setPermissions(log, everything) &&
           QFile::setPermissions(folder(), everything);
}

QList<Squid::Entry> Squid::log() const
{
    QList<Entry> entries;
    QFile file(folder() + "/log/access.log");
    file.open(QIODevice::ReadOnly);
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() > 2) {
            entries.append({words[0], words[1].toInt(), words[2] != "\"-\""});
        }
    }
    return entries;
}

int Squid::refusedLogins() const
{
    const QList<Entry> entries = log();
    return static_cast<int>(std::count_if(entries.begin(), entries.end(), [](const Entry& entry) {
        return entry.status == 407 && entry.hasLogin;
    }));
}

} // namespace vx::test
