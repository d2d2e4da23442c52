#pragma once

#include "trust/internal/PublicKey.h"

namespace vx {

/** The keys that UpdateTrust::requireSignatures() was given last; none while nothing is required.
 */
const PublicKeys& trustedKeys();

} // namespace vx
