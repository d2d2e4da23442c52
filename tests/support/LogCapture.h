#pragma once

#include <QStringList>

#include <map>
#include <sstream>

#include "host/Core/Log.h"

namespace vx::test {

/**
 * Collects what the process-wide log writes while the object lives.
 *
 * Levels 1 to 3 each get a stream of their own and the threshold is 1. On destruction the levels
 * have no stream and the threshold it found is back.
 */
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /** The lines of @p level so far, each with the prefix that the log gave it. */
    QStringList lines(int level) const;

    /** How many lines of @p level end with @p text. */
    int count(int level, const QString& text) const;

    /** Whether some line of @p level ends with @p text. */
    bool contains(int level, const QString& text) const { return count(level, text) > 0; }

    /** Forgets everything so far. */
    void clear();

private:
    std::map<int, std::ostringstream> m_streams;
    int m_previousLevel;
};

} // namespace vx::test
