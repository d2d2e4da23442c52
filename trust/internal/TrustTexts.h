#pragma once

#include <QString>

#include "trust/internal/Seal.h"

namespace vx {

// What users read where signatures are required. The catalogues are in trust/Translations; they
// name the context as it is looked up here, so that the texts are really translated.

/** What the settings dialog shows for a catalogue that was refused; empty for Accepted. */
QString refusalText(SealOutcome outcome);

/** The same in short for the log: plain English, for engineers. */
QString refusalLogText(SealOutcome outcome);

/** What the progress dialog shows while a package is hashed. */
QString verifyingText();

/** The title of the box that says that a package was refused. */
QString packageRefusedTitle();

/** Its text for a file that is not the announced one. */
QString packageDiffersText();

/** Its text for a package of which the catalogue gives no digest that can be used. */
QString packageWithoutDigestText();

} // namespace vx
