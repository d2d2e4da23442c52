#pragma once

#include <QByteArray>
#include <QString>

#include "tools/update-catalogue/MarkupFault.h"

namespace vx {

/**
 * Says in words for people why the library refuses the document @p bytes, and where: a bare "&", a
 * tag that is never closed, a byte that is not in the encoding. What is not known is said in the
 * parser's words.
 *
 * @param refusal the message with which the library refused it.
 */
DocumentFault documentFault(const QByteArray& bytes, const QString& refusal);

} // namespace vx
