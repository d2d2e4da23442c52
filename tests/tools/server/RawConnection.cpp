#include "tests/tools/server/RawConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>

namespace vx::test {

namespace {

bool connectToLoopback(int socket, quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

} // namespace

RawConnection::RawConnection(quint16 port)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    , m_connected(connectToLoopback(m_socket, port))
{}

RawConnection::~RawConnection()
{
    ::close(m_socket);
}

bool RawConnection::send(const QByteArray& bytes)
{
    return ::send(m_socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL) == bytes.size();
}

bool RawConnection::get(const QByteArray& target, const QByteArray& headers)
{
    return send("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + headers + "\r\n");
}

Ending RawConnection::read(int count, int milliseconds)
{
    std::array<char, 16384> piece;
    while (m_received.size() < count) {
        pollfd waiting = {m_socket, POLLIN, 0};
        if (::poll(&waiting, 1, milliseconds) == 0) {
            return Ending::None;
        }
        const ssize_t length = ::recv(m_socket, piece.data(), piece.size(), 0);
        if (length <= 0) {
            return length < 0 && errno == ECONNRESET ? Ending::Reset : Ending::Closed;
        }
        m_received.append(piece.data(), int(length));
    }
    return Ending::None;
}

Ending RawConnection::readBody(int count, int milliseconds)
{
    Ending ending = Ending::None;
    int before = -1;
    while (ending == Ending::None && m_received.size() > before &&
           (head().isEmpty() || body().size() < count)) {
        before = m_received.size();
        ending = read(before + 1, milliseconds);
    }
    return ending;
}

Ending RawConnection::readToEnd(int milliseconds)
{
    return read(std::numeric_limits<int>::max(), milliseconds);
}

QByteArray RawConnection::head() const
{
    return m_received.left(qMax(0, m_received.indexOf("\r\n\r\n")));
}

QByteArray RawConnection::body() const
{
    const int end = m_received.indexOf("\r\n\r\n");
    return end < 0 ? QByteArray() : m_received.mid(end + 4);
}

int RawConnection::status() const
{
    return m_received.startsWith("HTTP/1.1 ") ? m_received.mid(9, 3).toInt() : 0;
}

} // namespace vx::test
