#pragma once

#include <QByteArray>
#include <QString>

class QNetworkReply;

namespace vx {

/**
 * Why an answer without an error holds no package, and what to do about it, in one English sentence
 * for the log.
 *
 * @param reply the answer; its status and header are looked at.
 * @param beginning the first bytes of its body.
 * @return nothing if it is a catalogue as far as that can be told: one without packages is no
 *         fault, and of one that is damaged the parser tells.
 */
QString noCatalogueReason(const QNetworkReply& reply, const QByteArray& beginning);

} // namespace vx
