#include "tests/support/TestMain.h"

#include <QApplication>
#include <QDir>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

void setFolder(const char* variable, const QString& folder)
{
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv(variable, QFile::encodeName(folder));
}

} // namespace

int vx::test::runTest(int argc, char** argv, QObject* (*createTest)())
{
    QTemporaryDir surroundings;
    setFolder("HOME", surroundings.filePath("home"));
    setFolder("XDG_CONFIG_HOME", surroundings.filePath("config"));
    setFolder("XDG_CACHE_HOME", surroundings.filePath("cache"));
    setFolder("XDG_DATA_HOME", surroundings.filePath("data"));
    setFolder("XDG_RUNTIME_DIR", surroundings.filePath("runtime"));
    setFolder("TMPDIR", surroundings.filePath("tmp"));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QScopedPointer<QObject> test(createTest());
    return QTest::qExec(test.data(), argc, argv);
}
