#pragma once

#include <QString>

#include <atomic>

namespace vx {

/** Thrown where work notices that it was cancelled. That is no failure, and has no reason. */
struct Canceled
{
};

/** Throws Canceled if @p canceled is set. */
inline void requireNotCanceled(const std::atomic<bool>& canceled)
{
    if (canceled) {
        throw Canceled();
    }
}

// All that follow throw an IOException.

/** For @p reason, a sentence for the user. */
[[noreturn]] void fail(const QString& reason);

/** For an @p action, as in "create 'a.txt'", that the system refused with the errno @p code. */
[[noreturn]] void failWithErrno(const QString& action, int code);

/** For a damaged archive; @p detail goes in brackets. */
[[noreturn]] void failAsDamaged(const QString& detail);

/** For an archive whose entry @p name has a @p flaw, as in "has an absolute name". */
[[noreturn]] void refuse(const QString& name, const char* flaw);

/** @p name in quotes, fit to be shown: without control characters, and shortened in its middle. */
QString quoted(const QString& name);

} // namespace vx
