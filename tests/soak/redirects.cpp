// Hundreds of downloads that are redirected from http to https through a proxy that asks for a
// password, some of them cancelled at random moments: the combination in which Qt's network thread
// crashes if it is told of a read buffer too early.
//
// Usage: vx_redirects [DOWNLOADS [CANCELLED [SEED]]]      exit code 0 if each ended as it must
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QTextStream>
#include <QTimer>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/host/NetworkHttp/ResultReceiver.h"
#include "tests/host/NetworkHttp/Squid.h"
#include "tests/host/NetworkHttp/TlsRedirect.h"

namespace {

using namespace vx::test;

constexpr int longestWait = 60000;
constexpr int fileSize = 300000;

QTextStream& output()
{
    static QTextStream stream(stdout);
    return stream;
}

void wait(const std::function<bool()>& isDone, int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!isDone() && clock.elapsed() < milliseconds) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    }
}

/** The server and the proxies, which run as long as this lives. */
struct Network
{
    TlsRedirect server{308};
    Squid basic{Squid::Basic};
    Squid digest{Squid::Digest};

    bool start()
    {
        return server.makeCertificates() && server.addFile("file", fileSize, "body") &&
               server.start() && basic.start() && digest.start();
    }

    vx::HttpHost hostThrough(const Squid& squid) const
    {
        const vx::HttpAccess target("127.0.0.1", server.port(), "", "");
        return {target, vx::HttpAccess("127.0.0.1", squid.port(), "clerk", "secret"), ""};
    }
};

bool download(const vx::HttpHost& host)
{
    HttpClient client(host);
    ResultReceiver receiver;
    const RequestPtr request =
        client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    wait([&] { return !receiver.results.isEmpty(); }, longestWait);
    return receiver.results.size() == 1 && request->statusCode == 200 &&
           request->requestUrls.size() == 2 && request->getResponseBuffer()->size() == fileSize;
}

bool cancel(const vx::HttpHost& host, int after)
{
    HttpClient client(host);
    ResultReceiver receiver;
    client.get("/file", &receiver, SLOT(queryResult(RequestPtr)), ownBuffer());
    wait([] { return false; }, after);
    client.reset();
    return !client.isExecutingRequest();
}

/** How many of @p rounds end as they must, half of them with each kind of login. */
int successes(const Network& network, int rounds,
              const std::function<bool(const vx::HttpHost&)>& run)
{
    int good = 0;
    for (int round = 0; round < rounds; ++round) {
        good += run(network.hostThrough(round % 2 == 0 ? network.basic : network.digest)) ? 1 : 0;
    }
    return good;
}

int numberAt(int index, int otherwise)
{
    const QStringList arguments = QCoreApplication::arguments();
    return index < arguments.size() ? arguments.at(index).toInt() : otherwise;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int downloads = numberAt(1, 1000);
    const int cancelled = numberAt(2, 200);
    QRandomGenerator random(static_cast<quint32>(numberAt(3, 1)));
    Network network;
    if (!network.start()) {
        output() << network.server.output() << network.basic.output() << network.digest.output();
        return 2;
    }
    const Trust trust(network.server.authority().certificate());
    QElapsedTimer clock;
    clock.start();
    const int whole = successes(network, downloads, download);
    const int stopped = successes(network, cancelled, [&random](const vx::HttpHost& host) {
        return cancel(host, random.bounded(60));
    });
    output() << whole << " of " << downloads << " downloads whole, " << stopped << " of "
             << cancelled << " cancelled, " << clock.elapsed() / 1000 << " s" << Qt::endl;
    return whole == downloads && stopped == cancelled ? 0 : 1;
}
