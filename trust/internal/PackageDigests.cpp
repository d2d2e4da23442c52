#include "trust/internal/PackageDigests.h"

namespace vx {

namespace {

constexpr int digestSize = 32; // bytes

std::optional<QString> digestTextAt(const QDomElement& level)
{
    const QString tag = QLatin1String(packageDigestTag);
    const QDomElement element = level.firstChildElement(tag);
    if (!element.isNull()) {
        return element.text();
    }
    if (level.hasAttribute(tag)) {
        return level.attribute(tag);
    }
    return std::nullopt;
}

bool isXmlSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r') ||
           c == QLatin1Char('\n');
}

/** The value of a hexadecimal digit, or -1. */
int digitValue(QChar c)
{
    const auto code = c.unicode();
    if (code >= '0' && code <= '9') {
        return code - '0';
    }
    const auto lower = code | 0x20;
    return lower >= 'a' && lower <= 'f' && code < 0x80 ? lower - 'a' + 10 : -1;
}

/** The bytes that 64 hexadecimal digits make, or none. */
QByteArray bytesOf(const QString& text)
{
    const QChar* begin = text.constData();
    const QChar* end = begin + text.size();
    while (begin != end && isXmlSpace(*begin)) {
        ++begin;
    }
    while (begin != end && isXmlSpace(end[-1])) {
        --end;
    }
    if (end - begin != qsizetype(2) * digestSize) {
        return {};
    }
    QByteArray bytes(digestSize, Qt::Uninitialized);
    for (char& byte : bytes) {
        const int high = digitValue(*begin++);
        const int low = digitValue(*begin++);
        if (high < 0 || low < 0) {
            return {};
        }
        byte = static_cast<char>(high * 16 + low);
    }
    return bytes;
}

} // namespace

PackageDigest readPackageDigest(const std::optional<QString>& text)
{
    if (!text) {
        return {};
    }
    const QByteArray bytes = bytesOf(*text);
    return {bytes.isEmpty() ? PackageDigest::Malformed : PackageDigest::Given, bytes};
}

std::optional<QString> packageDigestText(const QDomElement& package)
{
    const QDomElement file = package.firstChildElement(QStringLiteral("file"));
    const std::optional<QString> atFile = digestTextAt(file);
    return atFile ? atFile : digestTextAt(package);
}

void PackageDigests::add(const QUrl& address, const PackageDigest& digest)
{
    if (digest.state != PackageDigest::Missing) {
        note(address, digest);
    }
}

void PackageDigests::add(const QUrl& address, const std::optional<QString>& text)
{
    if (text) {
        m_unread.append({address, *text});
    }
}

void PackageDigests::note(const QUrl& address, const PackageDigest& digest) const
{
    const auto known = m_digests.find(address);
    if (known == m_digests.end()) {
        m_digests.insert(address, digest);
    } else if (known->state != digest.state || known->sha256 != digest.sha256) {
        *known = {PackageDigest::Malformed, QByteArray()};
    }
}

PackageDigest PackageDigests::of(const QUrl& address) const
{
    for (const Unread& unread : qAsConst(m_unread)) {
        note(unread.address, readPackageDigest(unread.text));
    }
    m_unread.clear();
    return m_digests.value(address);
}

} // namespace vx
