// Reads the input as a sealed catalogue. What is read must be what a plain walk over its lines
// finds, the parts must lie where they are said to, and nothing may be accepted that the owner of
// the key did not sign: with the key below only signedContent was ever signed.

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "trust/internal/PackageDigests.h"
#include "trust/internal/SealVerification.h"

using namespace vx;

namespace {

const QByteArray publicKey = "RWQYypOGYRwlE0fEkGQhp8AjBSXOPQUdRUli0peumDJDtKemeMY3cZG8";
const QByteArray signedContent = "<?xml version=\"1.0\"?>\n<softwareList/>\n";
const QByteArrayList signedComments{"timestamp:1764000000\texpires:1766592000",
                                    "timestamp:1764000000\tfile:c.xml"};
const QByteArray sealStart = "<?minisign";

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

bool isWhiteSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/** The bytes that @p text is the base64 form of, if it is one that minisign would write. */
QByteArray plainBase64(const QByteArray& text)
{
    const QByteArray bytes = QByteArray::fromBase64(text);
    return bytes.toBase64() == text ? bytes : QByteArray();
}

bool isPlainNumber(const QByteArray& text)
{
    bool fits = false;
    text.toLongLong(&fits);
    return fits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool hasPlainTimes(QByteArray comment)
{
    int timestamps = 0;
    int ends = 0;
    for (const QByteArray& field : comment.replace('\t', ' ').split(' ')) {
        if (field.startsWith("timestamp:")) {
            ++timestamps;
            if (!isPlainNumber(field.mid(10))) {
                return false;
            }
        } else if (field.startsWith("expires:")) {
            ++ends;
            if (!isPlainNumber(field.mid(8))) {
                return false;
            }
        }
    }
    return timestamps == 1 && ends <= 1;
}

bool isPlainSeal(const QByteArrayList& lines)
{
    if (lines.size() < 6 || lines[0] != sealStart || !lines[5].startsWith("?>")) {
        return false;
    }
    const bool endsEarly = std::any_of(lines.begin() + 1, lines.begin() + 5,
                                       [](const QByteArray& line) { return line.contains("?>"); });
    const QByteArray signature = plainBase64(lines[2]);
    return !endsEarly && lines[1].startsWith("untrusted comment: ") && signature.size() == 74 &&
           (signature.startsWith("Ed") || signature.startsWith("ED")) &&
           lines[3].startsWith("trusted comment: ") && hasPlainTimes(lines[3].mid(17)) &&
           plainBase64(lines[4]).size() == 64;
}

bool beginsPlainSeal(const QByteArray& line)
{
    return line.startsWith(sealStart) &&
           (line.size() == sealStart.size() || isWhiteSpace(line[sealStart.size()]) ||
            line[sealStart.size()] == '?');
}

SealOutcome plainOutcome(const QByteArray& document)
{
    QByteArrayList lines = document.split('\n');
    const auto last = std::find_if(lines.rbegin(), lines.rend(), beginsPlainSeal);
    if (last == lines.rend()) {
        const bool misplaced = document.contains(sealStart + '\n') ||
                               document.contains(sealStart + '\r') || document.endsWith(sealStart);
        return misplaced ? SealOutcome::UnreadableSeal : SealOutcome::NoSeal;
    }
    QByteArrayList seal(last.base() - 1, lines.end());
    // The last line of a document has no end, and so no CR that belongs to it.
    for (int i = 0; i + 1 < seal.size(); ++i) {
        if (seal[i].endsWith('\r')) {
            seal[i].chop(1);
        }
    }
    return isPlainSeal(seal) ? SealOutcome::Accepted : SealOutcome::UnreadableSeal;
}

void checkParts(const QByteArray& document, const Seal& seal)
{
    const auto begin = static_cast<int>(seal.signatureBegin);
    const auto end = static_cast<int>(seal.signatureEnd);
    const QByteArray head = document.left(static_cast<int>(seal.signedSize));
    check(head.isEmpty() || head.endsWith('\n'));
    check(document.mid(head.size()).startsWith(sealStart));
    check(begin > head.size() && end > begin && document.mid(end, 2) == "?>");
    const QByteArray signature = document.mid(begin, end - begin);
    check(signature.count('\n') == 4);
    // Taken off and put back, it is the same seal.
    const QByteArray again = head + sealStart + '\n' + signature + "?>";
    const SealReading reading = readSeal(again);
    check(reading.outcome == SealOutcome::Accepted && !reading.seal.hasBytesBehind);
    check(reading.seal.signature == seal.signature && reading.seal.timestamp == seal.timestamp &&
          reading.seal.trustedComment == seal.trustedComment);
    const QByteArray rest = document.mid(end + 2);
    check(seal.hasBytesBehind == !std::all_of(rest.begin(), rest.end(), isWhiteSpace));
}

void checkVerification(const QByteArray& document, const Seal& seal)
{
    static const PublicKeys keys{*readPublicKey(publicKey)};
    const SealOutcome outcome = verifySeal(document, seal, keys);
    if (outcome == SealOutcome::Accepted || outcome == SealOutcome::BytesBehind) {
        check(document.left(static_cast<int>(seal.signedSize)) == signedContent);
        check(signedComments.contains(seal.trustedComment));
        check((outcome == SealOutcome::BytesBehind) == seal.hasBytesBehind);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray document(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const SealReading reading = readSeal(document);
    check(reading.outcome == plainOutcome(document));
    if (reading.outcome == SealOutcome::Accepted) {
        checkParts(document, reading.seal);
        checkVerification(document, reading.seal);
    }
    readPublicKeyFile(document);
    const PackageDigest digest =
        readPackageDigest(QString::fromUtf8(document.constData(), document.size()));
    check((digest.state == PackageDigest::Given) == (digest.sha256.size() == 32));
    check(digest.state != PackageDigest::Given ||
          digest.sha256.toHex() == document.trimmed().toLower());
    return 0;
}
