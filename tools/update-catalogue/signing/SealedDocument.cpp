#include "tools/update-catalogue/signing/SealedDocument.h"

#include <string_view>

#include "host/FileFormatsXml/XmlUtils.h"
#include "tools/signing/Markup.h"
#include "tools/signing/SigningKey.h"
#include "tools/update-catalogue/Command.h"
#include "trust/internal/Seal.h"

namespace vx {

namespace {

CommandFailure refusal(const CatalogueSource& source, const QString& reason)
{
    return CommandFailure(ExitFindings, QString("%1: %2").arg(source.name, reason));
}

bool isWide(const QByteArray& bytes)
{
    return isWideEncoding({bytes.constData(), static_cast<size_t>(bytes.size())});
}

/** What can stand in front of a seal. */
void checkContent(const CatalogueSource& document)
{
    if (isWide(document.bytes)) {
        throw refusal(document, "is in UTF-16 or the like, which cannot be sealed: save it in "
                                "UTF-8, and sign it anew");
    }
    if (readSeal(document.bytes).outcome != SealOutcome::NoSeal) {
        throw refusal(document, "is sealed already: unseal it, or sign what it was made of");
    }
    if (!document.bytes.endsWith('\n')) {
        throw refusal(document,
                      "does not end with an end of line, in front of which nothing can be put: add "
                      "one, and sign it anew");
    }
}

/** What can stand in a seal. */
void checkSignature(const CatalogueSource& signature)
{
    if (signature.bytes.contains("?>")) {
        throw refusal(signature, "holds \"?>\" in a comment, which would end the seal too early: "
                                 "sign with another comment");
    }
}

} // namespace

SealedDocument splitDocument(const CatalogueSource& source)
{
    const SealReading reading = readSeal(source.bytes);
    if (reading.outcome == SealOutcome::NoSeal) {
        return {false, source.bytes, QByteArray()};
    }
    const Seal& seal = reading.seal;
    if (reading.outcome != SealOutcome::Accepted) {
        throw refusal(source,
                      "has a seal that is not the four lines of minisign between <?minisign "
                      "and ?>: it cannot be taken off");
    }
    if (seal.hasBytesBehind) {
        throw refusal(source, "holds something behind its seal, which would be lost");
    }
    const auto begin = static_cast<int>(seal.signatureBegin);
    return {true, source.bytes.left(static_cast<int>(seal.signedSize)),
            source.bytes.mid(begin, static_cast<int>(seal.signatureEnd) - begin)};
}

QByteArray joinDocument(const CatalogueSource& document, const CatalogueSource& signature)
{
    checkContent(document);
    checkSignature(signature);
    const QByteArray sealed = attachSignature(document.bytes, signature.bytes);
    if (readSeal(sealed).outcome != SealOutcome::Accepted) {
        throw refusal(signature,
                      "is not a signature of minisign, or its trusted comment has no timestamp, or "
                      "two: the comment needs \"timestamp:\" and seconds since 1970");
    }
    if (sealed.size() > XmlUtils::maximumDocumentSize) {
        throw refusal(document, QString("would be larger than the %1 MiB that a client reads")
                                    .arg(XmlUtils::maximumDocumentSize >> 20));
    }
    return sealed;
}

} // namespace vx
