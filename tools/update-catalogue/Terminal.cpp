#include "tools/update-catalogue/Terminal.h"

#include <unistd.h>

namespace vx {

namespace {

const char* escapeSequence(Terminal::Colour colour)
{
    switch (colour) {
    case Terminal::Bold:
        return "\033[1m";
    case Terminal::Dim:
        return "\033[2m";
    case Terminal::Red:
        return "\033[31m";
    case Terminal::Yellow:
        return "\033[33m";
    case Terminal::Green:
        return "\033[32m";
    case Terminal::Cyan:
        return "\033[36m";
    case Terminal::Plain:
        break;
    }
    return "";
}

} // namespace

Terminal::Terminal(std::FILE* output)
    : m_stream(output)
    , m_colours(isatty(fileno(output)) != 0 && !qEnvironmentVariableIsSet("NO_COLOR"))
{
    m_stream.setCodec("UTF-8");
}

void Terminal::line(const QString& text)
{
    m_stream << text << '\n';
    m_stream.flush();
}

void Terminal::json(const QJsonDocument& document)
{
    m_stream << QString::fromUtf8(document.toJson(QJsonDocument::Indented));
    m_stream.flush();
}

QString Terminal::coloured(const QString& text, Colour colour) const
{
    if (!m_colours || colour == Plain) {
        return text;
    }
    return QLatin1String(escapeSequence(colour)) + text + QLatin1String("\033[0m");
}

} // namespace vx
