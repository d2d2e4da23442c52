#include "tools/update-catalogue/Terminal.h"

#include <cerrno>

#include <unistd.h>

#include "tools/update-catalogue/Command.h"

#include "host/CoreQt/QtVersions.h"

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
    : m_output(output)
    , m_colours(isatty(fileno(output)) != 0 && !qEnvironmentVariableIsSet("NO_COLOR"))
{}

void Terminal::write(const QByteArray& bytes)
{
    const auto size = static_cast<size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, m_output) != size || std::fflush(m_output) != 0) {
        throw CommandFailure(ExitUnreadable,
                             QString("standard output: %1").arg(qt_error_string(errno)));
    }
}

void Terminal::line(const QString& text)
{
    write(text.toUtf8() + '\n');
}

void Terminal::json(const QJsonDocument& document)
{
    write(document.toJson(QJsonDocument::Indented));
}

QString Terminal::coloured(const QString& text, Colour colour) const
{
    if (!m_colours || colour == Plain) {
        return text;
    }
    return QLatin1String(escapeSequence(colour)) + text + QLatin1String("\033[0m");
}

} // namespace vx
