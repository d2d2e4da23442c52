#pragma once

#include <QByteArray>
#include <QString>

namespace vx {

/**
 * A key pair of minisign's kind (Ed25519), made for one run and never written anywhere.
 *
 * It lets a test, the demonstration or "update-catalogue serve" play a publisher. Publishers keep
 * their keys with the minisign program, which makes files of the same form.
 */
class SigningKey
{
public:
    /** What the signature is made over. */
    enum Form {
        Prehashed, ///< "ED", over the BLAKE2b-512 digest: what minisign makes by default
        Pure       ///< "Ed", over the content itself: minisign's "-l"
    };

    /** A new pair from the system's random numbers. */
    static SigningKey generate();

    /** The base64 line of a ".pub" file, without an end of line. */
    QString publicKey() const;

    /** A whole ".pub" file, as minisign -G writes it. */
    QByteArray publicKeyFile() const;

    /**
     * Signs @p content.
     *
     * @param trustedComment what minisign's "-t" takes: one line, covered by the signature.
     * @return the four lines of a ".minisig" file, each ended by LF.
     */
    QByteArray signatureFile(const QByteArray& content, const QByteArray& trustedComment,
                             Form form = Prehashed) const;

    /**
     * Signs @p document and puts the signature behind it.
     *
     * @param document a catalogue; an end of line is added where the last one is missing.
     * @param signedAt the time of the signature, in seconds since 1970.
     * @param expires when the catalogue is no longer accepted, likewise; 0 for never.
     */
    QByteArray sealed(const QByteArray& document, qint64 signedAt, qint64 expires = 0,
                      Form form = Prehashed) const;

private:
    SigningKey() = default;

    QByteArray m_id;
    QByteArray m_public;
    QByteArray m_secret;
};

/**
 * Puts a signature file behind a document, as the processing instruction that clients look for.
 *
 * @param document ends with an end of line.
 * @param signatureFile the bytes of a ".minisig" file, which stand in the result as they are.
 */
QByteArray attachSignature(const QByteArray& document, const QByteArray& signatureFile);

} // namespace vx
