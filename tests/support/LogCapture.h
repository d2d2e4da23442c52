#pragma once

#include <QStringList>

#include <list>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

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

    /** The lines of all levels in the order in which they came, as in "3 " and the line. */
    QStringList allLines() const;

    /** How many lines of @p level end with @p text. */
    int count(int level, const QString& text) const;

    /** Whether some line of @p level ends with @p text. */
    bool contains(int level, const QString& text) const { return count(level, text) > 0; }

    /** Forgets everything so far. */
    void clear();

private:
    struct Line
    {
        int level;
        std::string text;
    };

    /** Adds what one level writes to the lines of all. */
    class Recorder : public std::streambuf
    {
    public:
        Recorder(int level, std::vector<Line>& lines);

    protected:
        int_type overflow(int_type character) override;

    private:
        const int m_level;
        std::vector<Line>& m_lines;
        std::string m_begun;
    };

    std::vector<Line> m_lines;
    std::list<Recorder> m_recorders;
    std::list<std::ostream> m_streams;
    int m_previousLevel;
};

} // namespace vx::test
