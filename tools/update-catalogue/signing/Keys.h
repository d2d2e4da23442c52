#pragma once

#include <QCommandLineParser>

#include "trust/internal/PublicKey.h"

namespace vx {

/** Adds "--key", which may be given several times, as several keys are to a client. */
void declareKeys(QCommandLineParser& parser);

/**
 * The keys that the options name, in order; none without the option.
 *
 * @throws CommandFailure with ExitUnreadable for a file that is no public key of minisign.
 */
PublicKeys keysFrom(const QCommandLineParser& parser);

} // namespace vx
