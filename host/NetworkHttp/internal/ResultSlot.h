#pragma once

#include <QMetaMethod>
#include <QObject>

#include "host/NetworkHttp/RequestData.h"

namespace vx {

/**
 * The slot of @p receiver that @p slot names, as the SLOT macro writes it.
 *
 * @return an invalid method, with a warning, if @p receiver has no slot or signal of that name that
 *         takes a RequestPtr or nothing; without a warning if either is null.
 */
QMetaMethod resultSlot(const QObject* receiver, const char* slot);

/** Calls @p slot of @p receiver with @p request; false if there is nobody to call. */
bool callResultSlot(QObject* receiver, const QMetaMethod& slot, const RequestPtr& request);

} // namespace vx
