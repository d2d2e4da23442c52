#include "tests/trust/TrustFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLabel>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "trust/UpdateTrust.h"

namespace vx::test {

qint64 now()
{
    return QDateTime::currentSecsSinceEpoch();
}

OfferedFile offeredFile(const QString& name, const QByteArray& content)
{
    return {name, content, digestOf(content)};
}

QString digestOf(const QByteArray& content)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

TrustFixture::TrustFixture(QWidget* parent)
    : InstallationFixture(parent)
{
    if (!UpdateTrust::requireSignatures({publisher.publicKey()})) {
        qFatal("the publisher's key cannot be read");
    }
}

TrustFixture::~TrustFixture()
{
    UpdateTrust::acceptUnsigned();
}

QByteArray TrustFixture::catalogue(const QList<OfferedFile>& files)
{
    QList<PackageFields> packages;
    for (const OfferedFile& file : files) {
        serve(QStringLiteral("/files/") + file.name, file.content);
        PackageFields package = cameraPackage();
        package[QStringLiteral("url")] =
            QStringLiteral("http://download.example.com/files/") + file.name;
        package[QStringLiteral("file-size")] = QString::number(file.content.size());
        package[QStringLiteral("release-date")] =
            QDate(2012, 1, 1).addDays(packages.size()).toString(Qt::ISODate);
        if (!file.digest.isNull()) {
            package[QStringLiteral("sha256")] = file.digest;
        }
        packages.append(package);
    }
    return catalogueXml(packages) + '\n';
}

void TrustFixture::answer(const QByteArray& bytes)
{
    ServedReply reply;
    reply.body = bytes;
    server.setReply(QStringLiteral("/"), reply);
}

void TrustFixture::openSealedList(const QList<OfferedFile>& files)
{
    answer(publisher.sealed(catalogue(files), now()));
    if (!check() || availableDialog() == nullptr) {
        qFatal("the list of packages did not open");
    }
}

QString TrustFixture::checkInDialog()
{
    const SoftwareUpdateDialog* dialog = openSettingsDialog();
    return check() ? dialog->findChild<QLabel*>(QStringLiteral("updateNotificationLabel"))->text()
                   : QString();
}

bool TrustFixture::waitForBoxes(int count)
{
    return QTest::qWaitFor([this, count] { return boxes.seen().size() >= count; }, 10000);
}

QStringList refusalLines(const LogCapture& log)
{
    return log.lines(3).filter(QStringLiteral(" refused: "));
}

QStringList leftOfDownloads()
{
    return QDir(QDir::tempPath()).entryList({QStringLiteral("SoftwareUpdate-*")}, QDir::AllEntries);
}

} // namespace vx::test
