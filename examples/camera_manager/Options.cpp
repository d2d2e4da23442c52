#include "examples/camera_manager/Options.h"

#include <QCommandLineParser>

namespace {

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "A small application that keeps itself and its cameras up to date. It brings an update\n"
        "server of its own unless --server names another.");
    parser.addOptions({
        {"tour", "Walk through the whole flow without a user and save pictures of it. This "
                 "is what happens without a display, too."},
        {"out", "Folder for the tour's pictures, \"build/demo\".", "folder", "build/demo"},
        {"server", "Address of the catalogue.", "url"},
        {"version", "Version of the application, \"5.2.1\". The tour needs one below 5.3.",
         "version", "5.2.1"},
        {"camera",
         "A camera with its firmware; may be given several times. \"Dome-24=4.1.9\" "
         "and \"Mini-12=3.5\".",
         "name=version"},
        {"language", "\"en\", \"de\" or \"fr\".", "language"},
        {{"h", "help"}, "Show this help."},
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
    const QStringList known = {QString(), "en", "de", "fr"};
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
    options.help = parser.isSet("help");
    options.tour = parser.isSet("tour");
    options.outputFolder = parser.value("out");
    options.server = parser.value("server");
    options.version = parser.value("version");
    readLanguage(parser.value("language"), options);
    const QStringList cameras = parser.values("camera");
    const QStringList samples = {"Dome-24=4.1.9", "Mini-12=3.5"};
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
