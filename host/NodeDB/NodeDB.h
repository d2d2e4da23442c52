#pragma once

#include <mutex>

#include "host/NodeDB/NetworkProxy.h"
#include "host/NodeDB/NodeDBExport.h"

namespace vx {

/** The process-wide database of the application's network. May be used from any thread. */
class VX_NODEDB_EXPORT NodeDB
{
public:
    /** The one database. It starts without a proxy and lives until the process ends. */
    static NodeDB& getDB();

    /** A copy of the application's proxy record. */
    NetworkProxy globalProxy() const;

    /** Replaces the application's proxy record. It is kept in memory only. */
    void setGlobalProxy(const NetworkProxy& proxy);

    NodeDB(const NodeDB&) = delete;
    NodeDB& operator=(const NodeDB&) = delete;

private:
    NodeDB() = default;
    ~NodeDB() = default;

    mutable std::mutex m_mutex;
    NetworkProxy m_globalProxy;
};

} // namespace vx
