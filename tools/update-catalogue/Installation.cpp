#include "tools/update-catalogue/Installation.h"

#include <QRegularExpression>

#include "base/ReleaseNumber.h"
#include "tools/update-catalogue/Command.h"

namespace vx {

QStringList splitWordList(const QString& text)
{
    static const QRegularExpression separator("[\\s,;]+");
    return text.split(separator, Qt::SkipEmptyParts);
}

QPair<QString, VersionNumber> cameraFromText(const QString& text, int code)
{
    const int at = text.indexOf('=');
    if (at <= 0 || at == text.size() - 1) {
        throw CommandFailure(static_cast<ExitCode>(code),
                             QString("\"%1\" is no camera: write NAME=VERSION").arg(text));
    }
    return {text.left(at), releaseNumber(text.mid(at + 1))};
}

OfferCriteria defaultCriteria()
{
    OfferCriteria criteria;
    criteria.supportedPlatforms = QStringList{"Mac32", "Mac64", "MacPP"};
    criteria.supportedPackageTypes = QStringList{"mpkg", "dmg"};
    return criteria;
}

void declareInstallation(QCommandLineParser& parser)
{
    parser.addOption({"application", "The application's name.", "NAME"});
    parser.addOption({"version", "Its installed version.", "VERSION"});
    parser.addOption({"platforms", "Its platforms.", "WORDS", "Mac32 Mac64 MacPP"});
    parser.addOption({"types", "The file types that it lists.", "WORDS", "mpkg dmg"});
    parser.addOption({"camera", "A camera and its firmware; may be repeated.", "NAME=VERSION"});
    parser.addOption({"beta", "The user wants beta versions."});
}

Installation installationFrom(const QCommandLineParser& parser)
{
    if (!parser.isSet("application") || !parser.isSet("version")) {
        throw CommandFailure(ExitUsage, "--application and --version are needed");
    }
    Installation installation;
    installation.criteria = defaultCriteria();
    replaceInstallation(installation.criteria, parser);
    installation.label = installation.criteria.applicationName + ' ' + parser.value("version");
    return installation;
}

void replaceInstallation(OfferCriteria& criteria, const QCommandLineParser& parser)
{
    if (parser.isSet("application")) {
        criteria.applicationName = parser.value("application");
    }
    if (parser.isSet("version")) {
        criteria.versionNumber = releaseNumber(parser.value("version"));
    }
    if (parser.isSet("platforms")) {
        criteria.supportedPlatforms = splitWordList(parser.value("platforms"));
    }
    if (parser.isSet("types")) {
        criteria.supportedPackageTypes = splitWordList(parser.value("types"));
    }
    if (parser.isSet("camera")) {
        criteria.currentCameraVersions.clear();
    }
    for (const QString& camera : parser.values("camera")) {
        criteria.currentCameraVersions.append(cameraFromText(camera, ExitUsage));
    }
    criteria.checkForBeta = criteria.checkForBeta || parser.isSet("beta");
}

} // namespace vx
