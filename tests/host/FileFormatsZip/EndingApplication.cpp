// An application that ends while it unpacks an archive.
//
// Usage: ending_application <way> <archive> <folder>
// The ways: "quit" leaves the event loop, "return" never entered it by exec(), "exit" calls exit()
// from a slot, "destroy" destroys the job and quits at once, "unpack" waits for the end and prints
// the reason of a failure.

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

#include "host/FileFormatsZip/Unzipper.h"

namespace {

/** Calls @p action when the first file has appeared. */
template <typename Action>
void onceUnderWay(QTimer& timer, const QString& folder, Action action)
{
    QObject::connect(&timer, &QTimer::timeout, &timer, [&timer, folder, action] {
        if (QFileInfo(folder + QStringLiteral("/zeros")).size() > 0) {
            timer.stop();
            action();
        }
    });
    timer.start(1);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        return 2;
    }
    const QString way = arguments.at(1);
    QTimer timer;
    QEventLoop loop;
    // But for one way never deleted, as by callers whose job lives as long as the process.
    auto* const unzipper = new vx::Unzipper(arguments.at(2), arguments.at(3), false);
    if (way == QLatin1String("unpack")) {
        QObject::connect(unzipper, &vx::Unzipper::unzippingDone, [] { std::exit(0); });
        QObject::connect(unzipper, &vx::Unzipper::unzippingFailed, [](const QString& reason) {
            std::fputs(qPrintable(reason), stdout);
            std::exit(1);
        });
        return QCoreApplication::exec();
    }
    if (way == QLatin1String("quit")) {
        onceUnderWay(timer, arguments.at(3), [] { QCoreApplication::quit(); });
        return QCoreApplication::exec();
    }
    if (way == QLatin1String("destroy")) {
        onceUnderWay(timer, arguments.at(3), [unzipper] {
            delete unzipper;
            QCoreApplication::quit();
        });
        return QCoreApplication::exec();
    }
    if (way == QLatin1String("exit")) {
        onceUnderWay(timer, arguments.at(3), [] { std::exit(0); });
        return QCoreApplication::exec();
    }
    onceUnderWay(timer, arguments.at(3), [&loop] { loop.quit(); });
    return loop.exec();
}
