#pragma once

#include <QNetworkRequest>
#include <QtGlobal>

namespace vx {

/**
 * Lets the answer to @p request be compressed as well as it may. Qt 6 refuses one above 10 MiB that
 * has shrunk to a fortieth, which a catalogue full of indentation may do; Qt 5 takes it, and what
 * is too large for us is refused by its size.
 */
inline void allowAnyCompression(QNetworkRequest& request)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 2, 0)
    request.setDecompressedSafetyCheckThreshold(-1);
#else
    Q_UNUSED(request)
#endif
}

} // namespace vx
