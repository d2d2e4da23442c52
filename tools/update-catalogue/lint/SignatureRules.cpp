#include <QDateTime>
#include <QHash>

#include "tools/signing/PackageFiles.h"
#include "tools/update-catalogue/lint/Rules.h"
#include "tools/update-catalogue/signing/SealText.h"
#include "trust/internal/PackageDigests.h"

namespace vx::rules {

namespace {

const char refused[] = "clients that require signatures refuse to install it.";

/** How long before its end a release manager should begin to think of the next signature. */
constexpr qint64 expiringSeconds = qint64{14} * 24 * 60 * 60;

SealReading sealOf(const CatalogueTree& tree)
{
    return readSeal(tree.bytes());
}

bool isSigned(const CatalogueTree& tree, const LintOptions& options)
{
    return options.isSigned || sealOf(tree).outcome != SealOutcome::NoSeal;
}

PackageDigest digestOf(const CataloguePackage& package)
{
    return readPackageDigest(packageDigestText(package.package->element));
}

/** Clients keep digests by address, so that a package may borrow that of another. */
PackageDigests digestsByAddress(const CatalogueTree& tree)
{
    PackageDigests digests;
    for (const CataloguePackage& package : tree.packages()) {
        digests.add(package.info.url, digestOf(package));
    }
    return digests;
}

} // namespace

void noDigest(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    if (!isSigned(tree, options)) {
        return;
    }
    const PackageDigests digests = digestsByAddress(tree);
    for (const CataloguePackage& package : tree.packages()) {
        if (digests.of(package.info.url).state == PackageDigest::Missing) {
            sink.addAt(
                package, packageDigestTag,
                QString("It has no \"sha256\" of its own: %1 Let hash write it.").arg(refused));
        }
    }
}

void malformedDigest(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    if (!isSigned(tree, options)) {
        return;
    }
    for (const CataloguePackage& package : tree.packages()) {
        if (digestOf(package).state == PackageDigest::Malformed) {
            sink.addAt(package, packageDigestTag,
                       QString("Its \"sha256\" is not 64 hexadecimal digits: %1 Let hash write it.")
                           .arg(refused));
        }
    }
}

void twoDigests(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    if (!isSigned(tree, options)) {
        return;
    }
    QHash<QUrl, const CataloguePackage*> firstAt;
    for (const CataloguePackage& package : tree.packages()) {
        if (digestOf(package).state == PackageDigest::Missing) {
            continue;
        }
        const CataloguePackage*& first = firstAt[package.info.url];
        if (first == nullptr) {
            first = &package;
        } else if (digestOf(*first).sha256 != digestOf(package).sha256) {
            sink.addAt(package, packageDigestTag,
                       QString("The package of line %1 has the same address and another "
                               "\"sha256\": clients that require signatures refuse to install "
                               "both.")
                           .arg(first->package->position.line));
        }
    }
}

void digestMismatch(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    if (!isSigned(tree, options) || options.files.isEmpty()) {
        return;
    }
    for (const CataloguePackage& package : tree.packages()) {
        const PackageDigest digest = digestOf(package);
        const QString file = packageFile(package.info.url, options.files);
        if (digest.state != PackageDigest::Given || file.isEmpty()) {
            continue;
        }
        const std::optional<PackageFacts> facts = readPackageFacts(file);
        if (!facts || facts->sha256 != digest.sha256.toHex()) {
            sink.addAt(package, packageDigestTag,
                       QString("Its \"sha256\" is not that of the file in the folder, %1: %2")
                           .arg(facts ? QString::fromLatin1(facts->sha256)
                                      : QString("which cannot be read"),
                                refused));
        }
    }
}

void unreadableSeal(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const SealReading reading = sealOf(tree);
    if (reading.outcome == SealOutcome::UnreadableSeal) {
        sink.add(sealPosition(tree.bytes()), refusalSentence(reading));
    }
}

void bytesBehindSeal(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    SealReading reading = sealOf(tree);
    if (reading.seal.hasBytesBehind) {
        reading.outcome = SealOutcome::BytesBehind;
        sink.add(sealPosition(tree.bytes()), refusalSentence(reading));
    }
}

void sealExpired(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    SealReading reading = sealOf(tree);
    if (reading.seal.expires && *reading.seal.expires < QDateTime::currentSecsSinceEpoch()) {
        reading.outcome = SealOutcome::Expired;
        sink.add(sealPosition(tree.bytes()), refusalSentence(reading));
    }
}

void sealExpiring(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const Seal seal = sealOf(tree).seal;
    const qint64 left = seal.expires.value_or(0) - QDateTime::currentSecsSinceEpoch();
    if (seal.expires && left >= 0 && left < expiringSeconds) {
        sink.add(sealPosition(tree.bytes()),
                 QString("Its time is over at %1, and from a day later clients that require "
                         "signatures refuse it: sign it anew.")
                     .arg(timeText(*seal.expires)));
    }
}

} // namespace vx::rules
