#include "examples/camera_manager/Options.h"

#include <QCommandLineParser>

namespace {

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "A small application that keeps itself and its cameras up to date. It brings an update\n"
        "server of its own unless --server names another."));
    parser.addOptions({
        {QStringLiteral("tour"),
         QStringLiteral("Walk through the whole flow without a user and save pictures of it. This "
                        "is what happens without a display, too.")},
        {QStringLiteral("out"), QStringLiteral("Folder for the tour's pictures, \"build/demo\"."),
         QStringLiteral("folder"), QStringLiteral("build/demo")},
        {QStringLiteral("server"), QStringLiteral("Address of the catalogue."),
         QStringLiteral("url")},
        {QStringLiteral("version"),
         QStringLiteral("Version of the application, \"5.2.1\". The tour needs one below 5.3."),
         QStringLiteral("version"), QStringLiteral("5.2.1")},
        {QStringLiteral("camera"),
         QStringLiteral("A camera with its firmware; may be given several times. \"Dome-24=4.1.9\" "
                        "and \"Mini-12=3.5\"."),
         QStringLiteral("name=version")},
        {QStringLiteral("language"), QStringLiteral("\"en\", \"de\" or \"fr\"."),
         QStringLiteral("language")},
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")},
    });
}

/** Empty for what is no camera: the library stores names without escaping. */
vx::SoftUpCurrentCameraVersions readCamera(const QString& text)
{
    const QString name = text.section(QLatin1Char('='), 0, 0);
    const QString version = text.section(QLatin1Char('='), 1);
    const bool storable = !name.contains(QLatin1Char(':')) && !name.contains(QLatin1Char(','));
    if (name.isEmpty() || version.isEmpty() || !storable) {
        return {};
    }
    return {{name, vx::VersionNumber(version.toStdString())}};
}

void readCameras(const QStringList& texts, Options& options)
{
    for (const QString& text : texts) {
        const vx::SoftUpCurrentCameraVersions camera = readCamera(text);
        if (camera.isEmpty()) {
            options.problem = QStringLiteral("Not a camera: \"%1\". Give NAME=VERSION, the name "
                                             "without colon and comma.")
                                  .arg(text);
        }
        options.cameras += camera;
    }
}

void readLanguage(const QString& language, Options& options)
{
    const QStringList known = {QString(), QStringLiteral("en"), QStringLiteral("de"),
                               QStringLiteral("fr")};
    options.language = language;
    if (!known.contains(language)) {
        options.problem =
            QStringLiteral("No such language: \"%1\". There are en, de and fr.").arg(language);
    }
}

} // namespace

Options readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    describe(parser);
    Options options;
    if (!parser.parse(arguments)) {
        options.problem = parser.errorText();
    } else if (!parser.positionalArguments().isEmpty()) {
        options.problem =
            QStringLiteral("Not understood: %1").arg(parser.positionalArguments().constFirst());
    }
    options.help = parser.isSet(QStringLiteral("help"));
    options.tour = parser.isSet(QStringLiteral("tour"));
    options.outputFolder = parser.value(QStringLiteral("out"));
    options.server = parser.value(QStringLiteral("server"));
    options.version = parser.value(QStringLiteral("version"));
    readLanguage(parser.value(QStringLiteral("language")), options);
    const QStringList cameras = parser.values(QStringLiteral("camera"));
    const QStringList samples = {QStringLiteral("Dome-24=4.1.9"), QStringLiteral("Mini-12=3.5")};
    readCameras(cameras.isEmpty() ? samples : cameras, options);
    return options;
}

QString problemOfTour(const Options& options)
{
    if (options.problem.isEmpty() && !options.server.isEmpty()) {
        return QStringLiteral("The tour plays with the server inside the application; --server "
                              "needs a display and no --tour.");
    }
    return options.problem;
}

QString helpText()
{
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}

QStringList rawArguments(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    return arguments;
}

bool hasDisplay()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    return platform != "offscreen" && platform != "minimal" &&
           (!qEnvironmentVariableIsEmpty("DISPLAY") ||
            !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
}
