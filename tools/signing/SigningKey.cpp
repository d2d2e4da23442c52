#include "tools/signing/SigningKey.h"

#include <QtGlobal>

#include <sodium.h>

namespace vx {

namespace {

constexpr int keyIdSize = 8;
constexpr char pureForm[] = "Ed";
constexpr char prehashedForm[] = "ED";

unsigned char* writable(QByteArray& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

const unsigned char* readable(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

unsigned long long lengthOf(const QByteArray& bytes)
{
    return static_cast<unsigned long long>(bytes.size());
}

QByteArray digestOf(const QByteArray& content)
{
    QByteArray digest(crypto_generichash_BYTES_MAX, '\0');
    crypto_generichash(writable(digest), static_cast<size_t>(digest.size()), readable(content),
                       lengthOf(content), nullptr, 0);
    return digest;
}

QByteArray signatureOf(const QByteArray& content, const QByteArray& secretKey)
{
    QByteArray signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(writable(signature), nullptr, readable(content), lengthOf(content),
                         readable(secretKey));
    return signature;
}

} // namespace

SigningKey SigningKey::generate()
{
    if (sodium_init() < 0) {
        qFatal("libsodium has no source of random numbers");
    }
    SigningKey key;
    key.m_id = QByteArray(keyIdSize, '\0');
    key.m_public = QByteArray(crypto_sign_PUBLICKEYBYTES, '\0');
    key.m_secret = QByteArray(crypto_sign_SECRETKEYBYTES, '\0');
    randombytes_buf(key.m_id.data(), keyIdSize);
    crypto_sign_keypair(writable(key.m_public), writable(key.m_secret));
    return key;
}

QString SigningKey::publicKey() const
{
    return QString::fromLatin1((pureForm + m_id + m_public).toBase64());
}

QByteArray SigningKey::publicKeyFile() const
{
    // minisign names a key by its identity as a number, whose lowest byte comes first in the key.
    QByteArray name;
    for (const char byte : m_id) {
        name.prepend(byte);
    }
    return "untrusted comment: minisign public key " + name.toHex().toUpper() + '\n' +
           publicKey().toLatin1() + '\n';
}

QByteArray SigningKey::signatureFile(const QByteArray& content, const QByteArray& trustedComment,
                                     Form form) const
{
    const QByteArray signature =
        signatureOf(form == Prehashed ? digestOf(content) : content, m_secret);
    const QByteArray line = (form == Prehashed ? prehashedForm : pureForm) + m_id + signature;
    return "untrusted comment: signature from a key of one run\n" + line.toBase64() +
           "\ntrusted comment: " + trustedComment + '\n' +
           signatureOf(signature + trustedComment, m_secret).toBase64() + '\n';
}

QByteArray SigningKey::sealed(const QByteArray& document, qint64 signedAt, qint64 expires,
                              Form form) const
{
    QByteArray comment = "timestamp:" + QByteArray::number(signedAt);
    if (expires != 0) {
        comment += "\texpires:" + QByteArray::number(expires);
    }
    const QByteArray ended = document.endsWith('\n') ? document : document + '\n';
    return attachSignature(ended, signatureFile(ended, comment, form));
}

QByteArray attachSignature(const QByteArray& document, const QByteArray& signatureFile)
{
    return document + "<?minisign\n" + signatureFile + "?>\n";
}

} // namespace vx
