#pragma once

#include <locale.h>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace vx {

/**
 * Gives the current thread a UTF-8 character set while the object lives.
 *
 * libarchive passes names through the character set of the thread's locale, and drops those that
 * do not fit; under the C locale that is everything but ASCII. The locale of the process and of
 * other threads stays as it is. Where the system has no UTF-8 locale, nothing changes.
 */
class Utf8Locale
{
public:
    Utf8Locale();
    ~Utf8Locale();
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    locale_t m_utf8;
    locale_t m_previous;
};

} // namespace vx
