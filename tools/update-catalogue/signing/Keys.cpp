#include "tools/update-catalogue/signing/Keys.h"

#include <QFile>

#include "tools/update-catalogue/Command.h"

namespace vx {

namespace {

/** A public key takes two lines; whoever gives a disk image by mistake should not wait for it. */
constexpr qint64 longestKeyFile = 64LL * 1024;

PublicKey readKey(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, file.errorString()));
    }
    const std::optional<PublicKey> key = readPublicKeyFile(file.read(longestKeyFile));
    if (!key) {
        throw CommandFailure(ExitUnreadable, QString("%1: is no public key of minisign").arg(path));
    }
    return *key;
}

} // namespace

void declareKeys(QCommandLineParser& parser)
{
    parser.addOption(
        {"key",
         "What a client that requires signatures with this public key makes of it; may "
         "be repeated.",
         "FILE"});
}

PublicKeys keysFrom(const QCommandLineParser& parser)
{
    PublicKeys keys;
    for (const QString& path : parser.values("key")) {
        keys.append(readKey(path));
    }
    return keys;
}

} // namespace vx
