// Feeds arbitrary bytes to everything that reads the application's settings store: the engine's
// history and the client's record. What was read is stored and must read back as the same.

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdlib>

#include "client/SoftwareUpdateClient.h"
#include "download/DownloadManager.h"

using namespace vx;

namespace {

class Engine : public DownloadManager
{
public:
    using DownloadManager::updateHistory;
};

const QString& folder()
{
    static const QTemporaryDir temporary;
    static const QString path = temporary.path();
    return path;
}

// QSettings keeps what it has read of a file, so that each run has one of its own.
QString nextName()
{
    static int number = 0;
    return QString::number(++number);
}

QString writeStore(const QString& name, const uint8_t* data, size_t size)
{
    QFile file(folder() + QStringLiteral("/fuzz/") + name + QStringLiteral(".ini"));
    file.open(QIODevice::WriteOnly);
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    return file.fileName();
}

void readHistory(const QString& path)
{
    Engine read;
    {
        QSettings settings(path, QSettings::IniFormat);
        read.loadHistory(settings, QString());
        read.storeHistory(settings, QString());
    }
    Engine again;
    QSettings settings(path, QSettings::IniFormat);
    again.loadHistory(settings, QString());
    // Items that are two years old at this very moment may go in between.
    if (again.updateHistory.size() > read.updateHistory.size()) {
        std::abort();
    }
    for (auto item = again.updateHistory.cbegin(); item != again.updateHistory.cend(); ++item) {
        if (read.updateHistory.value(item.key()) != item.value()) {
            std::abort();
        }
    }
}

void readClientSettings(const QString& name)
{
    static SoftwareUpdateClient client(QString(), VersionNumber(), QString(), nullptr);
    QCoreApplication::setApplicationName(name);
    SoftwareUpdateSettings record;
    client.getCurrentSettings(&record);
    client.setCurrentSettings(&record);
}

/**
 * Whether @p bytes hold a value in Qt's binary form that is no time, which Qt reads before anyone
 * can look at it: with a damaged one it asks for any amount of memory. Nothing here stores such
 * values.
 */
bool holdsForeignBinaryValue(const QByteArray& bytes)
{
    static const QByteArray beginOfTime("@DateTime(\\0\\0\\0\\x10");
    return bytes.contains("@Variant(") || bytes.count("@DateTime(") != bytes.count(beginOfTime);
}

bool matches(const QRegularExpression& pattern, const QByteArray& bytes)
{
    // With its length, for there may be a NUL within.
    return pattern.match(QString::fromLatin1(bytes.constData(), bytes.size())).hasMatch();
}

/**
 * Whether a time in @p bytes has a key that Qt reads and writes, but lists under another name, so
 * that nobody can get at it.
 */
bool holdsTimeOutOfReach(const QByteArray& bytes)
{
    static const QRegularExpression ordinaryKey(QStringLiteral(R"(^[\w-]+(\\[\w-]+)*$)"));
    static const QRegularExpression ordinaryGroup(QStringLiteral(R"(^\[[\w-]+\]$)"));
    for (const QByteArray& line : bytes.split('\n')) {
        const QByteArray key = line.left(std::max(int(line.indexOf('=')), 0));
        const bool isOddGroup = line.startsWith('[') && !matches(ordinaryGroup, line);
        const bool isOddTime = line.contains("@DateTime(") && !matches(ordinaryKey, key);
        if (isOddGroup || isOddTime) {
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    QDir(folder()).mkdir(QStringLiteral("fuzz"));
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder());
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::IniFormat;
    QCoreApplication::setOrganizationName(QStringLiteral("fuzz"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (holdsForeignBinaryValue(bytes) || holdsTimeOutOfReach(bytes)) {
        return 0;
    }
    const QString name = nextName();
    const QString path = writeStore(name, data, size);
    readClientSettings(name);
    readHistory(path);
    QFile::remove(path);
    QFile::remove(path + QStringLiteral(".lock"));
    return 0;
}
