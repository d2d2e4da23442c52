#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace vx {

class FileWriter;

/**
 * Writes a large file on a thread of its own, so that the next piece is inflated while the last one
 * goes to the disk. Belongs to the thread that inflates.
 */
class WriteBehind
{
public:
    /**
     * @p writer must outlive the object and be left alone meanwhile. If no thread is to be had,
     * write() itself writes.
     */
    explicit WriteBehind(FileWriter& writer);

    /** Ends the thread. What has not been written by then is dropped. */
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    /**
     * Takes a copy of @p size bytes to be written, and waits while too much is waiting already.
     * Throws what the writer threw at an earlier piece.
     */
    void write(const char* data, size_t size);

    /** Waits until everything is written. Throws what the writer threw. */
    void finish();

private:
    using Piece = std::vector<char>;

    void run();
    bool takePiece(Piece& piece);
    void writePiece(const Piece& piece);
    void throwFailure();

    FileWriter& m_writer;
    std::mutex m_mutex; ///< guards all that follows, except the thread
    std::condition_variable m_changed;
    std::deque<Piece> m_waiting;
    std::vector<Piece> m_spare;
    bool m_isWriting = false;
    bool m_isEnding = false;
    std::exception_ptr m_failure;
    std::thread m_thread;
};

} // namespace vx
