#include "client/internal/Store.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextCodec>
#include <QTimeZone>
#include <QVariant>

#include <algorithm>

#include "client/SoftwareUpdateClient.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

QString textOr(const QString& text, const QString& fallback)
{
    return text.isEmpty() ? fallback : text;
}

/** A list is what the store makes of a value with commas. */
bool holdsUnwritableTime(const QVariant& value)
{
    if (value.userType() == QMetaType::QVariantList) {
        const QVariantList items = value.toList();
        return std::any_of(items.begin(), items.end(), holdsUnwritableTime);
    }
    return value.userType() == QMetaType::QDateTime && isUnwritable(value.toDateTime());
}

/** @p value with a null time in place of each of those, and @p value itself without any. */
QVariant writable(const QVariant& value)
{
    if (!holdsUnwritableTime(value)) {
        return value;
    }
    if (value.userType() != QMetaType::QVariantList) {
        return QDateTime();
    }
    QVariantList items = value.toList();
    std::transform(items.begin(), items.end(), items.begin(), writable);
    return items;
}

// QSettings rewrites its whole file. One such value would crash the application at the next write,
// whichever part of it had stored the value. It is replaced and not removed, because removing a key
// also removes the keys below it.
void replaceUnwritableTimes(QSettings& store)
{
    const QStringList keys = store.allKeys();
    for (const QString& key : keys) {
        const QVariant value = store.value(key);
        if (holdsUnwritableTime(value)) {
            store.setValue(key, writable(value));
        }
    }
}

/** Whether @p fileName holds more than ASCII, and that in UTF-8. */
bool holdsUtf8(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray bytes = file.readAll();
    const bool isAscii = std::all_of(bytes.begin(), bytes.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), int(bytes.size()), &state);
    return !isAscii && state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

std::unique_ptr<QSettings> openStore()
{
    auto store = std::make_unique<QSettings>(
        SoftwareUpdateClient::sSoftUpQSettingsFormat, SoftwareUpdateClient::sSoftUpQSettingsScope,
        textOr(QCoreApplication::organizationName(), QStringLiteral("Veldrix")),
        textOr(QCoreApplication::applicationName(), QStringLiteral("softwareUpdate")));
    // Qt 5 escapes everything beyond ASCII and Qt 6 writes it as it is, so that the application's
    // next version, built with the other Qt, finds the texts of this one.
    setUtf8(*store, holdsUtf8(store->fileName()));
    return store;
}

std::unique_ptr<QSettings> openStoreFile(const QString& path)
{
    auto store = std::make_unique<QSettings>(path, QSettings::IniFormat);
    setUtf8(*store, holdsUtf8(path));
    return store;
}

std::unique_ptr<QSettings> openStoreToWrite()
{
    auto store = openStore();
    // Qt would list the values of the files behind the client's own, too.
    store->setFallbacksEnabled(false);
    replaceUnwritableTimes(*store);
    // All has been read; with a codec Qt 5 would write half characters.
    setUtf8(*store, false);
    return store;
}

bool isUnwritable(const QDateTime& time)
{
    return time.timeSpec() == Qt::TimeZone && !time.timeZone().isValid();
}

} // namespace vx
