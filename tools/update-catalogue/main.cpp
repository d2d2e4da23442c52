// update-catalogue: tells release managers what a catalogue does before it is published.
#include <QApplication>
#include <QHashFunctions>
#include <QNetworkProxyFactory>
#include <QScopedPointer>

#include "host/Core/Log.h"
#include "tools/update-catalogue/Command.h"

namespace {

/** The commands say in sentences of their own what the library only notes in its log. */
void silenceLog()
{
    for (const int level : {1, 2, 3}) {
        vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(level), nullptr);
    }
}

/** Dates and hidden rows follow the system's language, which Qt reads before it reads options. */
void useSystemLanguage(int argc, char** argv)
{
    for (int i = 2; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "--language") == 0) {
            qputenv("LC_ALL", argv[i + 1]);
        }
    }
}

QCoreApplication* createApplication(int& argc, char** argv)
{
    const vx::Command* command = argc > 1 ? vx::findCommand(argv[1]) : nullptr;
    if (command == nullptr || !command->needsWidgets) {
        return new QCoreApplication(argc, argv);
    }
    // Pictures are made without a display, so that a release pipeline can make them, too.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    useSystemLanguage(argc, argv);
    return new QApplication(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    // Words of a set come in an order that changes from run to run; what is printed should not.
    qSetGlobalQHashSeed(0);
    const QScopedPointer<QCoreApplication> application(createApplication(argc, argv));
    silenceLog();
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    vx::Terminal terminal(stdout);
    return vx::runCommandLine(QCoreApplication::arguments(), terminal);
}
