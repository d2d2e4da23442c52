#include "tests/support/LogCapture.h"

#include "host/Core/MutexLocker.h"

namespace vx::test {

namespace {

constexpr int levels[] = {1, 2, 3};

} // namespace

LogCapture::Recorder::Recorder(int level, std::vector<Line>& lines)
    : m_level(level)
    , m_lines(lines)
{}

// Without a buffer every character comes here.
LogCapture::Recorder::int_type LogCapture::Recorder::overflow(int_type character)
{
    if (character != '\n') {
        m_begun.push_back(traits_type::to_char_type(character));
    } else if (!m_begun.empty()) {
        m_lines.push_back({m_level, m_begun});
        m_begun.clear();
    }
    return traits_type::not_eof(character);
}

LogCapture::LogCapture()
    : m_previousLevel(Log::instance().logLevel())
{
    for (const int level : levels) {
        m_recorders.emplace_back(level, m_lines);
        m_streams.emplace_back(&m_recorders.back());
        Log::instance().setStream(static_cast<Log::ELevel>(level), &m_streams.back());
    }
    Log::instance().setLogLevel(1);
}

LogCapture::~LogCapture()
{
    for (const int level : levels) {
        Log::instance().setStream(static_cast<Log::ELevel>(level), nullptr);
    }
    Log::instance().setLogLevel(m_previousLevel);
}

QStringList LogCapture::lines(int level) const
{
    const MutexLocker locker(Log::instance().mutex(), true);
    QStringList texts;
    for (const Line& line : m_lines) {
        if (line.level == level) {
            texts << QString::fromStdString(line.text);
        }
    }
    return texts;
}

QStringList LogCapture::allLines() const
{
    const MutexLocker locker(Log::instance().mutex(), true);
    QStringList texts;
    for (const Line& line : m_lines) {
        texts << QString::number(line.level) + QLatin1Char(' ') + QString::fromStdString(line.text);
    }
    return texts;
}

int LogCapture::count(int level, const QString& text) const
{
    int found = 0;
    for (const QString& line : lines(level)) {
        if (line.endsWith(text)) {
            ++found;
        }
    }
    return found;
}

void LogCapture::clear()
{
    const MutexLocker locker(Log::instance().mutex(), true);
    m_lines.clear();
}

} // namespace vx::test
