#include "host/NodeDB/NodeDB.h"

namespace vx {

NodeDB& NodeDB::getDB()
{
    // Never destroyed, so that destructors of static objects can still ask it.
    static NodeDB& database = *new NodeDB;
    return database;
}

NetworkProxy NodeDB::globalProxy() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_globalProxy;
}

void NodeDB::setGlobalProxy(const NetworkProxy& proxy)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_globalProxy = proxy;
}

} // namespace vx
