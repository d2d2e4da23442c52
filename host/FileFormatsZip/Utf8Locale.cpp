#include "host/FileFormatsZip/Utf8Locale.h"

#include <initializer_list>

namespace vx {

namespace {

locale_t makeUtf8Locale()
{
    // Debian and recent glibc, macOS, and what most other systems have.
    for (const char* name : {"C.UTF-8", "UTF-8", "en_US.UTF-8"}) {
        const locale_t made = newlocale(LC_CTYPE_MASK, name, locale_t());
        if (made != locale_t()) {
            return made;
        }
    }
    return locale_t();
}

} // namespace

Utf8Locale::Utf8Locale()
    : m_utf8(makeUtf8Locale())
    , m_previous(uselocale(m_utf8))
{}

Utf8Locale::~Utf8Locale()
{
    uselocale(m_previous);
    if (m_utf8 != locale_t()) {
        freelocale(m_utf8);
    }
}

} // namespace vx
