// update-catalogue: tells release managers what a catalogue does before it is published.
#include <QApplication>
#include <QHashFunctions>
#include <QNetworkProxyFactory>
#include <QScopedPointer>

#include "host/Core/Log.h"
#include "tools/screenshots/OrdinaryScreen.h"
#include "tools/update-catalogue/Command.h"

namespace {

/** The commands say in sentences of their own what the library only notes in its log. */
void silenceLog()
{
    for (const int level : {1, 2, 3}) {
        vx::Log::instance().setStream(static_cast<vx::Log::ELevel>(level), nullptr);
    }
}

/** What "--language" says, which Qt reads only after the language of the system. */
QByteArray languageFrom(int argc, char** argv)
{
    const QByteArray option = "--language";
    QByteArray language = "en";
    for (int i = 2; i < argc; ++i) {
        const QByteArray argument = argv[i];
        if (argument == option && i + 1 < argc) {
            language = argv[i + 1];
        } else if (argument.startsWith(option + '=')) {
            language = argument.mid(option.size() + 1);
        }
    }
    return language;
}

/** Dates and hidden rows follow the system's language; names of files stay in UTF-8. */
void useAsSystemLanguage(const QByteArray& language)
{
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LC_NUMERIC", "LC_TIME"}) {
        qunsetenv(variable);
    }
    qputenv("LANG", language);
    qputenv("LC_CTYPE", "C.UTF-8");
}

QCoreApplication* createApplication(int& argc, char** argv)
{
    const vx::Command* command = argc > 1 ? vx::findCommand(argv[1]) : nullptr;
    if (command == nullptr || !command->needsWidgets) {
        return new QCoreApplication(argc, argv);
    }
    // Pictures are made without a display, so that a release pipeline can make them, too.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    vx::screenshots::prepareOrdinaryScreen();
    useAsSystemLanguage(languageFrom(argc, argv));
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
