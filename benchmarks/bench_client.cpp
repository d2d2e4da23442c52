// What the client costs a host: to create it, and to check, beside what a bare request costs.

#include <QApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include "client/SoftwareUpdateClient.h"
#include "tools/server/UpdateServer.h"

namespace {

/** A catalogue of packages that are no newer than what is installed. */
QByteArray catalogue(int packages)
{
    QByteArray text("<softwareList>");
    for (int i = 0; i < packages; ++i) {
        text += "<package><type>Application</type><name>bench_client</name><release>0." +
                QByteArray::number(i) +
                "</release><status>STABLE</status>"
                "<platform>Mac32 Mac64</platform><file-size>12MB</file-size>"
                "<release-date>2012-03-04</release-date>"
                "<url>http://download.example.com/app.mpkg.zip</url></package>";
    }
    return text + "</softwareList>";
}

void serve(vx::UpdateServer& server, int packages)
{
    vx::ServedReply reply;
    reply.body = catalogue(packages);
    server.setReply(QStringLiteral("/"), reply);
    server.start();
}

// Each client of a process stores longer lists than the one before, so that the number is fixed.
void createClient(benchmark::State& state)
{
    for (auto _ : state) {
        const vx::SoftwareUpdateClient client(QStringLiteral("Product"), vx::VersionNumber("1.0"),
                                              QStringLiteral("http://127.0.0.1/"), nullptr);
    }
}

// The part of it that is Qt's: the same eleven values, read and written.
void readAndWriteSettings(benchmark::State& state)
{
    for (auto _ : state) {
        {
            const QSettings store(QStringLiteral("Bench"), QStringLiteral("store"));
            for (int key = 0; key < 11; ++key) {
                benchmark::DoNotOptimize(store.value(QString::number(key)));
            }
        }
        QSettings store(QStringLiteral("Bench"), QStringLiteral("store"));
        for (int key = 0; key < 11; ++key) {
            store.setValue(QString::number(key), qlonglong(state.iterations()));
        }
    }
}

QTimer* runningTimer(const vx::SoftwareUpdateClient& client)
{
    for (QTimer* timer : client.findChildren<QTimer*>()) {
        if (timer->isSingleShot() && timer->isActive()) {
            return timer;
        }
    }
    return nullptr;
}

// From the call to the verdict that the product is up to date.
void check(benchmark::State& state)
{
    vx::UpdateServer server;
    serve(server, int(state.range(0)));
    vx::SoftwareUpdateClient client(QStringLiteral("Product"), vx::VersionNumber("1.0"),
                                    server.url().toString(), nullptr);
    vx::SoftwareUpdateSettings record;
    client.getCurrentSettings(&record);
    record.serverURL = server.url().toString();
    client.setCurrentSettings(&record);
    for (auto _ : state) {
        client.checkForUpdate();
        const QTimer* timer = runningTimer(client);
        while (timer->isActive()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
}

// The same bytes from the same server, by a manager of its own as each check has it.
void bareRequest(benchmark::State& state)
{
    vx::UpdateServer server;
    serve(server, int(state.range(0)));
    for (auto _ : state) {
        QNetworkAccessManager manager;
        manager.setProxy(QNetworkProxy::NoProxy);
        QNetworkReply* reply = manager.get(QNetworkRequest(server.url()));
        while (!reply->isFinished()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        benchmark::DoNotOptimize(reply->readAll());
    }
}

} // namespace

BENCHMARK(createClient)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(readAndWriteSettings)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(bareRequest)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(check)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
