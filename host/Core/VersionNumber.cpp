#include "host/Core/VersionNumber.h"

namespace vx {

VersionNumber::VersionNumber(const std::string& text)
    : m_text(text)
{}

VersionNumber::~VersionNumber() = default;

bool VersionNumber::operator!=(const VersionNumber& other) const
{
    return m_text != other.m_text;
}

bool VersionNumber::operator>(const VersionNumber& other) const
{
    return m_text > other.m_text;
}

bool VersionNumber::operator<=(const VersionNumber& other) const
{
    return m_text <= other.m_text;
}

std::string VersionNumber::toString() const
{
    return m_text;
}

std::string VersionNumber::toShortVersion() const
{
    return m_text;
}

} // namespace vx
