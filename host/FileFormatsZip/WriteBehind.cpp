#include "host/FileFormatsZip/WriteBehind.h"

#include <system_error>
#include <utility>

#include "host/FileFormatsZip/FileWriter.h"

namespace vx {

namespace {

// Enough to keep both threads busy; with libarchive's pieces of 256 KiB, one megabyte.
constexpr size_t mostWaiting = 4;

} // namespace

WriteBehind::WriteBehind(FileWriter& writer)
    : m_writer(writer)
{
    try {
        m_thread = std::thread(&WriteBehind::run, this);
    } catch (const std::system_error&) {
        // The system gives no more threads: the one that is there does the work.
    }
}

WriteBehind::~WriteBehind()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.clear();
        m_isEnding = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void WriteBehind::write(const char* data, size_t size)
{
    if (!m_thread.joinable()) {
        m_writer.write(data, size);
        return;
    }
    Piece piece;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_failure || m_waiting.size() < mostWaiting; });
        throwFailure();
        if (!m_spare.empty()) {
            piece = std::move(m_spare.back());
            m_spare.pop_back();
        }
    }
    piece.assign(data, data + size);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(std::move(piece));
    }
    m_changed.notify_all();
}

void WriteBehind::finish()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_failure || (m_waiting.empty() && !m_isWriting); });
    throwFailure();
}

void WriteBehind::run()
{
    Piece piece;
    while (takePiece(piece)) {
        writePiece(piece);
    }
}

/** Hands the last piece back and waits for the next. Gives false when there will be none. */
bool WriteBehind::takePiece(Piece& piece)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_isWriting) {
        m_spare.push_back(std::move(piece));
        m_isWriting = false;
        m_changed.notify_all();
    }
    m_changed.wait(lock, [this] { return m_isEnding || m_failure || !m_waiting.empty(); });
    if (m_isEnding || m_failure) {
        return false;
    }
    piece = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_isWriting = true;
    return true;
}

void WriteBehind::writePiece(const Piece& piece)
{
    try {
        m_writer.write(piece.data(), piece.size());
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failure = std::current_exception();
        m_changed.notify_all();
    }
}

void WriteBehind::throwFailure()
{
    if (m_failure) {
        std::rethrow_exception(m_failure);
    }
}

} // namespace vx
