#include "tools/signing/PackageFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "tools/signing/CatalogueMarkup.h"
#include "trust/internal/FileDigest.h"

namespace vx {

QString packageFile(const QUrl& address, const QString& folder)
{
    const QString name = QFileInfo(address.path()).fileName();
    const QFileInfo file(QDir(folder).filePath(name));
    return !name.isEmpty() && file.isFile() ? file.filePath() : QString();
}

std::optional<PackageFacts> readPackageFacts(const QString& path)
{
    QFile file(path);
    qint64 size = 0;
    const auto count = [&size](qint64 done) {
        size = done;
        return true;
    };
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return std::nullopt;
    }
    const std::optional<QByteArray> sha256 = sha256Of(file, count);
    return sha256 ? std::optional<PackageFacts>({static_cast<quint64>(size), sha256->toHex()})
                  : std::nullopt;
}

QByteArray writeFactsOfFolder(const QByteArray& catalogue, const QString& folder)
{
    const CatalogueMarkup markup(catalogue);
    QMap<int, PackageFacts> facts;
    int index = 0;
    for (const PackageMarkup& package : markup.packages()) {
        const QString file = packageFile(package.address(), folder);
        const auto known = file.isEmpty() ? std::nullopt : readPackageFacts(file);
        if (known) {
            facts.insert(index, *known);
        }
        ++index;
    }
    return writePackageFacts(catalogue, facts);
}

} // namespace vx
