#include "tools/update-catalogue/lint/OwnAddress.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

constexpr qint64 slow = 5000; // milliseconds, of the 15 s that a check has

bool isAsked(const LintOptions& options)
{
    return options.checkUrls && !options.ownAddress.isEmpty();
}

/** What a client can do with what was left encoded: nothing. */
bool isUnasked(const OwnAddressAnswer& answer)
{
    return !answer.encoding.isEmpty() && answer.encoding != "identity";
}

} // namespace

void ownAddress(const CatalogueTree&, const LintOptions& options, FindingSink& sink)
{
    if (!isAsked(options)) {
        return;
    }
    const OwnAddressAnswer answer = askOwnAddress(options.ownAddress);
    if (!answer.failure.isEmpty()) {
        sink.add({}, QString("No client gets this catalogue: %1.").arg(answer.failure));
    } else if (isUnasked(answer)) {
        sink.add({}, QString("No client can read this catalogue: it is encoded as \"%1\", which "
                             "was not asked for.")
                         .arg(answer.encoding));
    }
}

void ownAnswer(const CatalogueTree&, const LintOptions& options, FindingSink& sink)
{
    if (!isAsked(options)) {
        return;
    }
    const OwnAddressAnswer answer = askOwnAddress(options.ownAddress);
    if (!answer.failure.isEmpty()) {
        return;
    }
    if (!answer.type.endsWith("xml")) {
        sink.add({}, QString("The catalogue is served as \"%1\": clients do not mind, but what "
                             "stands between may.")
                         .arg(answer.type));
    }
    if (answer.milliseconds > slow) {
        sink.add({}, QString("The last byte came after %1 s, and a check fails after 15 s.")
                         .arg(answer.milliseconds / 1000));
    }
}

} // namespace vx::rules
