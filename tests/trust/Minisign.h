#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace vx::test {

/** A key pair of the real minisign program, in a folder of its own. */
class Minisign
{
public:
    enum Form {
        Prehashed, ///< "ED", what minisign makes by default
        Pure       ///< "Ed", made with "-l"
    };

    /** Makes the pair, without a password. */
    Minisign();

    /** The whole ".pub" file. */
    QByteArray publicKeyFile() const;

    /** The base64 line of the ".pub" file, without an end of line. */
    QString publicKey() const;

    /** The ".minisig" file for @p content; without a trusted comment the one minisign makes. */
    QByteArray signature(const QByteArray& content, const QString& trustedComment = QString(),
                         Form form = Prehashed) const;

    /** @p document with such a signature behind it. */
    QByteArray sealed(const QByteArray& document, const QString& trustedComment = QString(),
                      Form form = Prehashed) const;

private:
    QTemporaryDir m_folder;
};

/** @p document with the seal that holds @p signature, a ".minisig" file. */
QByteArray withSeal(const QByteArray& document, const QByteArray& signature);

} // namespace vx::test
