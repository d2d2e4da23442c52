#include "client/SoftwareUpdateClient.h"

#include <QCoreApplication>
#include <QNetworkReply>

#include "base/LogLine.h"
#include "client/internal/AnswerLimit.h"
#include "client/internal/CatalogueAdmission.h"
#include "client/internal/NoCatalogueReason.h"
#include "client/internal/OfferSelection.h"
#include "client/internal/ResponseReading.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "trust/internal/TrustTexts.h"

namespace vx {

namespace {

QByteArray beginningOf(QIODevice* catalogue)
{
    constexpr qint64 enough = 1024;
    return catalogue != nullptr && catalogue->isReadable() ? catalogue->peek(enough) : QByteArray();
}

void logReason(const QNetworkReply* reply, const QByteArray& beginning)
{
    if (reply == nullptr) {
        return;
    }
    const QString reason = wasTooLong(*reply) ? QStringLiteral("the answer is longer than 64 MiB")
                                              : noCatalogueReason(*reply, beginning);
    if (!reason.isEmpty()) {
        logLine(3, QStringLiteral("SoftwareUpdateClient::parseServerResponse() -> ") + reason);
    }
}

} // namespace

int SoftwareUpdateClient::parseServerResponse(QNetworkReply* reply)
{
    const Admission admission = admitCatalogue(reply);
    if (admission.outcome != SealOutcome::Accepted) {
        logLine(3, QStringLiteral("SoftwareUpdateClient::parseServerResponse() -> catalogue "
                                  "refused: ") +
                       refusalLogText(admission.outcome));
        if (updateDialog != nullptr) {
            updateDialog->setNotificationText(refusalText(admission.outcome));
        }
        return NoPackageRead; // and the list of an offer that is open stays as it is
    }
    packageList = PackageInfoList();
    QIODevice* const catalogue = admission.catalogue.get();
    const QByteArray beginning = beginningOf(catalogue);
    packageList = readAdmitted(*this, catalogue);
    if (packageList.isEmpty()) {
        logReason(reply, beginning);
        logLine(3, QStringLiteral(
                       "SoftwareUpdateClient::parseServerResponse() -> no update available"));
        if (updateDialog != nullptr) {
            updateDialog->setNotificationText(tr("No update available!"));
        }
        return NoPackageRead;
    }
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    // The application's own name and not the product's: the two may differ.
    OfferCriteria criteria = criteriaFrom(record, QCoreApplication::applicationName());
    if (updateDialog != nullptr) {
        criteria.checkForBeta = updateDialog->getDialogSettings().checkForBeta;
    }
    packageList = selectOffers(packageList, criteria);
    return PackagesRead;
}

} // namespace vx
