#include "download/internal/RequestRecord.h"

#include <QFile>

namespace vx {

DownloadManager::RequestData* requestRecord(const ::RequestData& request)
{
    return static_cast<DownloadManager::RequestData*>(request.userData);
}

QIODevice* clientBuffer()
{
    return reinterpret_cast<QIODevice*>(-1); // NOLINT: the client's interface names this value
}

void releaseRequest(const RequestPtr& request)
{
    delete requestRecord(*request);
    request->userData = nullptr;
    if (auto* file = qobject_cast<QFile*>(request->responseDevice)) {
        delete file;
        request->responseDevice = nullptr;
    }
}

} // namespace vx
