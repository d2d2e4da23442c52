// One download to a file, measured from inside: how long it takes, how much memory it needs above
// the idle process, and how long the event loop is kept waiting. Prints one line of JSON, which
// compare_download.py sets beside curl.
//
// Usage: bench_download URL FILE

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>
#include <QTimer>

#include <algorithm>

#include "host/NetworkHttp/HttpClient.h"

namespace {

/** Milliseconds for which the idle event loop is watched first, for comparison. */
constexpr int idleTime = 1000;

/** A value of /proc/self/status in KiB: "VmRSS:" is memory in use, "VmHWM:" the most ever. */
qint64 memory(const char* name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name)) {
            return line.mid(int(qstrlen(name))).trimmed().split(' ').first().toLongLong();
        }
    }
    return 0;
}

/** Ticks every millisecond and keeps the longest time between two ticks. */
class Heartbeat : public QObject
{
    Q_OBJECT

public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, SIGNAL(timeout()), this, SLOT(beat()));
        m_timer.start(1);
        m_sinceBeat.start();
    }

    /** The longest wait so far in milliseconds; forgets it. */
    double takeLongest()
    {
        beat();
        return double(std::exchange(m_longest, 0)) / 1e6;
    }

private slots:
    void beat()
    {
        m_longest = std::max(m_longest, m_sinceBeat.nsecsElapsed());
        m_sinceBeat.start();
    }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longest = 0;
};

/** Runs one download and reports it. */
class Run : public QObject
{
    Q_OBJECT

public:
    Run(const QUrl& url, const QString& fileName)
        : m_url(url)
        , m_file(fileName)
    {}

public slots:
    void start()
    {
        m_idleStall = m_heartbeat.takeLongest();
        m_idleMemory = memory("VmRSS:");
        vx::HttpHost host;
        host.server.setUrl(m_url);
        m_client.setHost(host);
        m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        m_clock.start();
        m_client.get(HttpClient::encodedUrlPath(m_url), this, SLOT(report(RequestPtr)), &m_file);
    }

private slots:
    void report(const RequestPtr& request)
    {
        m_file.close();
        const double seconds = double(m_clock.nsecsElapsed()) / 1e9;
        QTextStream(stdout) << "{\"status\": " << request->statusCode
                            << ", \"bytes\": " << m_file.size() << ", \"seconds\": " << seconds
                            << ", \"memory_kib\": " << memory("VmHWM:") - m_idleMemory
                            << ", \"idle_stall_ms\": " << m_idleStall
                            << ", \"stall_ms\": " << m_heartbeat.takeLongest() << "}\n";
        QCoreApplication::quit();
    }

private:
    QUrl m_url;
    QFile m_file;
    HttpClient m_client;
    Heartbeat m_heartbeat;
    QElapsedTimer m_clock;
    double m_idleStall = 0;
    qint64 m_idleMemory = 0;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        QTextStream(stderr) << "usage: bench_download URL FILE\n";
        return 2;
    }
    Run run(QUrl(arguments.at(1)), arguments.at(2));
    QTimer::singleShot(idleTime, &run, SLOT(start()));
    return QCoreApplication::exec();
}

#include "bench_download.moc"
