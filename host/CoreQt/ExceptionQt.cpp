#include "host/CoreQt/ExceptionQt.h"

#include "host/CoreQt/IOException.h"
#include "host/CoreQt/ParseException.h"

namespace vx {

ExceptionQt::ExceptionQt(const QString& message, const ExceptionQt* cause)
    : m_message(message.toUtf8())
    , m_cause(cause != nullptr ? std::make_shared<const ExceptionQt>(*cause) : nullptr)
{}

QString ExceptionQt::message() const
{
    return QString::fromUtf8(m_message);
}

const ExceptionQt* ExceptionQt::cause() const
{
    return m_cause.get();
}

const char* ExceptionQt::what() const noexcept
{
    return m_message.constData();
}

// Defined here and not in the headers, so that each type has one identity across libraries.
ExceptionQt::~ExceptionQt() = default;
IOException::~IOException() = default;
ParseException::~ParseException() = default;

} // namespace vx
