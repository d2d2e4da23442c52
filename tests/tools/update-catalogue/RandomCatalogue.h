#pragma once

#include <QByteArray>
#include <QRandomGenerator>

#include "tools/update-catalogue/Installation.h"

namespace vx::test {

/**
 * A well-formed catalogue of a few packages, drawn from so few words that packages often collide:
 * equal releases in two spellings, equal dates and sizes, nested sets, empty values.
 */
QByteArray randomCatalogue(QRandomGenerator& random);

/** An installation drawn from the same words. */
OfferCriteria randomInstallation(QRandomGenerator& random);

} // namespace vx::test
