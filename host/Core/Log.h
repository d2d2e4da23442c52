#pragma once

#include <array>
#include <atomic>
#include <iosfwd>

#include "host/Core/CoreExport.h"
#include "host/Core/Mutex.h"

namespace vx {

/**
 * The process-wide logger.
 *
 * A writer asks for the stream of its level, compares the threshold, takes the mutex for the length
 * of one line, writes the prefix, its text and the line's end, and flushes. Lines of several
 * threads then never mix. All operations may be called from any thread.
 *
 * Unless the application says otherwise, levels 1 to 3 go to std::clog and the threshold is 3, so
 * that only failures are seen.
 */
class VX_CORE_EXPORT Log
{
public:
    /** The importance of a line. Other numbers from 0 to highestLevel are levels, too. */
    enum ELevel : int {
        Info = 1,          ///< the normal course of events
        ParserMessage = 2, ///< text that could not be read
        Failure = 3        ///< an operation that did not do what was asked
    };

    /** The largest level that can have a stream. */
    static constexpr int highestLevel = 15;

    /** The one logger. It lives until the process ends. */
    static Log& instance();

    /** The stream of @p level, owned by whoever set it; null when the level has none. */
    std::ostream* getStream(ELevel level) const;

    /**
     * Sends the lines of @p level to @p stream; null silences the level.
     *
     * The stream stays the caller's and must live until it is replaced. Takes the mutex, so that no
     * line is being written to the former stream when this returns; not to be called by a thread
     * that holds the mutex. A level outside 0 to highestLevel is ignored.
     */
    void setStream(ELevel level, std::ostream* stream);

    /** The threshold: a line of level L is to be written only when this is at most L. */
    int logLevel() const;

    /** Sets the threshold; any number will do. */
    void setLogLevel(int level);

    /**
     * Writes the prefix of a line to the stream of @p level, if it has one: the local time with
     * milliseconds and the level, as in "2024-02-29 13:05:09.042 [3] ". The caller holds mutex().
     */
    void pre(ELevel level);

    /** The mutex that guards the streams; held for the length of one line. */
    Mutex& mutex();

    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

private:
    Log();
    ~Log() = default;

    std::array<std::atomic<std::ostream*>, highestLevel + 1> m_streams{};
    std::atomic<int> m_logLevel;
    Mutex m_mutex;
};

} // namespace vx
