#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace vx::test {

/** Where the system keeps @p program; empty if it isn't installed. */
QString programPath(const QString& program);

/** A port of loopback that was free a moment ago. */
quint16 freePort();

/**
 * A server program from the system, run on a loopback port of its own in a folder of its own. It is
 * stopped on destruction, and by the system if the test ends in any other way.
 */
class Daemon
{
public:
    /**
     * @param program its name, looked for in the usual folders.
     * @param arguments what to call it with; "%1" stands for the path of its configuration.
     * @param configuration "%1" stands for the port and "%2" for the private folder.
     */
    Daemon(const QString& program, const QStringList& arguments, const QString& configuration);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    /** Starts the program and waits until it accepts connections. */
    bool start();

    quint16 port() const { return m_port; }

    /** A private folder that the program may read. */
    QString folder() const { return m_folder.path(); }

    /** What the program said, or that it is not installed, for the message of a failing test. */
    QByteArray output();

protected:
    /** From the next start on the program runs as @p user, where the test itself runs as root. */
    void setUserForRoot(const QString& user) { m_userForRoot = user; }

private:
    QStringList commandLine(const QString& configurationPath) const;
    bool startOn(quint16 port);

    QString m_program;
    QStringList m_arguments;
    QString m_configuration;
    QString m_userForRoot;
    // The temporary folder of a test lets nobody else in, and some programs refuse to be root.
    QTemporaryDir m_folder{QStringLiteral("/tmp/daemon-XXXXXX")};
    QProcess m_process;
    quint16 m_port = 0;
};

/** nginx that serves the files below "www" in its folder. */
class Nginx : public Daemon
{
public:
    Nginx();

    /** Creates the sparse file @p name of @p size bytes, with @p mark at beginning and end. */
    bool addFile(const QString& name, qint64 size, const QByteArray& mark);

protected:
    /** @param listenOptions configuration that follows the port. */
    explicit Nginx(const QString& listenOptions);
};

/**
 * nginx that serves by https, with a certificate for 127.0.0.1 that nobody else knows. It speaks
 * HTTP/2 with whoever offers to.
 */
class TlsNginx : public Nginx
{
public:
    TlsNginx();

    /** Makes the certificate, which is to be called before start. */
    bool makeCertificate();

    /** Path of the certificate. */
    QString certificate() const { return folder() + "/certificate.pem"; }

    /** A line for each request that has ended, with its method, path and version of HTTP. */
    QByteArray accessLog() const;
};

/** tinyproxy; asks for user and password unless @p user is empty. */
class TinyProxy : public Daemon
{
public:
    TinyProxy(const QString& user, const QString& password);
};

} // namespace vx::test
