#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace vx::test {

/**
 * A server program from the system, run on a loopback port of its own in a folder of its own. It is
 * stopped on destruction.
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

    /** What the program said, for the message of a test that fails. */
    QByteArray output() { return m_process.readAll(); }

private:
    bool startOn(quint16 port);

    QString m_program;
    QStringList m_arguments;
    QString m_configuration;
    QTemporaryDir m_folder;
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

/** nginx that serves by https, with a certificate for 127.0.0.1 that nobody else knows. */
class TlsNginx : public Nginx
{
public:
    TlsNginx();

    /** Makes the certificate, which is to be called before start. */
    bool makeCertificate();

    /** Path of the certificate. */
    QString certificate() const { return folder() + "/certificate.pem"; }
};

/** tinyproxy; asks for user and password unless @p user is empty. */
class TinyProxy : public Daemon
{
public:
    TinyProxy(const QString& user, const QString& password);
};

} // namespace vx::test
