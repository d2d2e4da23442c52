#pragma once

#include <QByteArray>

namespace vx::test {

/** How a connection ended, as the client's kernel saw it. */
enum class Ending {
    /** It has not: nothing came for the time that was given. */
    None,
    /** The server closed it. */
    Closed,
    /** The server reset it. */
    Reset
};

/**
 * A TCP connection to the loopback address without any HTTP stack between, for what a stack would
 * hide. Usable on any thread.
 */
class RawConnection
{
public:
    explicit RawConnection(quint16 port);
    ~RawConnection();
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    bool isConnected() const { return m_connected; }

    /** Sends the bytes as they are. */
    bool send(const QByteArray& bytes);

    /** Sends a GET of @p target. */
    bool get(const QByteArray& target, const QByteArray& headers = QByteArray());

    /** Reads until @p count bytes are there, the connection ends or nothing comes for
        @p milliseconds. */
    Ending read(int count, int milliseconds = 20000);

    /** Reads until @p count bytes of the body are there; otherwise as read(). */
    Ending readBody(int count, int milliseconds = 20000);

    /** Reads until the connection ends or nothing comes for @p milliseconds. */
    Ending readToEnd(int milliseconds = 20000);

    /** All that was read so far. */
    QByteArray received() const { return m_received; }

    /** What was read behind the empty line. */
    QByteArray body() const;

    /** The status line and the headers. */
    QByteArray head() const;

    /** The status code, or 0 if no status line came. */
    int status() const;

private:
    int m_socket;
    bool m_connected;
    QByteArray m_received;
};

} // namespace vx::test
