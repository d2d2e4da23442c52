#pragma once

#include <QtGlobal>

#include <vector>

namespace vx {

/**
 * Finds the TCP connection of this process that one thread is reading, and closes it.
 *
 * What is taken out of that connection is what the thread reads, so that the difference of the two
 * counts stays the same, while it changes for every other connection. Each look keeps those whose
 * difference may have stayed. That says nothing of addresses, so that it holds for any host, by any
 * road, and with any number of other connections to the same place.
 */
class ConnectionSearch
{
public:
    /** @param thread one of this process that reads nothing else meanwhile. */
    explicit ConnectionSearch(int thread);

    /** To be called again and again, with a pause in between, until something is found. */
    void look();

    /** Whether it is clear which connection it is. */
    bool hasFound() const;

    /**
     * Ends what was found and throws away what has come and wasn't read: the thread's next call
     * reads the end, and when the thread closes the connection, that is reset. Does nothing unless
     * something was found.
     */
    void close() const;

private:
    struct Candidate
    {
        int descriptor;
        /** What makes sure that the descriptor still means the same connection. */
        quint64 identity;
        /** Between these two lies the difference of both counts. */
        qint64 least;
        qint64 most;
    };

    int m_thread;
    std::vector<Candidate> m_candidates;
    qint64 m_readAtFirst = -1;
    qint64 m_readSinceFirst = 0;
};

} // namespace vx
