#include "host/FileFormatsZip/internal/Failure.h"

#include <cerrno>

#include "host/CoreQt/IOException.h"

namespace vx {

void fail(const QString& reason)
{
    throw IOException(reason, nullptr);
}

void failWithErrno(const QString& action, int code)
{
    const bool isFull = code == ENOSPC || code == EDQUOT;
    fail(code == ENOMEM ? QStringLiteral("There is not enough memory to unpack the archive.")
         : isFull       ? QStringLiteral("The disk is full: cannot %1.").arg(action)
         : code == EFBIG
             ? QStringLiteral("A file would be larger than the system allows: cannot %1.")
                   .arg(action)
             : QStringLiteral("Cannot %1: %2.").arg(action, qt_error_string(code)));
}

void failAsDamaged(const QString& detail)
{
    fail(QStringLiteral("The archive is damaged or incomplete (%1).").arg(detail));
}

void refuse(const QString& name, const char* flaw)
{
    fail(QStringLiteral("The archive is refused: %1 %2.").arg(quoted(name), QLatin1String(flaw)));
}

QString quoted(const QString& name)
{
    constexpr int shownCharacters = 120;
    QString shown = name;
    if (shown.size() > shownCharacters) {
        shown = shown.left(shownCharacters / 2) + QStringLiteral("...") +
                shown.right(shownCharacters / 2);
    }
    for (QChar& c : shown) {
        if (!c.isPrint() && !c.isSurrogate()) {
            c = QLatin1Char('?');
        }
    }
    return QLatin1Char('\'') + shown + QLatin1Char('\'');
}

} // namespace vx
