#pragma once

#include "download/DownloadManager.h"

namespace vx::test {

/** An engine whose fields a test may look at, as a host's own subclass could. */
class EngineProbe : public DownloadManager
{
public:
    using DownloadManager::DownloadManager;
    using DownloadManager::httpClient;
    using DownloadManager::lastCatalogue;
    using DownloadManager::lastCheck;
    using DownloadManager::pendingInstall;
    using DownloadManager::queryResult;
    using DownloadManager::regularCheck;
    using DownloadManager::serverCookie;
    using DownloadManager::serverHost;
    using DownloadManager::serverPath;
    using DownloadManager::unzipper;
    using DownloadManager::updateHistory;
};

} // namespace vx::test
