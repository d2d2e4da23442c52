// Passes the input, as UTF-8 and as UTF-16, to the parsers of single fields.

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "download/DownloadManager.h"
#include "host/Core/Log.h"

using vx::DownloadManager;

namespace {

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void parseSize(const QString& text)
{
    const quintptr size = DownloadManager::parseFileSize(text);
    if (text.endsWith(QLatin1String("MB"), Qt::CaseInsensitive)) {
        check(size % (1 << 20) == 0);
    } else if (text.endsWith(QLatin1String("kB"), Qt::CaseInsensitive)) {
        check(size % (1 << 10) == 0);
    } else {
        check(size == text.toULong());
    }
}

// The short way to a time must come to where Qt's own way leads.
void parseDate(const QString& text)
{
    QDateTime expected = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (!expected.isValid()) {
        expected = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd"));
    }
    const QDateTime date = DownloadManager::parseReleaseDate(text);
    check(date == expected && date.isValid() == expected.isValid());
}

void parseSuffix(const QString& text)
{
    const auto section = [&text](int number) {
        return text.section(QLatin1Char('.'), number, number, QString::SectionSkipEmpty);
    };
    QString expected = section(-1);
    const QString beforeIt = section(-2);
    if (expected == QLatin1String("zip") && beforeIt == QLatin1String("mpkg")) {
        expected = beforeIt;
    } else if ((expected == QLatin1String("gz") || expected == QLatin1String("bz2")) &&
               beforeIt == QLatin1String("tar")) {
        expected.prepend(QLatin1String("tar."));
    }
    check(DownloadManager::parsePackageSuffix(text) == expected);
}

void parse(const QString& text)
{
    parseSize(text);
    parseDate(text);
    parseSuffix(text);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    vx::Log::instance().setLogLevel(4);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    parse(QString::fromUtf8(bytes));
    QString utf16(static_cast<int>(size / sizeof(QChar)), Qt::Uninitialized);
    std::memcpy(utf16.data(), data, size / sizeof(QChar) * sizeof(QChar));
    parse(utf16);
    return 0;
}
