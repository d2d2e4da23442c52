#pragma once

#include <httplib.h>

#include "tools/server/ConnectionStream.h"
#include "tools/server/HttpListener.h"

namespace vx {

/**
 * Fills @p response with @p answer and makes the client wait if the answer says so.
 *
 * The body is read from the answer while the response is sent, with the fault of the answer; the
 * ending that belongs to the fault is the caller's. @p request loses its ranges where they do not
 * apply.
 */
void writeAnswer(const Answer& answer, httplib::Request& request, ConnectionStream& stream,
                 httplib::Response& response);

/** Drops the computed length where the answer brought one of its own. */
void keepFirstContentLength(httplib::Response& response);

} // namespace vx
