// Thousands of checks, offers, finished, broken and cancelled downloads in one process against a
// server that misbehaves. Memory, open files and threads must be at the end what they were after
// the first rounds.
//
// Usage: vx_soak [ROUNDS [SEED]]      exit code 0 if nothing grew
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <malloc.h>

#include <functional>

#include "client/SoftwareUpdateClient.h"
#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "download/DownloadManager.h"
#include "host/Core/Log.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sanitizers.h"
#include "tools/server/UpdateServer.h"

namespace {

constexpr int longestWait = 30000;
constexpr int warmUpRounds = 100;
#if VX_ADDRESS_SANITIZER || VX_THREAD_SANITIZER
// Sanitizers keep what is freed for a while.
constexpr qint64 allowedGrowthKilobytes = 1024 * 1024;
#else
constexpr qint64 allowedGrowthKilobytes = 4096;
#endif

const QByteArray catalogue =
    "<softwareList status=\"STABLE\"><package name=\"Soak\" release=\"2.0\" platform=\"Mac64\" "
    "file-size=\"100000\" url=\"http://download.example.com/Soak.mpkg.zip\"/></softwareList>";

/** What the process holds of the system. */
struct Resources
{
    qint64 kilobytes = 0;
    int files = 0;
    int threads = 0;
};

qint64 residentKilobytes()
{
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.simplified().split(' ').value(1).toLongLong();
        }
    }
    return 0;
}

int entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/** Lets the threads of connections that are closed come to their end. */
void settle()
{
    QEventLoop loop;
    QTimer::singleShot(1000, &loop, SLOT(quit()));
    loop.exec();
}

Resources measure()
{
    settle();
    malloc_trim(0);
    return {residentKilobytes(), entries("/proc/self/fd"), entries("/proc/self/task")};
}

bool waitUntil(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    QTimer wake;
    wake.start(1000);
    while (!condition() && timer.elapsed() < longestWait) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

vx::ServedReply randomReply(QRandomGenerator& random, const QByteArray& body)
{
    vx::ServedReply reply;
    reply.body = body;
    switch (random.bounded(8)) {
    case 0:
        reply.fault = vx::ServedReply::CloseEarly;
        reply.bytesBeforeFault = random.bounded(body.size());
        break;
    case 1:
        reply.fault = vx::ServedReply::Reset;
        reply.bytesBeforeFault = random.bounded(body.size());
        break;
    case 2:
        reply.status = 404;
        break;
    case 3:
        reply.body = body.left(body.size() / 2);
        break;
    case 4:
        reply.body.clear();
        break;
    default:
        break;
    }
    return reply;
}

/** One process full of the library's objects, made to work round after round. */
class Soak
{
public:
    explicit Soak(quint32 seed)
        : m_random(seed)
    {
        m_server.start();
        m_client.reset(new vx::SoftwareUpdateClient(
            "Soak", vx::VersionNumber("1.0"), m_server.url("/catalogue.xml").toString(), nullptr));
    }

    bool round() { return check() && download(); }

private:
    bool check()
    {
        m_server.setReply("/catalogue.xml", randomReply(m_random, catalogue));
        vx::test::LogCapture log;
        m_client->checkForUpdate();
        const bool ended = waitUntil([&log] {
            return log.contains(1, "-> update available") ||
                   log.contains(1, "product is up to date!") ||
                   log.contains(3, "-> no update available") ||
                   log.contains(3, "Timeout occurred requesting update server!");
        });
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (qobject_cast<vx::SoftwareUpdateAvailableDialog*>(widget) != nullptr) {
                widget->close();
            }
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_server.clearRequests();
        return ended;
    }

    bool download()
    {
        m_server.setReply("/Soak.mpkg.zip", randomReply(m_random, QByteArray(100000, 'x')));
        const vx::HttpAccess proxy("127.0.0.1", m_server.port(), QString(), QString());
        vx::DownloadManager manager(vx::HttpHost(vx::HttpAccess(), proxy, QString()), QString());
        bool ended = false;
        const auto end = [&ended] { ended = true; };
        using Manager = vx::DownloadManager;
        QObject::connect(&manager, QOverload<>::of(&Manager::downloadSuccess), end);
        QObject::connect(&manager, QOverload<int>::of(&Manager::downloadFailure), end);
        QObject::connect(&manager, &Manager::downloadAborted, end);

        vx::PackageInfo package;
        package.url = QUrl("http://download.example.com/Soak.mpkg.zip");
        package.fileSize = 100000;
        manager.startDownload(package, m_folder.filePath("Soak.mpkg.zip"));
        if (m_random.bounded(4) == 0) {
            QCoreApplication::processEvents();
            manager.abortDownload();
        }
        return waitUntil([&ended] { return ended; });
    }

    QRandomGenerator m_random;
    QTemporaryDir m_folder;
    vx::UpdateServer m_server;
    QScopedPointer<vx::SoftwareUpdateClient> m_client;
};

void print(const QString& when, const Resources& resources)
{
    QTextStream(stdout) << QString("%1 %2 kB resident, %3 open files, %4 threads\n")
                               .arg(when, -8)
                               .arg(resources.kilobytes)
                               .arg(resources.files)
                               .arg(resources.threads);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setApplicationName("Soak");
    QApplication::setQuitOnLastWindowClosed(false);
    const int rounds = argc > 1 ? QByteArray(argv[1]).toInt() : 5000;
    const quint32 seed = argc > 2 ? QByteArray(argv[2]).toUInt() : 1;

    Soak soak(seed);
    Resources before;
    for (int i = 0; i < warmUpRounds + rounds; ++i) {
        if (i == warmUpRounds) {
            before = measure();
        }
        if (!soak.round()) {
            QTextStream(stdout) << "round " << i << " came to no end\n";
            return 1;
        }
    }
    const Resources after = measure();
    print("before", before);
    print("after", after);
    const bool grew = after.kilobytes > before.kilobytes + allowedGrowthKilobytes ||
                      after.files > before.files || after.threads > before.threads;
    return grew ? 1 : 0;
}
