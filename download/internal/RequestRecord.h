#pragma once

#include "download/DownloadManager.h"

namespace vx {

/**
 * The engine's record in the userData of @p request, or null. It stays the request's.
 *
 * Only for requests of DownloadManager's own client, whose userData nobody else sets.
 */
DownloadManager::RequestData* requestRecord(const ::RequestData& request);

/** What HttpClient takes in place of a device to keep an answer in its own buffer. */
QIODevice* clientBuffer();

/**
 * Frees what the engine attached to @p request: its record, and its device if that is a file. Both
 * members are null afterwards. A device of the client stays.
 */
void releaseRequest(const RequestPtr& request);

} // namespace vx
