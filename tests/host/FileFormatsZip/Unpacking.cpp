#include "tests/host/FileFormatsZip/Unpacking.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegExp>
#include <QSignalSpy>

#include <climits>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/Unzipper.h"
#include "host/FileFormatsZip/ZipReader.h"

namespace vx::test {

namespace {

constexpr int patience = 60000;

QByteArray linkTargetOf(const QByteArray& path)
{
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.constData(), target, sizeof target);
    return {target, static_cast<int>(length)};
}

/** Qt cannot name what is not in the locale's character set, so that this asks the system. */
QByteArray describe(const QByteArray& path, const struct stat& status)
{
    const QByteArray mode = QByteArray::number(status.st_mode & 07777U, 8) + ' ';
    if (S_ISLNK(status.st_mode)) {
        return "link " + linkTargetOf(path);
    }
    if (S_ISDIR(status.st_mode)) {
        return "folder " + mode;
    }
    if (!S_ISREG(status.st_mode)) {
        return "special " + mode;
    }
    QByteArray content;
    if (FILE* const stream = std::fopen(path.constData(), "rb")) {
        content.resize(static_cast<int>(status.st_size));
        content.resize(static_cast<int>(
            std::fread(content.data(), 1, static_cast<size_t>(content.size()), stream)));
        std::fclose(stream);
    }
    return "file " + mode + content;
}

void collect(const QByteArray& root, const QByteArray& below, QMap<QByteArray, QByteArray>& tree)
{
    DIR* const folder = ::opendir((root + below).constData());
    if (folder == nullptr) {
        return;
    }
    while (const dirent* const entry = ::readdir(folder)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..") {
            continue;
        }
        const QByteArray path = below + '/' + name;
        struct stat status = {};
        ::lstat((root + path).constData(), &status);
        tree.insert(path.mid(1), describe(root + path, status));
        if (S_ISDIR(status.st_mode)) {
            collect(root, path, tree);
        }
    }
    ::closedir(folder);
}

} // namespace

QString unpackWithReader(const QString& archive, const QString& folder, bool flat)
{
    ZipReader reader(archive, nullptr);
    reader.open(QIODevice::ReadOnly);
    try {
        reader.extractFiles(reader.fileList(QRegExp()), folder, flat);
    } catch (const IOException& exception) {
        return exception.message();
    }
    return {};
}

QString unpackWithUnzipper(const QString& archive, const QString& folder, bool flat)
{
    Unzipper unzipper(archive, folder, flat);
    QSignalSpy done(&unzipper, SIGNAL(unzippingDone(QString)));
    QSignalSpy failed(&unzipper, SIGNAL(unzippingFailed(QString)));
    QElapsedTimer waiting;
    waiting.start();
    while (done.isEmpty() && failed.isEmpty() && waiting.elapsed() < patience) {
        failed.wait(1);
    }
    if (done.size() + failed.size() != 1) {
        return QStringLiteral("reported %1 times").arg(done.size() + failed.size());
    }
    return failed.isEmpty() ? QString() : failed.first().first().toString();
}

QMap<QByteArray, QByteArray> treeOf(const QString& folder)
{
    QMap<QByteArray, QByteArray> tree;
    collect(QFile::encodeName(folder), QByteArray(), tree);
    return tree;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    // A new file, for some file systems flush one that is cut and written anew to the disk.
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

void runTool(const QString& folder, const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(patience) || process.exitCode() != 0) {
        qFatal("%s failed", qPrintable(program));
    }
}

} // namespace vx::test
