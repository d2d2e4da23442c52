#include "base/TlsReason.h"

#include <QDateTime>
#include <QSslCertificate>
#include <QStringList>

#include "base/FailureReason.h"

namespace vx {

namespace {

QString day(const QDateTime& time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-dd"));
}

QString clockHint()
{
    return QStringLiteral(" (the clock of this machine says %1)")
        .arg(day(QDateTime::currentDateTimeUtc()));
}

QString issuerOf(const QSslCertificate& certificate)
{
    const QStringList names = certificate.issuerInfo(QSslCertificate::CommonName);
    return printable(names.isEmpty() ? QStringLiteral("without name") : names.first());
}

QString namesOf(const QSslCertificate& certificate)
{
    QStringList names = certificate.subjectAlternativeNames().values();
    names.sort();
    return printable(names.isEmpty() ? QStringLiteral("nobody") : names.join(QLatin1Char(' ')));
}

QString sentence(const QSslError& error, const QString& host)
{
    const QSslCertificate certificate = error.certificate();
    switch (error.error()) {
    case QSslError::CertificateExpired:
        return QStringLiteral("the certificate of %1 expired on %2%3; renew it there")
            .arg(host, day(certificate.expiryDate()), clockHint());
    case QSslError::CertificateNotYetValid:
        return QStringLiteral("the certificate of %1 is not valid before %2%3; set the clock")
            .arg(host, day(certificate.effectiveDate()), clockHint());
    case QSslError::HostNameMismatch:
        return QStringLiteral("the certificate of %1 is for another name (%2); use that name in "
                              "the address, or a certificate for this one")
            .arg(host, namesOf(certificate));
    case QSslError::SelfSignedCertificate:
        return QStringLiteral("the certificate of %1 is self-signed; use one of a known authority, "
                              "or let this machine trust it")
            .arg(host);
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
        return QStringLiteral("the certificate of %1 comes from an authority that is unknown here "
                              "(%2); let the server send the whole chain, or let this machine "
                              "trust the authority")
            .arg(host, issuerOf(certificate));
    default:
        return QStringLiteral("the certificate of %1 is refused: %2")
            .arg(host, printable(error.errorString()));
    }
}

} // namespace

QString tlsReason(const QList<QSslError>& errors, const QString& host)
{
    QStringList sentences;
    for (const QSslError& error : errors) {
        sentences.append(sentence(error, host));
    }
    // One fault is often reported several times.
    sentences.removeDuplicates();
    return sentences.join(QStringLiteral("; "));
}

} // namespace vx
