#pragma once

namespace vx {

/** What SoftwareUpdateClient::parseServerResponse() returns. */
enum ResponseReading {
    PackagesRead = 0, ///< the package list holds what is offered, which may be nothing
    NoPackageRead = 1 ///< the answer held no package at all, and the user has been told
};

} // namespace vx
