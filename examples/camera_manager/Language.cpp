#include "examples/camera_manager/Language.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include "host/CoreQt/QtVersions.h"

namespace {

/** The application owns the translator; a catalogue that is missing leaves English. */
void install(const QString& file, const QString& folder)
{
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(file, folder)) {
        QCoreApplication::installTranslator(translator);
    }
}

} // namespace

void installLanguage(const QString& language)
{
    const QString system = QLocale::system().name().section(QLatin1Char('_'), 0, 0);
    const QString chosen = language.isEmpty() ? system : language;
    install(QStringLiteral("CameraManager_%1.qm").arg(chosen),
            QCoreApplication::applicationDirPath() + "/translations");
    // The library carries its catalogues and leaves it to the application to install one.
    install(QStringLiteral("SoftwareUpdateClient_%1.qm").arg(chosen), ":/Translations");
    install(QStringLiteral("UpdateTrust_%1.qm").arg(chosen), ":/trust");
    install(QStringLiteral("qtbase_%1").arg(chosen), vx::qtTranslationsFolder());
}
