// What signatures cost: to verify a catalogue of ten thousand packages, to note its digests, and to
// hash a package off the event loop beside sha256sum.
//
// Usage: bench_trust [option of the benchmark library...]
//        bench_trust --package FILE        any file; it is hashed by both, in turn

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>

#include <benchmark/benchmark.h>

#include "download/internal/catalogue/CatalogueParser.h"
#include "tools/signing/SigningKey.h"
#include "trust/internal/FileDigest.h"
#include "trust/internal/FileVerification.h"
#include "trust/internal/PackageDigests.h"
#include "trust/internal/SealVerification.h"

namespace {

using vx::SigningKey;

constexpr qint64 signedAt = 1764000000;

QByteArray catalogue()
{
    QByteArray text("<softwareList>\n");
    for (int i = 0; i < 10000; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "<package><name>CameraManager</name><release>0." + number +
                "</release><status>STABLE</status><platform>Mac64</platform><file-size>12MB"
                "</file-size><sha256>" +
                QByteArray::number(i).rightJustified(64, 'a') +
                "</sha256><url>http://a.example.com/" + number + ".zip</url></package>\n";
    }
    return text + "</softwareList>\n";
}

void judge(benchmark::State& state)
{
    const SigningKey key = SigningKey::generate();
    const auto form = static_cast<SigningKey::Form>(state.range(0));
    const QByteArray sealed = key.sealed(catalogue(), signedAt, 0, form);
    const vx::PublicKeys keys{*vx::readPublicKey(key.publicKey().toLatin1())};
    for (auto _ : state) {
        const vx::SealReading reading = vx::judgeSealed(sealed, keys, {signedAt, signedAt});
        if (reading.outcome != vx::SealOutcome::Accepted) {
            state.SkipWithError("refused");
        }
    }
    state.counters["bytes"] = sealed.size();
}

void read(benchmark::State& state)
{
    QByteArray document = catalogue();
    for (auto _ : state) {
        QBuffer device(&document);
        device.open(QIODevice::ReadOnly);
        vx::PackageDigests digests;
        const bool wantsDigests = state.range(0) != 0;
        benchmark::DoNotOptimize(
            vx::CatalogueParser::parseXML(&device, wantsDigests ? &digests : nullptr));
    }
}

BENCHMARK(judge)->Arg(SigningKey::Prehashed)->Arg(SigningKey::Pure)->Unit(benchmark::kMillisecond);
BENCHMARK(read)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

qint64 sha256sum(const QString& path)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(QStringLiteral("sha256sum"), {path});
    process.waitForFinished(-1);
    return timer.elapsed();
}

/** Runs a verification in the event loop and notes the longest time that a timer had to wait. */
struct Run
{
    qint64 total = 0;
    qint64 longestStall = 0;
    bool isSame = false;
};

Run verify(const QString& path, const QByteArray& digest)
{
    Run run;
    QEventLoop loop;
    QElapsedTimer total;
    QElapsedTimer sinceTick;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, &ticks,
                     [&] { run.longestStall = std::max(run.longestStall, sinceTick.restart()); });
    total.start();
    sinceTick.start();
    ticks.start(0);
    auto* const verification = new vx::FileVerification(path, digest, nullptr);
    QObject::connect(verification, &vx::FileVerification::ended, &loop, [&](bool isSame) {
        run.isSame = isSame;
        loop.quit();
    });
    verification->start();
    loop.exec();
    run.total = total.elapsed();
    return run;
}

/** From the call to the end of the object, thread included. */
qint64 cancel(const QString& path)
{
    QEventLoop loop;
    QElapsedTimer timer;
    auto* const verification = new vx::FileVerification(path, QByteArray(), nullptr);
    QObject::connect(verification, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer::singleShot(20, verification, [&] {
        timer.start();
        verification->cancel();
    });
    verification->start();
    loop.exec();
    return timer.elapsed();
}

int hashPackage(const QString& path)
{
    const QByteArray digest = vx::sha256OfFile(path).value_or(QByteArray());
    std::printf("round  ours, ms  sha256sum, ms  ratio  longest stall, ms  cancel, ms\n");
    for (int round = 1; round <= 5; ++round) {
        const qint64 theirs = sha256sum(path);
        const Run ours = verify(path, digest);
        if (!ours.isSame) {
            std::printf("%s cannot be verified: others may write to it\n", qPrintable(path));
            return 1;
        }
        std::printf("%5d %9lld %14lld %6.2f %18lld %11lld\n", round, ours.total, theirs,
                    double(theirs) / double(std::max<qint64>(ours.total, 1)), ours.longestStall,
                    cancel(path));
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == QLatin1String("--package")) {
        return hashPackage(QFileInfo(arguments[2]).absoluteFilePath());
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
