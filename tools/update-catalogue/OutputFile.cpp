#include "tools/update-catalogue/OutputFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

#include "tools/update-catalogue/Command.h"

namespace vx {

namespace {

void writeStandardOutput(const QByteArray& bytes)
{
    const auto size = static_cast<size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0) {
        throw CommandFailure(ExitUnreadable, "standard output cannot be written");
    }
}

} // namespace

void writeOutput(const QString& path, const QByteArray& bytes)
{
    if (path == "-") {
        writeStandardOutput(bytes);
        return;
    }
    const QFileInfo info(path);
    if ((info.exists() && !info.isFile()) || (info.isSymLink() && !info.exists())) {
        throw CommandFailure(
            ExitUnreadable,
            QString("%1: is no regular file, and is left as it is; - is standard output")
                .arg(path));
    }
    if (!info.dir().exists()) {
        throw CommandFailure(ExitUnreadable, QString("%1: no such folder").arg(info.path()));
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, file.errorString()));
    }
}

QString outputPath(const QString& source, const QString& out, bool printsJson)
{
    const bool isAddress = source.startsWith("http://") || source.startsWith("https://");
    if (out.isEmpty() && isAddress) {
        throw CommandFailure(ExitUsage, "an address cannot be written to: give --out");
    }
    const QString path = out.isEmpty() ? source : out;
    if (path == "-" && printsJson) {
        throw CommandFailure(ExitUsage, "with --json the catalogue cannot go to standard output");
    }
    return path;
}

} // namespace vx
