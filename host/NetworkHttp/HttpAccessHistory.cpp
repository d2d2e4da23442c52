#include "host/NetworkHttp/HttpAccessHistory.h"

#include <algorithm>

namespace vx {

HttpAccessHistory HttpAccessHistory::proxies;

void HttpAccessHistory::add(const HttpAccess& access)
{
    if (access.address.isEmpty()) {
        return;
    }
    const auto isSame = [&access](const HttpAccess& entry) { return entry.hasSameAddress(access); };
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), isSame), m_entries.end());
    m_entries.prepend(access);
    m_entries.first().password.clear();
    while (m_entries.size() > capacity) {
        m_entries.removeLast();
    }
}

QList<HttpAccess> HttpAccessHistory::entries() const
{
    return m_entries;
}

void HttpAccessHistory::clear()
{
    m_entries.clear();
}

} // namespace vx
