#include "tests/support/LogCapture.h"

namespace vx::test {

namespace {

constexpr int levels[] = {1, 2, 3};

} // namespace

LogCapture::LogCapture()
    : m_previousLevel(Log::instance().logLevel())
{
    for (const int level : levels) {
        Log::instance().setStream(static_cast<Log::ELevel>(level), &m_streams[level]);
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
    const QString text = QString::fromStdString(m_streams.at(level).str());
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
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
    for (auto& stream : m_streams) {
        stream.second.str({});
    }
}

} // namespace vx::test
