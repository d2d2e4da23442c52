#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <QSslCertificate>
#include <QSslConfiguration>

namespace vx::test {

/** A certificate authority of the test's own, made with openssl, that nobody else knows. */
class CertificateAuthority
{
public:
    /** Makes key and certificate of the authority. */
    bool make();

    /** The certificate to trust. */
    QSslCertificate certificate() const;

    /** What an issued certificate is good for. */
    struct Subject
    {
        /** As openssl writes them, such as "IP:127.0.0.1". */
        QString alternativeName = QStringLiteral("IP:127.0.0.1");
        /** As "YYYYMMDDHHMMSSZ"; empty for two days around now. */
        QString from = QString();
        QString until = QString();
        /** Signed by its own key instead of by the authority. */
        bool isSelfSigned = false;
    };

    /** Writes "key.pem" and "certificate.pem" for @p subject into @p folder. */
    bool issue(const Subject& subject, const QString& folder);

private:
    bool signRequest(const Subject& subject, const QString& folder) const;

    QTemporaryDir m_folder;
};

/** Trusts a certificate for as long as it lives; a null one changes nothing. */
class Trust
{
public:
    explicit Trust(const QSslCertificate& certificate);
    ~Trust();
    Trust(const Trust&) = delete;
    Trust& operator=(const Trust&) = delete;

private:
    QSslConfiguration m_previous;
};

} // namespace vx::test
