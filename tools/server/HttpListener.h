#pragma once

#include <QString>

#include <httplib.h>

#include <functional>
#include <thread>

#include "tools/server/StopSignal.h"
#include "tools/server/UpdateServer.h"

namespace vx {

/** What is to be sent: a file, or a reply if no file is named. */
struct Answer
{
    QString file;
    ServedReply reply;
};

/**
 * Listens on one port, from construction of the thread to its end, and serves each connection on a
 * thread of a pool. Parsing and composing HTTP is the HTTP library's; the connections are ours.
 */
class HttpListener : private httplib::Server
{
public:
    /** Returns the answer to a request; called on the threads of the pool, at the same time. */
    using Responder = std::function<Answer(const ServedRequest&)>;

    explicit HttpListener(Responder responder);
    /** Ends all connections and waits for the threads. */
    ~HttpListener() override;
    HttpListener(const HttpListener&) = delete;
    HttpListener& operator=(const HttpListener&) = delete;

    /** Binds and starts to accept; to be called once. @return the port, 0 if it cannot be had. */
    quint16 listen(const QString& address, quint16 port);

private:
    bool process_and_close_socket(socket_t socket) override;

    Responder m_responder;
    StopSignal m_stop;
    std::thread m_acceptor;
};

} // namespace vx
