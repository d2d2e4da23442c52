#include "trust/internal/Seal.h"

#include <algorithm>

#include "trust/internal/Base64.h"
#include "trust/internal/TrustedComment.h"

namespace vx {

namespace {

constexpr std::string_view sealStart = "<?minisign";
constexpr std::string_view sealEnd = "?>";
constexpr std::string_view untrustedStart = "untrusted comment: ";
constexpr std::string_view trustedStart = "trusted comment: ";
constexpr std::string_view whiteSpace = " \t\r\n";

/** A signature as minisign lays it down: the kind, the number of the key, the signature itself. */
constexpr std::size_t encodedSignatureSize = 2 + sizeof(KeyId) + 64;

/** Walks through a document line by line; a line ends in LF, or in CR and LF. */
class Lines
{
public:
    Lines(std::string_view document, std::size_t at)
        : m_document(document)
        , m_at(at)
    {}

    std::size_t position() const { return m_at; }

    /** The next line without its end, or nothing if it does not end. */
    std::optional<std::string_view> next()
    {
        const std::size_t end = m_document.find('\n', m_at);
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::string_view line = m_document.substr(m_at, end - m_at);
        m_at = end + 1;
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        return line;
    }

private:
    std::string_view m_document;
    std::size_t m_at;
};

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool isLineStart(std::string_view document, std::size_t at)
{
    return at == 0 || document[at - 1] == '\n';
}

/** Whether the target of the instruction at @p at ends with its name, and is not a longer one. */
bool isWholeTarget(std::string_view document, std::size_t at)
{
    const std::string_view rest = document.substr(at + sealStart.size());
    return rest.empty() || whiteSpace.find(rest.front()) != std::string_view::npos ||
           rest.front() == '?';
}

/** The last seal that begins a line. What a comment within the seal holds does not count. */
std::optional<std::size_t> findSeal(std::string_view document)
{
    std::size_t at = document.rfind(sealStart);
    while (at != std::string_view::npos) {
        if (isLineStart(document, at) && isWholeTarget(document, at)) {
            return at;
        }
        at = at == 0 ? std::string_view::npos : document.rfind(sealStart, at - 1);
    }
    return std::nullopt;
}

/** Whether a line ends with what should stand on a line of its own. */
bool hasMisplacedSeal(std::string_view document)
{
    std::size_t at = document.find(sealStart);
    while (at != std::string_view::npos) {
        const std::size_t behind = at + sealStart.size();
        if (behind == document.size() || document[behind] == '\n' || document[behind] == '\r') {
            return true;
        }
        at = document.find(sealStart, behind);
    }
    return false;
}

bool readSignature(std::string_view line, Seal& seal)
{
    std::array<std::uint8_t, encodedSignatureSize> bytes{};
    if (!decodeBase64(line, bytes.data(), bytes.size()) || bytes[0] != 'E' ||
        (bytes[1] != 'd' && bytes[1] != 'D')) {
        return false;
    }
    seal.isPrehashed = bytes[1] == 'D';
    const auto* const idStart = bytes.data() + 2;
    std::copy_n(idStart, seal.keyId.size(), seal.keyId.begin());
    std::copy_n(idStart + seal.keyId.size(), seal.signature.size(), seal.signature.begin());
    return true;
}

bool readTrustedComment(std::string_view line, Seal& seal)
{
    if (!startsWith(line, trustedStart)) {
        return false;
    }
    const std::string_view comment = line.substr(trustedStart.size());
    const std::optional<TrustedTimes> times = readTrustedTimes(comment);
    if (!times) {
        return false;
    }
    seal.trustedComment = QByteArray(comment.data(), static_cast<int>(comment.size()));
    seal.timestamp = times->timestamp;
    seal.expires = times->expires;
    return true;
}

/** Reads the line with @p read. It must not hold what ends the instruction for any XML parser. */
template <typename Read>
bool readLine(Lines& lines, const Read& read)
{
    const std::optional<std::string_view> line = lines.next();
    return line && line->find(sealEnd) == std::string_view::npos && read(*line);
}

bool readLines(Lines& lines, Seal& seal)
{
    const auto isUntrusted = [](std::string_view line) { return startsWith(line, untrustedStart); };
    const auto signature = [&seal](std::string_view line) { return readSignature(line, seal); };
    const auto trusted = [&seal](std::string_view line) { return readTrustedComment(line, seal); };
    const auto global = [&seal](std::string_view line) {
        return decodeBase64(line, seal.globalSignature.data(), seal.globalSignature.size());
    };
    return readLine(lines, isUntrusted) && readLine(lines, signature) && readLine(lines, trusted) &&
           readLine(lines, global);
}

bool readSealAt(std::string_view document, std::size_t at, Seal& seal)
{
    Lines lines(document, at);
    if (lines.next() != sealStart) {
        return false;
    }
    seal.signedSize = static_cast<qsizetype>(at);
    seal.signatureBegin = static_cast<qsizetype>(lines.position());
    if (!readLines(lines, seal)) {
        return false;
    }
    seal.signatureEnd = static_cast<qsizetype>(lines.position());
    const std::string_view rest = document.substr(lines.position());
    if (!startsWith(rest, sealEnd)) {
        return false;
    }
    seal.hasBytesBehind =
        rest.find_first_not_of(whiteSpace, sealEnd.size()) != std::string_view::npos;
    return true;
}

} // namespace

SealReading readSeal(std::string_view document)
{
    const std::optional<std::size_t> at = findSeal(document);
    if (!at) {
        const bool misplaced = hasMisplacedSeal(document);
        return {misplaced ? SealOutcome::UnreadableSeal : SealOutcome::NoSeal, Seal()};
    }
    Seal seal;
    const bool isReadable = readSealAt(document, *at, seal);
    return {isReadable ? SealOutcome::Accepted : SealOutcome::UnreadableSeal, seal};
}

SealReading readSeal(const QByteArray& document)
{
    return readSeal(
        std::string_view(document.constData(), static_cast<std::size_t>(document.size())));
}

} // namespace vx
