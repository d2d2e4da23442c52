#include "base/LogLine.h"

#include <QString>

#include <ostream>

#include "host/Core/Log.h"
#include "host/Core/MutexLocker.h"

void vx::logLine(int level, const QString& text)
{
    Log& log = Log::instance();
    const auto logLevel = static_cast<Log::ELevel>(level);
    if (log.getStream(logLevel) == nullptr || log.logLevel() > level) {
        return;
    }
    const MutexLocker locker(log.mutex(), true);
    // Asked again: the stream seen above may have been replaced, and deleted, while we waited.
    std::ostream* const stream = log.getStream(logLevel);
    if (stream == nullptr) {
        return;
    }
    const std::ios_base::fmtflags flags = stream->flags();
    log.pre(logLevel);
    const QByteArray ascii = text.toLatin1();
    stream->write(ascii.constData(), ascii.size()) << std::endl;
    stream->flags(flags);
}
