#include "tests/host/NetworkHttp/PouringServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>

namespace vx::test {

namespace {

bool readRequest(int connection)
{
    QByteArray request;
    std::array<char, 4096> bytes = {};
    while (!request.contains("\r\n\r\n")) {
        const ssize_t size = recv(connection, bytes.data(), bytes.size(), 0);
        if (size <= 0) {
            return false;
        }
        request.append(bytes.data(), static_cast<int>(size));
    }
    return true;
}

bool sendAll(int connection, const QByteArray& bytes)
{
    qint64 sent = 0;
    while (sent < bytes.size()) {
        const ssize_t size = send(connection, bytes.constData() + sent,
                                  static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (size < 0) {
            return false;
        }
        sent += size;
    }
    return true;
}

} // namespace

PouringServer::PouringServer(const QByteArray& head, const QByteArray& piece, int times)
    : m_head(head)
    , m_piece(piece)
    , m_times(times)
    , m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    const bool listens = bind(m_listener, any, size) == 0 && listen(m_listener, SOMAXCONN) == 0 &&
                         getsockname(m_listener, any, &size) == 0;
    m_port = listens ? ntohs(address.sin_port) : 0;
    m_acceptor = std::thread([this] { accept(); });
}

PouringServer::~PouringServer()
{
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (const int connection : m_connections) {
        shutdown(connection, SHUT_RDWR);
    }
    for (std::thread& thread : m_threads) {
        thread.join();
    }
    for (const int connection : m_connections) {
        close(connection);
    }
    close(m_listener);
}

void PouringServer::accept()
{
    while (true) {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            return;
        }
        m_connections.push_back(connection);
        m_threads.emplace_back([this, connection] { answer(connection); });
    }
}

void PouringServer::answer(int connection)
{
    if (!readRequest(connection)) {
        return;
    }
    ++m_asked;
    ++m_answering;
    bool isOpen = sendAll(connection, m_head);
    for (int i = 0; isOpen && i != m_times; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(m_pause));
        isOpen = sendAll(connection, m_piece);
    }
    shutdown(connection, SHUT_WR);
    --m_answering;
}

} // namespace vx::test
