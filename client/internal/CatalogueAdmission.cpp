#include "client/internal/CatalogueAdmission.h"

#include <QBuffer>
#include <QDateTime>
#include <QNetworkReply>

#include "client/internal/AnswerLimit.h"
#include "client/internal/AskedAddress.h"
#include "client/internal/CatalogueMemory.h"
#include "client/internal/ClientTrust.h"
#include "download/internal/catalogue/CatalogueParser.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "trust/UpdateTrust.h"
#include "trust/internal/SealVerification.h"
#include "trust/internal/TrustedKeys.h"

namespace vx {

namespace {

void keep(QIODevice* /*device*/) {}

void destroy(QIODevice* device)
{
    delete device;
}

Admission refused(SealOutcome outcome)
{
    return {outcome, {nullptr, &keep}};
}

/** Open for reading, and with a copy of its own. */
Admission accepted(const QByteArray& signedBytes)
{
    auto* buffer = new QBuffer;
    buffer->setData(signedBytes);
    buffer->open(QIODevice::ReadOnly);
    return {SealOutcome::Accepted, {buffer, &destroy}};
}

} // namespace

Admission admitCatalogue(QNetworkReply* reply)
{
    if (!UpdateTrust::isRequired()) {
        return {SealOutcome::Accepted, {reply, &keep}};
    }
    if (reply == nullptr || wasTooLong(*reply) ||
        reply->bytesAvailable() > XmlUtils::maximumDocumentSize) {
        return refused(SealOutcome::NoSeal);
    }
    const QUrl asked = askedAddress(*reply);
    QByteArray document = reply->readAll();
    const SealReading reading = judgeSealed(
        document, trustedKeys(), {QDateTime::currentSecsSinceEpoch(), newestAccepted(asked)});
    if (reading.outcome != SealOutcome::Accepted) {
        return refused(reading.outcome);
    }
    rememberAccepted(asked, reading.seal.timestamp);
    // What was not signed is not read, not even as white space.
    document.truncate(static_cast<int>(reading.seal.signedSize));
    return accepted(document);
}

PackageInfoList readAdmitted(QObject& client, QIODevice* catalogue)
{
    if (!UpdateTrust::isRequired()) {
        ClientTrust::forgetOffered(client);
        return CatalogueParser::parseXML(catalogue);
    }
    PackageDigests digests;
    const PackageInfoList packages = CatalogueParser::parseXML(catalogue, &digests);
    ClientTrust::of(&client).setOffered(digests);
    return packages;
}

} // namespace vx
