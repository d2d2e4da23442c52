#pragma once

#include <QString>

namespace vx {

/** Throws an IOException with @p reason, a sentence for the user. */
[[noreturn]] void fail(const QString& reason);

/**
 * Throws an IOException that says that @p action, as in "create 'a.txt'", is not possible and why.
 * @p code is an errno. A full disk and a lack of memory get sentences of their own.
 */
[[noreturn]] void failWithErrno(const QString& action, int code);

/** Throws an IOException that says that the archive is damaged and, in brackets, @p detail. */
[[noreturn]] void failAsDamaged(const QString& detail);

/**
 * Throws an IOException that says that the archive is refused because its entry @p name has the
 * given @p flaw, as in "has an absolute name".
 */
[[noreturn]] void refuse(const QString& name, const QString& flaw);

/** @p name in quotes, fit to be shown: without control characters, and shortened in its middle. */
QString quoted(const QString& name);

} // namespace vx
