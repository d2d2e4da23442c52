#pragma once

#include <QList>

#include "host/NetworkHttp/HttpAccess.h"
#include "host/NetworkHttp/NetworkHttpExport.h"

namespace vx {

/**
 * The accesses used lately, as a dialog offers them for choice. Kept in memory only.
 *
 * For the event-loop thread; takes no lock.
 */
class VX_NETWORKHTTP_EXPORT HttpAccessHistory
{
public:
    /** How many accesses are kept; the oldest goes first. */
    static constexpr int capacity = 20;

    /** The proxies of the whole process. */
    static HttpAccessHistory proxies;

    /**
     * Puts @p access first, in place of an entry with the same host and port, if there is one.
     *
     * The password is not kept. An access without an address is ignored.
     */
    void add(const HttpAccess& access);

    /** The accesses, the latest first. */
    QList<HttpAccess> entries() const;

    /** Forgets all. */
    void clear();

private:
    QList<HttpAccess> m_entries;
};

} // namespace vx
