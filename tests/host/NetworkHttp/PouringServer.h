#pragma once

#include <QByteArray>

#include <atomic>
#include <thread>
#include <vector>

namespace vx::test {

/**
 * A server on loopback, on threads of its own, that gives every request the same answer as fast as
 * it is taken, which may have no end. It answers as a proxy, too, and doesn't read what is asked.
 */
class PouringServer
{
public:
    static constexpr int withoutEnd = -1;

    /** @param head comes first, then @p piece so many @p times; then the connection is closed. */
    PouringServer(const QByteArray& head, const QByteArray& piece, int times);
    /** Ends all connections. */
    ~PouringServer();
    PouringServer(const PouringServer&) = delete;
    PouringServer& operator=(const PouringServer&) = delete;

    /** From now on waits so many @p milliseconds in front of each piece. */
    void setPause(int milliseconds) { m_pause = milliseconds; }

    quint16 port() const { return m_port; }

    /** How many requests are being answered; those whose connection is gone are not. */
    int answering() const { return m_answering; }

    /** How many requests there have been. */
    int asked() const { return m_asked; }

private:
    void accept();
    void answer(int connection);

    QByteArray m_head;
    QByteArray m_piece;
    int m_times;
    int m_listener;
    quint16 m_port = 0;
    std::atomic<int> m_pause = 0;
    std::atomic<int> m_answering = 0;
    std::atomic<int> m_asked = 0;
    std::vector<int> m_connections;
    std::vector<std::thread> m_threads;
    std::thread m_acceptor;
};

} // namespace vx::test
