// Unpacks one archive with vx::Unzipper, as an application would, and says how long it took.
//
// Usage: unzip_once <archive> <folder>
// Prints the seconds from the start of the job to its report, and the longest time in milliseconds
// for which the event loop did not get to a timer that is due every millisecond.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>

#include "host/FileFormatsZip/Unzipper.h"

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <archive> <folder>\n", argv[0]);
        return 2;
    }
    int exitCode = 1;
    qint64 longestStall = 0;
    QElapsedTimer sinceStart;
    QElapsedTimer sinceTick;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, &tick, [&] {
        longestStall = std::max(longestStall, sinceTick.nsecsElapsed());
        sinceTick.restart();
    });

    vx::Unzipper unzipper(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]), false);
    QObject::connect(&unzipper, &vx::Unzipper::unzippingDone, &tick, [&] {
        exitCode = 0;
        QCoreApplication::quit();
    });
    QObject::connect(&unzipper, &vx::Unzipper::unzippingFailed, &tick, [](const QString& reason) {
        std::fprintf(stderr, "%s\n", qPrintable(reason));
        QCoreApplication::quit();
    });
    sinceStart.start();
    sinceTick.start();
    tick.start(1);
    QCoreApplication::exec();
    std::printf("%.3f %.1f\n", static_cast<double>(sinceStart.nsecsElapsed()) / 1e9,
                static_cast<double>(longestStall) / 1e6);
    return exitCode;
}
