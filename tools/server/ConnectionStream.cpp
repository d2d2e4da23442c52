#include "tools/server/ConnectionStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#ifdef __linux__
#include <linux/sockios.h>
#endif

#include <array>
#include <cerrno>
#include <chrono>

namespace vx {

namespace {

constexpr int requestTimeoutMs = 10000;

/** Drops what has arrived. False if the client has closed its side. */
bool discardInput(int socket)
{
    std::array<char, 4096> ignored;
    ssize_t count = 0;
    do {
        count = ::recv(socket, ignored.data(), ignored.size(), MSG_DONTWAIT);
    } while (count > 0);
    return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

/** Whether bytes are still on their way to the client. */
bool hasUnsentBytes(int socket)
{
#ifdef SIOCOUTQ
    int count = 0;
    return ::ioctl(socket, SIOCOUTQ, &count) == 0 && count > 0;
#else
    static_cast<void>(socket);
    return false;
#endif
}

} // namespace

ConnectionStream::ConnectionStream(int socket, const StopSignal& stop)
    : m_socket(socket)
    , m_stop(stop)
{
    ::fcntl(m_socket, F_SETFD, FD_CLOEXEC);
}

ConnectionStream::~ConnectionStream()
{
    if (m_socket < 0) {
        return;
    }
    ::shutdown(m_socket, SHUT_WR);
    // Closing with unread input would turn into a reset and could take the reply with it.
    discardInput(m_socket);
    ::close(m_socket);
}

bool ConnectionStream::waitFor(short events, int milliseconds) const
{
    std::array<pollfd, 2> waiting = {{{m_socket, events, 0}, {m_stop.descriptor(), POLLIN, 0}}};
    int ready = 0;
    do {
        ready = ::poll(waiting.data(), waiting.size(), milliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && waiting[1].revents == 0 && waiting[0].revents != 0;
}

bool ConnectionStream::is_readable() const
{
    return waitFor(POLLIN, requestTimeoutMs);
}

bool ConnectionStream::is_writable() const
{
    return !m_muted && waitFor(POLLOUT, -1);
}

ssize_t ConnectionStream::read(char* data, size_t size)
{
    return is_readable() ? ::recv(m_socket, data, size, 0) : -1;
}

ssize_t ConnectionStream::write(const char* data, size_t size)
{
    size_t written = 0;
    while (written < size) {
        if (!is_writable()) {
            return -1;
        }
        const ssize_t count =
            ::send(m_socket, data + written, size - written, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            written += static_cast<size_t>(count);
        } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            return -1;
        }
    }
    return static_cast<ssize_t>(size);
}

// Nobody asks who the client is.
void ConnectionStream::get_remote_ip_and_port(std::string&, int&) const {}

void ConnectionStream::get_local_ip_and_port(std::string&, int&) const {}

bool ConnectionStream::pause(int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (milliseconds >= 0 && left <= 0) {
            return true;
        }
        std::array<pollfd, 2> waiting = {{{m_socket, POLLIN, 0}, {m_stop.descriptor(), POLLIN, 0}}};
        ::poll(waiting.data(), waiting.size(), milliseconds < 0 ? -1 : static_cast<int>(left));
        if (waiting[1].revents != 0 || (waiting[0].revents != 0 && !discardInput(m_socket))) {
            return false;
        }
    }
}

void ConnectionStream::reset()
{
    // A reset throws away what the client has not acknowledged yet.
    while (hasUnsentBytes(m_socket) && pause(1)) {
    }
    const linger atOnce = {1, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    ::close(m_socket);
    m_socket = -1;
}

} // namespace vx
