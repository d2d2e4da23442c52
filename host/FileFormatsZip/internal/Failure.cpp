#include "host/FileFormatsZip/internal/Failure.h"

#include <cerrno>

#include "host/CoreQt/IOException.h"

namespace vx {

namespace {

constexpr int shownCharacters = 120;

} // namespace

void fail(const QString& reason)
{
    throw IOException(reason, nullptr);
}

void failWithErrno(const QString& action, int code)
{
    switch (code) {
    case ENOSPC:
    case EDQUOT:
        fail(QStringLiteral("The disk is full: cannot %1.").arg(action));
    case EFBIG:
        fail(QStringLiteral("A file would be larger than the system allows: cannot %1.")
                 .arg(action));
    case ENOMEM:
        fail(QStringLiteral("There is not enough memory to unpack the archive."));
    default:
        fail(QStringLiteral("Cannot %1: %2.").arg(action, qt_error_string(code)));
    }
}

void failAsDamaged(const QString& detail)
{
    fail(QStringLiteral("The archive is damaged or incomplete (%1).").arg(detail));
}

void refuse(const QString& name, const QString& flaw)
{
    fail(QStringLiteral("The archive is refused: %1 %2.").arg(quoted(name), flaw));
}

QString quoted(const QString& name)
{
    QString shown = name;
    if (shown.size() > shownCharacters) {
        const int half = shownCharacters / 2;
        shown = shown.left(half) + QStringLiteral("...") + shown.right(half);
    }
    for (QChar& c : shown) {
        if (!c.isPrint() && !c.isSurrogate()) {
            c = QLatin1Char('?');
        }
    }
    return QLatin1Char('\'') + shown + QLatin1Char('\'');
}

} // namespace vx
