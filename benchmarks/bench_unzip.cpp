// Unpacks one archive as an application would, and measures it.
//
// bench_unzip <archive> <folder>
//     With vx::Unzipper. Prints the seconds from its construction to its report, and the longest
//     time in milliseconds for which the event loop did not get to a timer due every millisecond.
// bench_unzip --cancel <archive> <folder>
//     With vx::ZipReader, whose dialog is cancelled as soon as it has got anywhere. Prints the
//     milliseconds from the cancel to the return of the call.
// bench_unzip --idle <seconds>
//     Does nothing for that long, and prints the longest time in milliseconds for which the event
//     loop did not get to its timer all the same: what the machine itself makes every program wait.
//
// compare_unzip.sh calls them in turn, beside other programs.

#include <QApplication>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QProgressDialog>
#include <QTimer>

#include <algorithm>
#include <cstdio>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/Unzipper.h"
#include "host/FileFormatsZip/ZipReader.h"

namespace {

/** Notes the longest time between two turns of the event loop. */
class StallMeter
{
public:
    StallMeter()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_longest = std::max(m_longest, m_sinceTurn.nsecsElapsed());
            m_sinceTurn.restart();
        });
        m_sinceTurn.start();
        m_timer.start(1);
    }

    double milliseconds() const { return static_cast<double>(m_longest) / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTurn;
    qint64 m_longest = 0;
};

int unpack(const QString& archive, const QString& folder)
{
    QElapsedTimer running;
    running.start();
    vx::Unzipper unzipper(archive, folder, false);
    QObject::connect(&unzipper, &vx::Unzipper::unzippingDone, [] { QApplication::exit(0); });
    QObject::connect(&unzipper, &vx::Unzipper::unzippingFailed, [](const QString& reason) {
        std::fprintf(stderr, "%s\n", qPrintable(reason));
        QApplication::exit(1);
    });
    const StallMeter stalls;
    const int exitCode = QApplication::exec();
    std::printf("%.3f %.1f\n", static_cast<double>(running.nsecsElapsed()) / 1e9,
                stalls.milliseconds());
    return exitCode;
}

int idle(const QString& seconds)
{
    const StallMeter stalls;
    QTimer::singleShot(static_cast<int>(seconds.toDouble() * 1000), [] { QApplication::exit(0); });
    QApplication::exec();
    std::printf("%.1f\n", stalls.milliseconds());
    return 0;
}

int cancel(const QString& archive, const QString& folder)
{
    QProgressDialog dialog;
    QElapsedTimer sinceCancel;
    QObject::connect(dialog.findChild<QProgressBar*>(), &QProgressBar::valueChanged, &dialog,
                     [&](int value) {
                         if (value > 0 && !sinceCancel.isValid()) {
                             sinceCancel.start();
                             QMetaObject::invokeMethod(&dialog, "canceled", Qt::QueuedConnection);
                         }
                     });
    vx::ZipReader reader(archive, nullptr);
    reader.attachProgressDialog(&dialog);
    reader.open(QIODevice::ReadOnly);
    try {
        reader.extractFiles(reader.fileList(QRegExp()), folder, false);
    } catch (const vx::IOException& exception) {
        std::fprintf(stderr, "%s\n", qPrintable(exception.message()));
        return 1;
    }
    std::printf("%.1f\n", static_cast<double>(sinceCancel.nsecsElapsed()) / 1e6);
    return reader.wasCanceled() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == QLatin1String("--idle")) {
        return idle(arguments.at(2));
    }
    if (arguments.size() == 3) {
        return unpack(arguments.at(1), arguments.at(2));
    }
    if (arguments.size() == 4 && arguments.at(1) == QLatin1String("--cancel")) {
        return cancel(arguments.at(2), arguments.at(3));
    }
    std::fprintf(stderr, "usage: %s [--cancel] <archive> <folder>, or --idle <seconds>\n", argv[0]);
    return 2;
}
