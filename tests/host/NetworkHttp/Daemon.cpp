#include "tests/host/NetworkHttp/Daemon.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>

#include <unistd.h>

namespace vx::test {

namespace {

constexpr int startTime = 10000;

const char nginxConfiguration[] = R"(
daemon off;
master_process off;
user root;
pid %2/nginx.pid;
error_log stderr;
events { }
http {
  access_log off;
  sendfile on;
  client_body_temp_path %2/body;
  proxy_temp_path %2/proxy;
  fastcgi_temp_path %2/fastcgi;
  uwsgi_temp_path %2/uwsgi;
  scgi_temp_path %2/scgi;
  gzip on;
  gzip_types *;
  server { listen 127.0.0.1:%1 %3; root %2/www; }
}
)";

const char proxyConfiguration[] = R"(
Port %1
Listen 127.0.0.1
Timeout 60
MaxClients 20
StartServers 2
PidFile "%2/tinyproxy.pid"
LogFile "%2/tinyproxy.log"
)";

bool accepts(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(1000);
}

QString withListenOptions(const QString& options)
{
    return QString::fromLatin1(nginxConfiguration).replace("%3", options);
}

QString withLogin(const QString& user, const QString& password)
{
    const QString configuration = QString::fromLatin1(proxyConfiguration);
    return user.isEmpty() ? configuration
                          : configuration + QString("BasicAuth %1 %2\n").arg(user, password);
}

} // namespace

QString programPath(const QString& program)
{
    const QString path = QStandardPaths::findExecutable(program);
    return path.isEmpty()
               ? QStandardPaths::findExecutable(program, {"/usr/sbin", "/usr/local/sbin"})
               : path;
}

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

Daemon::Daemon(const QString& program, const QStringList& arguments, const QString& configuration)
    : m_program(program)
    , m_arguments(arguments)
    , m_configuration(configuration)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

Daemon::~Daemon()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool Daemon::start()
{
    if (programPath(m_program).isEmpty()) {
        return false;
    }
    // Someone may take the port between the look and the start.
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (startOn(freePort())) {
            return true;
        }
    }
    return false;
}

bool Daemon::startOn(quint16 port)
{
    const QString path = m_folder.filePath("configuration");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(m_configuration.arg(port).arg(m_folder.path()).toUtf8());
    file.close();
    const QStringList command = commandLine(path);
    m_process.start(command.first(), command.mid(1));
    QDeadlineTimer deadline(startTime);
    while (!m_process.waitForFinished(10) && !deadline.hasExpired()) {
        if (m_process.state() == QProcess::Running && accepts(port)) {
            m_port = port;
            return true;
        }
    }
    m_process.kill();
    m_process.waitForFinished();
    return false;
}

QStringList Daemon::commandLine(const QString& configurationPath) const
{
    // The system stops the program if the test dies before it can.
    QStringList command = {programPath("setpriv"), "--pdeathsig", "KILL"};
    if (geteuid() == 0 && !m_userForRoot.isEmpty()) {
        command += {"--reuid", m_userForRoot, "--regid", m_userForRoot, "--clear-groups"};
    }
    command += {"--", programPath(m_program)};
    return command + QStringList(m_arguments).replaceInStrings("%1", configurationPath);
}

QByteArray Daemon::output()
{
    if (programPath(m_program).isEmpty()) {
        return m_program.toLatin1() +
               " is not installed; scripts/install-dependencies --tests does that";
    }
    return m_process.readAll();
}

Nginx::Nginx()
    : Nginx(QString())
{}

Nginx::Nginx(const QString& listenOptions)
    : Daemon("nginx", {"-c", "%1"}, withListenOptions(listenOptions))
{
    QDir(folder()).mkdir("www");
}

bool Nginx::addFile(const QString& name, qint64 size, const QByteArray& mark)
{
    QFile file(folder() + "/www/" + name);
    return file.open(QIODevice::WriteOnly) && file.write(mark) == mark.size() &&
           file.seek(size - mark.size()) && file.write(mark) == mark.size();
}

TlsNginx::TlsNginx()
    : Nginx("ssl http2; ssl_certificate %2/certificate.pem; ssl_certificate_key %2/key.pem; "
            "access_log %2/access.log")
{}

QByteArray TlsNginx::accessLog() const
{
    QFile file(folder() + "/access.log");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool TlsNginx::makeCertificate()
{
    QProcess openssl;
    openssl.start(programPath("openssl"),
                  {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                   "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                   folder() + "/key.pem", "-out", certificate()});
    return openssl.waitForFinished() && openssl.exitCode() == 0;
}

TinyProxy::TinyProxy(const QString& user, const QString& password)
    : Daemon("tinyproxy", {"-d", "-c", "%1"}, withLogin(user, password))
{}

} // namespace vx::test
