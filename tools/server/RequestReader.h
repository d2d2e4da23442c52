#pragma once

#include <httplib.h>

#include "tools/server/UpdateServer.h"

namespace vx {

/** The request as the server's users see it. */
ServedRequest readRequest(const httplib::Request& request);

/** Whether @p request asks the server as a proxy. */
bool isProxyRequest(const ServedRequest& request);

} // namespace vx
