// update-catalogue: tells release managers what a catalogue does before it is published.
#include <QApplication>
#include <QScopedPointer>

#include "tools/update-catalogue/Command.h"

namespace {

QCoreApplication* createApplication(int& argc, char** argv)
{
    const vx::Command* command = argc > 1 ? vx::findCommand(argv[1]) : nullptr;
    if (command == nullptr || !command->needsWidgets) {
        return new QCoreApplication(argc, argv);
    }
    // Pictures are made without a display, so that a release pipeline can make them, too.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    const QScopedPointer<QCoreApplication> application(createApplication(argc, argv));
    vx::Terminal terminal(stdout);
    return vx::runCommandLine(QCoreApplication::arguments(), terminal);
}
