#include "host/Core/Log.h"

#include <chrono>
#include <ctime>
#include <iostream>
#include <string>

#include "host/Core/MutexLocker.h"

namespace vx {

namespace {

bool isLevel(int level)
{
    return level >= 0 && level <= Log::highestLevel;
}

/** The local time, as in "2024-02-29 13:05:09.042". */
std::string localTime()
{
    using std::chrono::milliseconds;
    using std::chrono::system_clock;
    const system_clock::time_point now = system_clock::now();
    const auto sinceEpoch = std::chrono::floor<milliseconds>(now.time_since_epoch());
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    char toSeconds[32];
    std::strftime(toSeconds, sizeof toSeconds, "%Y-%m-%d %H:%M:%S", &local);
    const std::string fraction = std::to_string(1000 + sinceEpoch.count() % 1000);
    return std::string(toSeconds) + '.' + fraction.substr(1);
}

} // namespace

Log::Log()
    : m_logLevel(Failure)
{
    for (const ELevel level : {Info, ParserMessage, Failure}) {
        m_streams[level] = &std::clog;
    }
}

Log& Log::instance()
{
    // Never destroyed, so that destructors of static objects can still log.
    static Log& log = *new Log;
    return log;
}

std::ostream* Log::getStream(ELevel level) const
{
    return isLevel(level) ? m_streams[level].load() : nullptr;
}

void Log::setStream(ELevel level, std::ostream* stream)
{
    if (isLevel(level)) {
        const MutexLocker locker(m_mutex, true);
        m_streams[level] = stream;
    }
}

int Log::logLevel() const
{
    return m_logLevel;
}

void Log::setLogLevel(int level)
{
    m_logLevel = level;
}

void Log::pre(ELevel level)
{
    if (std::ostream* const stream = getStream(level)) {
        const std::string prefix = localTime() + " [" + std::to_string(level) + "] ";
        // Unformatted: what the stream does to numbers and widths is no matter of ours.
        stream->write(prefix.data(), static_cast<std::streamsize>(prefix.size()));
    }
}

Mutex& Log::mutex()
{
    return m_mutex;
}

} // namespace vx
