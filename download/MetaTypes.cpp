#include "download/DownloadManager.h"

namespace vx {

namespace {

template <typename T>
int registerOnce(const char* name, const char* signatureName)
{
    const int id = qRegisterMetaType<T>(name);
    // Signals name the types without their namespace, and a queued connection looks them up like
    // that. A type of the application that has taken the name keeps it.
    if (!QMetaType::isRegistered(QMetaType::type(signatureName))) {
        qRegisterMetaType<T>(signatureName);
    }
    return id;
}

} // namespace

// Filled while the library is loaded, before anything can be queued.
const int DownloadManager::qMetaTypes[2] = {
    registerOnce<PackageInfo>("vx::PackageInfo", "PackageInfo"),
    registerOnce<PackageInfoList>("vx::PackageInfoList", "PackageInfoList"),
};

} // namespace vx
