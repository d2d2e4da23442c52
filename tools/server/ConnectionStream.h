#pragma once

#include <httplib.h>

#include <string>

#include "tools/server/StopSignal.h"

namespace vx {

/**
 * One accepted connection. Every wait ends at once when the server stops, which the stream of the
 * HTTP library cannot do.
 */
class ConnectionStream : public httplib::Stream
{
public:
    /** Takes over @p socket; @p stop must outlive the stream. */
    ConnectionStream(int socket, const StopSignal& stop);
    /** Closes the connection in good order, unless reset() did so before. */
    ~ConnectionStream() override;
    ConnectionStream(const ConnectionStream&) = delete;
    ConnectionStream& operator=(const ConnectionStream&) = delete;

    bool is_readable() const override;
    bool is_writable() const override;
    /** Waits for data; -1 after ten seconds without any, or when the server stops. */
    ssize_t read(char* data, size_t size) override;
    /** Writes all of it, however long the client takes; -1 when it is gone or the server stops. */
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return m_socket; }

    /** Waits up to @p milliseconds, without a limit if negative. False once the client is gone or
        the server stops. */
    bool pause(int milliseconds);

    /** From now on nothing is written any more. */
    void mute() { m_muted = true; }

    /** Ends the connection with a TCP reset, after all that was written has arrived. */
    void reset();

private:
    bool waitFor(short events, int milliseconds) const;

    int m_socket;
    const StopSignal& m_stop;
    bool m_muted = false;
};

} // namespace vx
