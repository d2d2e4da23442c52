#pragma once

#include <QJsonObject>
#include <QString>

#include "tools/update-catalogue/CatalogueText.h"
#include "trust/internal/Seal.h"

namespace vx {

/** A moment, given in seconds since 1970, as people read it. */
QString timeText(qint64 seconds);

/** Where the seal of @p document begins, or where it would stand. */
TextPosition sealPosition(const QByteArray& document);

/** Who sealed a catalogue, when, and until when, in half a sentence. */
QString sealText(const Seal& seal);

/** The same for programs. */
QJsonObject sealToJson(const Seal& seal);

/**
 * Why a client that requires signatures refuses a catalogue, in one sentence; empty if it accepts
 * it. What only that client knows, a newer catalogue that it saw before, is not looked at here.
 */
QString refusalSentence(const SealReading& reading);

/** The name of that refusal, as "--json" and the rules of lint give it; empty if it is accepted. */
QString refusalName(SealOutcome outcome);

} // namespace vx
