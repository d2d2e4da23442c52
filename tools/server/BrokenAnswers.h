#pragma once

#include "tools/server/UpdateServer.h"

namespace vx {

/** @p reply behind an interim answer 103, as some servers and proxies send it. */
ServedReply afterEarlyHints(const ServedReply& reply);

/** An answer whose header has lines without end. */
ServedReply withEndlessHeader();

/** @p reply in chunks, closed where the mark of the end should be. */
ServedReply withoutLastChunk(const ServedReply& reply);

/** @p reply, which announces half of the bytes that it sends. */
ServedReply withHalfTheLength(ServedReply reply);

} // namespace vx
