#pragma once

#include <QIODevice>

#include <memory>

#include "package/PackageInfo.h"
#include "trust/internal/Seal.h"

class QNetworkReply;

namespace vx {

/** Whether an answer may be read as a catalogue, and from where. */
struct Admission
{
    SealOutcome outcome = SealOutcome::Accepted;
    /** The answer itself, or its verified bytes alone, open for reading. Null if refused. */
    std::unique_ptr<QIODevice, void (*)(QIODevice*)> catalogue;
};

/**
 * Judges an answer of the update server. Where no signatures are required it is accepted as it is,
 * and nothing of it is read; where they are, an accepted one is remembered in the store. A null
 * @p reply is an answer without anything in it.
 */
Admission admitCatalogue(QNetworkReply* reply);

/** Reads an accepted catalogue, and notes for @p client what it says of its packages' files. */
PackageInfoList readAdmitted(QObject& client, QIODevice* catalogue);

} // namespace vx
