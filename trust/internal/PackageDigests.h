#pragma once

#include <QByteArray>
#include <QDomElement>
#include <QHash>
#include <QString>
#include <QUrl>
#include <QVector>

#include <optional>

namespace vx {

/** The name under which a catalogue gives the SHA-256 hash of a package's file. */
constexpr char packageDigestTag[] = "sha256";

/** What a catalogue says about the content of a package's file. */
struct PackageDigest
{
    enum State {
        Missing,   ///< it says nothing
        Malformed, ///< what it says is no digest, or it says two things
        Given
    };

    State state = Missing;
    /** The SHA-256 hash, 32 bytes; empty unless it is given. */
    QByteArray sha256;
};

/** Reads what stands at a package: 64 hexadecimal digits, white space around them does no harm. */
PackageDigest readPackageDigest(const std::optional<QString>& text);

/**
 * What stands at @p package itself: at its first file, or else at the package; at either the
 * element before the attribute. Nothing is inherited from a set.
 *
 * @return nothing if there is none. An empty text is one, and is not replaced by a farther one.
 */
std::optional<QString> packageDigestText(const QDomElement& package);

/** The digests of the packages of one catalogue, by their addresses. */
class PackageDigests
{
public:
    /**
     * Notes what the catalogue says of the package at @p address. Of two packages with one address
     * both must say the same, or else neither counts.
     */
    void add(const QUrl& address, const PackageDigest& digest);

    /** The same for a text that is read only if somebody asks for a digest. */
    void add(const QUrl& address, const std::optional<QString>& text);

    /** What the catalogue says of the package at @p address. */
    PackageDigest of(const QUrl& address) const;

private:
    struct Unread
    {
        QUrl address;
        QString text;
    };

    void note(const QUrl& address, const PackageDigest& digest) const;

    // A check reads thousands of packages, of which the user confirms one or none.
    mutable QVector<Unread> m_unread;
    mutable QHash<QUrl, PackageDigest> m_digests;
};

} // namespace vx
