// Times the reading of catalogues and the selection from them. benchmarks/report.py runs it and
// makes a table of it.

#include <QBuffer>
#include <QCoreApplication>
#include <QDomDocument>
#include <QXmlStreamReader>

#include <memory>

#include <benchmark/benchmark.h>

#include "download/DownloadManager.h"
#include "host/FileFormatsXml/XmlUtils.h"

using namespace vx;

namespace {

constexpr int packagesInASet = 20;
constexpr int cameras = 64;

QByteArray package(int number)
{
    const QByteArray text = QByteArray::number(number);
    return "<package name=\"fw" + text + "\" public-name=\"Firmware " + text +
           "\" status=\"STABLE\">\n<release>4." + text + "</release>\n<release-date>2012-06-" +
           QByteArray::number(10 + number % 20) + " 12:30:00</release-date>\n<platform>Cam" +
           QByteArray::number(number % cameras) +
           "</platform>\n<comment>Read the notes first</comment>\n<file url=\"fw" + text +
           ".mpkg.zip\" file-size=\"12MB\" language=\"en de\"/>\n</package>\n";
}

QByteArray flatCatalogue(int packages)
{
    QByteArray text = "<softwareList type=\"Camera Firmware\" base-url=\"http://host/files/\">\n";
    for (int number = 0; number < packages; ++number) {
        text += package(number);
    }
    return text + "</softwareList>\n";
}

QByteArray nestedCatalogue(int packages)
{
    QByteArray text = "<softwareList type=\"Camera Firmware\" base-url=\"http://host/files/\">\n";
    for (int number = 0; number < packages; ++number) {
        if (number % packagesInASet == 0) {
            text += "<package-set public-release=\"V4\" platform=\"All\">\n"
                    "<release-notes language=\"en\" url=\"http://host/notes\"/>\n<package-set>\n";
        }
        text += package(number);
        if ((number + 1) % packagesInASet == 0 || number + 1 == packages) {
            text += "</package-set>\n</package-set>\n";
        }
    }
    return text + "</softwareList>\n";
}

PackageInfoList parsed(QByteArray text)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    return DownloadManager::parseXML(&device);
}

using Catalogue = QByteArray (*)(int packages);

// The least that any reading of XML takes.
void readTokens(benchmark::State& state, Catalogue catalogue)
{
    const QByteArray text = catalogue(int(state.range(0)));
    for (auto _ : state) {
        QXmlStreamReader reader(text);
        while (!reader.atEnd()) {
            reader.readNext();
        }
        benchmark::DoNotOptimize(reader.error());
    }
}

void setContent(benchmark::State& state, Catalogue catalogue)
{
    const QByteArray text = catalogue(int(state.range(0)));
    for (auto _ : state) {
        QDomDocument document;
        benchmark::DoNotOptimize(document.setContent(text));
    }
}

// The document as the parser of catalogues builds it, with its limits.
void parseDocument(benchmark::State& state, Catalogue catalogue)
{
    QByteArray text = catalogue(int(state.range(0)));
    for (auto _ : state) {
        QBuffer device(&text);
        device.open(QIODevice::ReadOnly);
        const std::unique_ptr<QDomDocument> document(XmlUtils::parseXml(&device, nullptr));
        benchmark::DoNotOptimize(document->documentElement());
    }
}

void parseXML(benchmark::State& state, Catalogue catalogue)
{
    const QByteArray text = catalogue(int(state.range(0)));
    for (auto _ : state) {
        auto packages = std::make_unique<PackageInfoList>(parsed(text));
        state.PauseTiming();
        if (packages->size() != state.range(0)) {
            state.SkipWithError("not every package was read");
        }
        packages.reset();
        state.ResumeTiming();
    }
}

void eliminateDuplicates(benchmark::State& state)
{
    const int count = int(state.range(0));
    PackageInfoList packages = parsed(flatCatalogue(count));
    for (int i = 0; i < count; ++i) {
        packages[i].fileSize = static_cast<quintptr>(i / 2);
    }
    // The first allocation after parsing pays for what the parser has freed.
    PackageInfoList warmUp = packages;
    DownloadManager::eliminateDuplicatePackages(warmUp);
    for (auto _ : state) {
        PackageInfoList list = packages;
        DownloadManager::eliminateDuplicatePackages(list);
        benchmark::DoNotOptimize(list);
    }
}

// What a check does for an application with 64 cameras.
void findCandidates(benchmark::State& state)
{
    PackageInfoList packages = parsed(flatCatalogue(int(state.range(0))));
    for (auto _ : state) {
        for (int camera = 0; camera < cameras; ++camera) {
            const PackageInfo filter(QString(), QString(), QStringLiteral("4.7"),
                                     QStringLiteral("STABLE"), QDateTime(),
                                     {QStringLiteral("Cam%1").arg(camera)});
            benchmark::DoNotOptimize(DownloadManager::findPackageCandidates(
                packages, filter, QStringLiteral("Camera Firmware"), {}));
        }
    }
}

void atCatalogueSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(1000)->Arg(10000)->Arg(50000)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(readTokens, flat, flatCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(setContent, flat, flatCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(parseDocument, flat, flatCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(parseXML, flat, flatCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(readTokens, nested, nestedCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(setContent, nested, nestedCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(parseDocument, nested, nestedCatalogue)->Apply(atCatalogueSizes);
BENCHMARK_CAPTURE(parseXML, nested, nestedCatalogue)->Apply(atCatalogueSizes);
BENCHMARK(eliminateDuplicates)->Apply(atCatalogueSizes);
BENCHMARK(findCandidates)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
