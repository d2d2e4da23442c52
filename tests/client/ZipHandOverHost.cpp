// A host application that hands over to the update helper, as far as that goes. If it comes back,
// it prints the log, a line per line with the level in front, and the boxes that it saw.
//
//     ZipHandOverHost start         calls the slot that starts the helper
//     ZipHandOverHost unprivileged  the same, subject to file permissions even as root
//     ZipHandOverHost road          checks, downloads, unpacks and presses "Restart now"

#include <QApplication>
#include <QtTest>

#include <cstdio>

#include "tests/client/InstallationFixture.h"
#include "tests/support/FileRights.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

void goTheWholeRoad(InstallationFixture& fixture)
{
    const QByteArray archive = ZipBuilder{file("application/program")}.bytes();
    fixture.serve("/files/mini-12.zip", archive);
    fixture.openList({"http://download.example.com/files/mini-12.zip"}, archive.size());
    fixture.boxes.willClick("Proceed");
    fixture.boxes.willClick("Restart now");
    clickInstall(0);
    // Two boxes are answered; a third one says that the process was not replaced.
    if (!QTest::qWaitFor([&fixture] { return fixture.boxes.seen().size() == 3; }, 20000)) {
        qFatal("the road has no end");
    }
}

void report(const InstallationFixture& fixture)
{
    for (const QString& line : fixture.log.allLines()) {
        std::printf("%s\n", qPrintable(line));
    }
    for (const SeenBox& box : fixture.boxes.seen()) {
        std::printf("box %s: %s\n", qPrintable(box.title), qPrintable(box.text));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QString mode = QApplication::arguments().value(1);
    InstallationFixture fixture;
    if (mode == "unprivileged" && !submitToFileRights()) {
        return 2;
    }
    if (mode == "road") {
        goTheWholeRoad(fixture);
    } else {
        QMetaObject::invokeMethod(&fixture.client(), "startZipInstall", Qt::DirectConnection);
    }
    report(fixture);
    return 0;
}
