#include "tools/server/HttpListener.h"

#include <sys/socket.h>

#include <future>
#include <memory>
#include <utility>

#include "tools/server/ConnectionStream.h"
#include "tools/server/ReplyWriter.h"
#include "tools/server/RequestReader.h"

namespace vx {

namespace {

constexpr size_t workerCount = 64;
constexpr int pendingConnections = 256;

/** One request on one connection. */
struct Exchange
{
    ConnectionStream* stream = nullptr;
    httplib::Request* request = nullptr;
    ServedReply::Fault fault = ServedReply::NoFault;
};

// The HTTP library gives its handlers nothing that leads to the connection; each connection has a
// thread to itself, though.
thread_local Exchange* currentExchange = nullptr;

/** The library's default lets several servers share a port, and a port in use would go unnoticed.
 */
void setListenerOptions(socket_t socket)
{
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

} // namespace

HttpListener::HttpListener(Responder responder)
    : m_responder(std::move(responder))
{
    set_socket_options(setListenerOptions);
    set_tcp_nodelay(true);
    set_pre_routing_handler([this](const httplib::Request&, httplib::Response& response) {
        Exchange& exchange = *currentExchange;
        const Answer answer = m_responder(readRequest(*exchange.request));
        exchange.fault = answer.reply.fault;
        writeAnswer(answer, *exchange.request, *exchange.stream, response);
        return HandlerResponse::Handled;
    });
    set_post_routing_handler([](const httplib::Request&, httplib::Response& response) {
        keepFirstContentLength(response);
    });
}

HttpListener::~HttpListener()
{
    m_stop.raise();
    stop();
    if (m_acceptor.joinable()) {
        m_acceptor.join();
    }
}

quint16 HttpListener::listen(const QString& address, quint16 port)
{
    const std::string host = address.toStdString();
    const int bound = port == 0 ? bind_to_any_port(host) : (bind_to_port(host, port) ? port : -1);
    if (bound <= 0) {
        return 0;
    }
    // The library asks for a queue of five, in which a burst of connections loses some.
    ::listen(svr_sock_, pendingConnections);
    auto running = std::make_shared<std::promise<void>>();
    new_task_queue = [running]() -> httplib::TaskQueue* {
        running->set_value();
        return new httplib::ThreadPool(workerCount);
    };
    m_acceptor = std::thread([this]() { listen_after_bind(); });
    // Until then stop() would find nothing to stop.
    running->get_future().wait();
    return static_cast<quint16>(bound);
}

bool HttpListener::process_and_close_socket(socket_t socket)
{
    ConnectionStream stream(socket, m_stop);
    Exchange exchange;
    exchange.stream = &stream;
    currentExchange = &exchange;
    bool closed = false;
    const bool done = process_request(
        stream, true, closed, [&](httplib::Request& request) { exchange.request = &request; });
    if (exchange.fault == ServedReply::Reset) {
        stream.reset();
    } else if (exchange.fault == ServedReply::Stall || exchange.fault == ServedReply::Silent) {
        stream.pause(-1);
    }
    return done;
}

} // namespace vx
