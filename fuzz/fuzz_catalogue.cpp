// Reads the input as a catalogue and selects from it. What a small document yields must be what the
// plain climb of the tests finds in it, and selection must keep what it promises.

#include <QBuffer>
#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

#include "download/DownloadManager.h"
#include "host/Core/Log.h"
#include "tests/support/PlainClimb.h"

using namespace vx;

namespace {

// The plain climb takes the square of this, and without entities so little text cannot inherit as
// much as a document is refused for.
constexpr int largestCompared = 4096;

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

PackageInfoList parsed(const QByteArray& document)
{
    QBuffer device;
    device.setData(document);
    device.open(QIODevice::ReadOnly);
    return DownloadManager::parseXML(&device);
}

void compareWithPlainClimb(const QByteArray& document, const PackageInfoList& packages)
{
    if (document.size() <= largestCompared && !document.contains("<!DOCTYPE")) {
        check(test::difference(packages, test::PlainClimb::parse(document)).isEmpty());
    }
}

void selectLike(PackageInfoList packages, const PackageInfo& filter)
{
    const PackageInfoList found =
        DownloadManager::findPackageCandidates(packages, filter, QStringLiteral("tag"), {});
    for (const PackageInfo& candidate : found) {
        check(candidate.release == found.first().release);
        check(candidate.filterPackageCandidate(filter, {}));
    }
}

void eliminate(PackageInfoList packages)
{
    const int before = packages.size();
    DownloadManager::eliminateDuplicatePackages(packages);
    check(packages.size() <= before && packages.isEmpty() == (before == 0));
    const int once = packages.size();
    DownloadManager::eliminateDuplicatePackages(packages);
    check(packages.size() == once);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    Log::instance().setLogLevel(4);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray document(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const PackageInfoList packages = parsed(document);
    compareWithPlainClimb(document, packages);
    if (!packages.isEmpty()) {
        PackageInfo filter = packages.first();
        selectLike(packages, filter);
        filter.release.clear();
        selectLike(packages, filter);
    }
    eliminate(packages);
    return 0;
}
