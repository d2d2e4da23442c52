#pragma once

#include <QString>
#include <QUrl>

namespace vx {

/** What came of asking for a catalogue as a client asks for it. */
struct OwnAddressAnswer
{
    /** Why no client gets the catalogue; empty if it does. */
    QString failure;
    /** What it gets may be unexpected: the "Content-Type" of the last answer, without parameters.
     */
    QString type;
    /** The encoding that is left after those that a client asks for. */
    QString encoding;
    /** From the request to the last byte of the last answer, in milliseconds. */
    qint64 milliseconds = 0;
};

/**
 * Asks @p address as a check does: one GET, 301, 302, 303 and 307 followed to targets as they
 * stand, 15 s for each. Unlike a check, which goes on without end, it gives up after 20 redirects.
 */
OwnAddressAnswer askOwnAddress(const QUrl& address);

} // namespace vx
