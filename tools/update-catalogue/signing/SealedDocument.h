#pragma once

#include <QByteArray>

#include "tools/update-catalogue/CatalogueSource.h"

namespace vx {

/** A catalogue in its two parts. */
struct SealedDocument
{
    bool isSealed = false;
    /** What is signed, or would be: the document without its seal. */
    QByteArray content;
    /** The ".minisig" file; empty without a seal. */
    QByteArray signatureFile;
};

/**
 * Takes @p source apart.
 *
 * @throws CommandFailure with ExitFindings if it has a seal that can't be read, or if something
 *     stands behind the seal: taking the seal off would lose that.
 */
SealedDocument splitDocument(const CatalogueSource& source);

/**
 * Puts a signature behind a document.
 *
 * @param signature the bytes of a ".minisig" file.
 * @throws CommandFailure with ExitFindings, and a sentence that says why, if clients could not read
 *     the result: old ones as a catalogue, or others the seal.
 */
QByteArray joinDocument(const CatalogueSource& document, const CatalogueSource& signature);

} // namespace vx
