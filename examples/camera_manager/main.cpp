// Camera Manager: the smallest application that keeps itself and its cameras up to date.
//
// It shows, in the order in which a host needs them:
//
//   QCoreApplication::setApplicationName     the name that packages are matched with
//   SoftwareUpdateClient(...)                one object, for the time that the event loop runs
//   setCurrentCameraVersions                 the cameras whose firmware is looked for
//   queryForUpdate                           behind a menu entry (CameraManagerWindow.cpp)
//   UpdateTrust::requireSignatures           refuses what the publisher did not sign
//   doInitialCheck                           once at the start
//   getCurrentSettings, setCurrentSettings   a setting that the host wants to have its way
//   NodeDB::setGlobalProxy                   the road of checks and downloads (EmbeddedServer.cpp)
//   QCoreApplication::installTranslator      the user's language (Language.cpp)
//
// Run it with scripts/demo, or from a build folder with examples/camera_manager/camera_manager. It
// brings an update server of its own. With --tour, or without a display, it uses itself: Tour.h.

#include <QApplication>
#include <QHashFunctions>
#include <QTextStream>

#include <memory>

#include "client/SoftwareUpdateClient.h"
#include "examples/camera_manager/CameraManagerWindow.h"
#include "examples/camera_manager/DesktopStandIn.h"
#include "examples/camera_manager/EmbeddedServer.h"
#include "examples/camera_manager/Language.h"
#include "examples/camera_manager/Options.h"
#include "examples/camera_manager/Tour.h"
#include "examples/camera_manager/TourSteps.h"
#include "examples/camera_manager/TourSurroundings.h"
#include "trust/UpdateTrust.h"

namespace {

constexpr int initialCheckDelayMs = 2000;

/** The address given to the constructor yields to one that an earlier run has stored; not here. */
void insistOnServer(vx::SoftwareUpdateClient& updates, const QString& address)
{
    vx::SoftwareUpdateSettings settings;
    updates.getCurrentSettings(&settings);
    settings.serverURL = address;
    updates.setCurrentSettings(&settings);
}

int runTour(CameraManagerWindow& window, EmbeddedServer& server, const QString& outputFolder)
{
    DesktopStandIn desktop;
    QObject::connect(&desktop, SIGNAL(opened(QString)), &window, SLOT(showMessage(QString)));
    Tour tour(outputFolder);
    addSteps(tour, window, server, desktop);
    tour.start();
    return QApplication::exec();
}

int run(const Options& options, bool tour)
{
    EmbeddedServer server(QApplication::applicationDirPath() + "/packages");
    QString address = options.server;
    if (address.isEmpty()) {
        if (!server.start()) {
            QTextStream(stderr) << server.problem() << '\n';
            return 1;
        }
        server.becomeProxy();
        address = server.catalogueUrl();
    }

    CameraManagerWindow window(options.version, options.cameras);
    const vx::VersionNumber version(options.version.toStdString());
    vx::SoftwareUpdateClient updates("Camera Manager", version, address, &window);
    insistOnServer(updates, address);
    updates.setCurrentCameraVersions(options.cameras);
    QObject::connect(&window, SIGNAL(checkForUpdates()), &updates, SLOT(queryForUpdate()));
    window.show();

    if (tour) {
        // It begins without signatures, as hosts do by default.
        return runTour(window, server, options.outputFolder);
    }
    if (options.server.isEmpty()) {
        vx::UpdateTrust::requireSignatures({server.publicKey()});
    }
    updates.doInitialCheck(initialCheckDelayMs);
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    // Words of a set stand in the order of their hashes; the table is to be the same at each start.
    qunsetenv("QT_HASH_SEED"); // would go before what is set here
    qSetGlobalQHashSeed(0);
    // A look ahead: the tour's surroundings must be there before Qt looks at the environment, and
    // Qt takes its own options out of the arguments only then.
    const Options ahead = readOptions(rawArguments(argc, argv));
    const bool tour = ahead.tour || !hasDisplay();
    std::unique_ptr<TourSurroundings> surroundings;
    if (tour) {
        surroundings = std::make_unique<TourSurroundings>(ahead.language);
    }

    QApplication application(argc, argv);
    QApplication::setOrganizationName("Example");
    QApplication::setApplicationName("CameraManager");
    QApplication::setApplicationDisplayName("Camera Manager");

    const Options options = readOptions(QApplication::arguments());
    if (options.help) {
        QTextStream(stdout) << helpText();
        return 0;
    }
    const QString problem = tour ? problemOfTour(options) : options.problem;
    if (!problem.isEmpty()) {
        QTextStream(stderr) << problem << '\n';
        return 2;
    }
    installLanguage(options.language);
    return run(options, tour);
}
