#include "client/internal/ClientTrust.h"

#include <QProgressDialog>

#include "base/LogLine.h"
#include "download/DownloadManager.h"
#include "trust/internal/FileVerification.h"
#include "trust/internal/TrustTexts.h"

namespace vx {

namespace {

ClientTrust* existing(const QObject& client)
{
    return client.findChild<ClientTrust*>(QString(), Qt::FindDirectChildrenOnly);
}

void show(const FileVerification* verification, QProgressDialog* dialog)
{
    if (dialog == nullptr) {
        return;
    }
    dialog->setLabelText(verifyingText());
    QObject::connect(verification, &FileVerification::progressed, dialog,
                     [dialog](int value, int total) {
                         dialog->setRange(0, total);
                         dialog->setValue(value);
                     });
    QObject::connect(dialog, SIGNAL(canceled()), verification, SLOT(cancel()));
}

void logRefusal(const QString& path, const char* reason)
{
    logLine(3, QStringLiteral("SoftwareUpdateClient::downloadFinished() -> package refused: ") +
                   QLatin1String(reason) + QStringLiteral(": ") + path);
}

} // namespace

ClientTrust::ClientTrust(QObject* client)
    : QObject(client)
{}

ClientTrust& ClientTrust::of(QObject* client)
{
    ClientTrust* const trust = existing(*client);
    return trust != nullptr ? *trust : *new ClientTrust(client);
}

void ClientTrust::forgetOffered(const QObject& client)
{
    if (ClientTrust* const trust = existing(client)) {
        trust->setOffered(PackageDigests());
    }
}

void ClientTrust::confirm(const QString& path, const PackageInfo& package)
{
    m_confirmed.insert(path, {m_offered.of(package.url), package.packageType});
}

void ClientTrust::follow(DownloadManager* manager, QProgressDialog* dialog)
{
    connect(manager, SIGNAL(downloadSuccess(PackageInfo, QString)), this,
            SLOT(noteDownloaded(PackageInfo, QString)));
    // Otherwise it would go at the last byte, and come again for the verification.
    dialog->setAutoReset(false);
    dialog->setAutoClose(false);
}

void ClientTrust::noteDownloaded(const PackageInfo& /*package*/, const QString& path)
{
    m_downloadedFile = path;
}

void ClientTrust::verify(const QString& latestPath, QProgressDialog* dialog, const Refusal& refuse)
{
    const QString path = m_downloadedFile.isEmpty() ? latestPath : m_downloadedFile;
    m_downloadedFile.clear();
    const Confirmed confirmed = m_confirmed.take(path);
    if (confirmed.digest.state != PackageDigest::Given) {
        logRefusal(path, "no digest");
        refuse(path, packageWithoutDigestText());
        return;
    }
    auto* const verification = new FileVerification(path, confirmed.digest.sha256, this);
    show(verification, dialog);
    const VerifiedPackage package{path, confirmed.packageType};
    connect(verification, &FileVerification::ended, this, [this, package, refuse](bool isSame) {
        if (isSame) {
            goOn(package);
        } else {
            logRefusal(package.path, "not the announced file");
            refuse(package.path, packageDiffersText());
        }
    });
    verification->start();
}

void ClientTrust::goOn(const VerifiedPackage& package)
{
    m_verified = package;
    // Whatever follows may destroy this object.
    QMetaObject::invokeMethod(parent(), "downloadFinished", Qt::DirectConnection);
}

std::optional<VerifiedPackage> ClientTrust::takeVerified()
{
    const std::optional<VerifiedPackage> verified = m_verified;
    m_verified.reset();
    return verified;
}

} // namespace vx
