#include "examples/camera_manager/TourSurroundings.h"

#include <QDir>
#include <QFile>

namespace {

QByteArray localeOf(const QString& language)
{
    if (language == QLatin1String("de")) {
        return "de_DE.UTF-8";
    }
    return language == QLatin1String("fr") ? "fr_FR.UTF-8" : "en_US.UTF-8";
}

QtMessageHandler previousHandler = nullptr;

/** The offscreen platform complains of every dialog of fixed size, which nobody can do a thing
 * about. */
void dropPlatformComplaint(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (text != QLatin1String("This plugin does not support propagateSizeHints()")) {
        previousHandler(type, context, text);
    }
}

} // namespace

TourSurroundings::TourSurroundings(const QString& language)
{
    for (const char* variable :
         {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString folder = m_folder.filePath(QString::fromLatin1(variable));
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
        qputenv(variable, QFile::encodeName(folder));
    }
    qputenv("LC_ALL", localeOf(language));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // This platform has larger letters than desktops have.
    qputenv("QT_FONT_DPI", "76");
    previousHandler = qInstallMessageHandler(dropPlatformComplaint);
}
