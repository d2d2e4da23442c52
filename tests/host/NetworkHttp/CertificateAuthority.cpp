#include "tests/host/NetworkHttp/CertificateAuthority.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>

#include "tests/host/NetworkHttp/Daemon.h"

namespace vx::test {

namespace {

bool runOpenssl(const QStringList& arguments, const QString& folder)
{
    QProcess openssl;
    openssl.setWorkingDirectory(folder);
    openssl.start(programPath("openssl"), arguments);
    if (openssl.waitForFinished() && openssl.exitCode() == 0) {
        return true;
    }
    qWarning("openssl: %s", openssl.readAllStandardError().constData());
    return false;
}

QString orDaysFromNow(const QString& time, int days)
{
    return time.isEmpty()
               ? QDateTime::currentDateTimeUtc().addDays(days).toString("yyyyMMddHHmmss'Z'")
               : time;
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

const char opensslConfiguration[] = R"([ca]
default_ca = own
[own]
database = index.txt
new_certs_dir = .
default_md = sha256
policy = any
rand_serial = yes
unique_subject = no
copy_extensions = copy
[any]
commonName = supplied
[req]
distinguished_name = name
[name]
)";

} // namespace

bool CertificateAuthority::make()
{
    return writeFile(m_folder.filePath("openssl.cnf"), opensslConfiguration) &&
           writeFile(m_folder.filePath("index.txt"), "") &&
           runOpenssl({"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                       "/CN=Authority of a test", "-keyout", "ca-key.pem", "-out", "ca.pem"},
                      m_folder.path());
}

QSslCertificate CertificateAuthority::certificate() const
{
    return QSslCertificate::fromPath(m_folder.filePath("ca.pem")).value(0);
}

bool CertificateAuthority::issue(const Subject& subject, const QString& folder)
{
    return runOpenssl({"req", "-new", "-newkey", "rsa:2048", "-nodes", "-config", "openssl.cnf",
                       "-subj", "/CN=Server of a test", "-addext",
                       "subjectAltName=" + subject.alternativeName, "-keyout", folder + "/key.pem",
                       "-out", "request.pem"},
                      m_folder.path()) &&
           signRequest(subject, folder);
}

bool CertificateAuthority::signRequest(const Subject& subject, const QString& folder) const
{
    QStringList signer = {"-cert", "ca.pem", "-keyfile", "ca-key.pem"};
    if (subject.isSelfSigned) {
        signer = QStringList{"-selfsign", "-keyfile", folder + "/key.pem"};
    }
    return runOpenssl(QStringList{"ca", "-batch", "-notext", "-config", "openssl.cnf"} + signer +
                          QStringList{"-startdate", orDaysFromNow(subject.from, -1), "-enddate",
                                      orDaysFromNow(subject.until, 1), "-in", "request.pem", "-out",
                                      folder + "/certificate.pem"},
                      m_folder.path());
}

Trust::Trust(const QSslCertificate& certificate)
    : m_previous(QSslConfiguration::defaultConfiguration())
{
    if (!certificate.isNull()) {
        QSslConfiguration configuration = m_previous;
        configuration.addCaCertificate(certificate);
        QSslConfiguration::setDefaultConfiguration(configuration);
    }
}

Trust::~Trust()
{
    QSslConfiguration::setDefaultConfiguration(m_previous);
}

} // namespace vx::test
