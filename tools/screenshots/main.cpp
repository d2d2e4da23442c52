// vx_screenshots FOLDER: renders both dialogs in each state, language, font size and palette.
//
// Needs no display: without QT_QPA_PLATFORM it uses the offscreen platform. The folder is made if
// it is missing; files of the same name are replaced.

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPixmap>
#include <QTextStream>

#include "tools/screenshots/DialogScenes.h"
#include "tools/screenshots/OrdinaryScreen.h"

using namespace vx::screenshots;

namespace {

bool saveScene(const Scene& scene, const QString& path)
{
    const QScopedPointer<QDialog> dialog(scene.build());
    openAsOnOrdinaryScreen(*dialog);
    dialog->show();
    // Twice: the first round lays the dialog out, the second one what became visible by that.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    return dialog->grab().save(path);
}

bool saveAll(const QDir& folder, QTextStream& out, QTextStream& err)
{
    for (const Look& look : looks()) {
        const AppliedLook applied(look);
        for (const Scene& scene : scenes()) {
            const QString path = folder.filePath(scene.name + '-' + look.name() + ".png");
            if (!saveScene(scene, path)) {
                err << "vx_screenshots: cannot write " << path << '\n';
                return false;
            }
            out << path << '\n';
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    prepareOrdinaryScreen();
    const QApplication application(argc, argv);
    useOrdinaryFont();
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 || arguments.at(1).startsWith('-')) {
        err << "Usage: vx_screenshots FOLDER\n";
        return 2;
    }
    const QDir folder(arguments.at(1));
    if (!folder.mkpath(".")) {
        err << "vx_screenshots: cannot make the folder " << folder.path() << '\n';
        return 1;
    }
    return saveAll(folder, out, err) ? 0 : 1;
}
