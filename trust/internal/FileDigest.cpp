#include "trust/internal/FileDigest.h"

#include <QFile>

#include <memory>

#include <openssl/evp.h>

namespace vx {

namespace {

constexpr int pieceSize = 256 * 1024; // bytes

using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

std::optional<QByteArray> resultOf(EVP_MD_CTX* context)
{
    QByteArray hash(EVP_MD_CTX_size(context), Qt::Uninitialized);
    unsigned int size = 0;
    auto* const bytes = reinterpret_cast<unsigned char*>(hash.data());
    if (EVP_DigestFinal_ex(context, bytes, &size) != 1) {
        return std::nullopt;
    }
    return hash;
}

} // namespace

std::optional<QByteArray> sha256Of(QIODevice& device, const std::function<bool(qint64)>& goesOn)
{
    const Context context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return std::nullopt;
    }
    QByteArray piece(pieceSize, Qt::Uninitialized);
    qint64 done = 0;
    while (true) {
        const qint64 size = device.read(piece.data(), piece.size());
        if (size == 0) {
            return resultOf(context.get());
        }
        done += size;
        const bool isHashed = size > 0 && EVP_DigestUpdate(context.get(), piece.constData(),
                                                           static_cast<std::size_t>(size)) == 1;
        if (!isHashed || !goesOn(done)) {
            return std::nullopt;
        }
    }
}

std::optional<QByteArray> sha256OfFile(const QString& path)
{
    QFile file(path);
    // Without Qt's own buffer, which would only copy what is read anyway in large pieces.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return std::nullopt;
    }
    return sha256Of(file, [](qint64) { return true; });
}

} // namespace vx
