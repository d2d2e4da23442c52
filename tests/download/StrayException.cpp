// Installs an archive while a host library breaks the rules: its folder dialog throws what is no
// ExceptionQt. Exits with 8 if that reaches the caller.

#include <QApplication>

#include "download/DownloadManager.h"
#include "host/IO/FileUtils.h"

// Goes before the one in the library, which it stands for.
bool vx::FileUtils::openDirectoryDialog(QString&, const QString&, const QString&, QWidget*)
{
    throw 1;
}

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    vx::DownloadManager engine;
    try {
        engine.runInstaller(QStringLiteral("package.zip"));
    } catch (...) {
        return 8;
    }
    return 0;
}
