#include "tools/server/StopSignal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vx {

StopSignal::StopSignal()
{
    if (::pipe(m_ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    for (const int end : m_ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
}

StopSignal::~StopSignal()
{
    for (const int end : m_ends) {
        ::close(end);
    }
}

void StopSignal::raise()
{
    // Closing would do as well, but the number could then be given to another file while a thread
    // still polls it.
    while (::write(m_ends[1], "", 1) < 0 && errno == EINTR) {
    }
}

} // namespace vx
