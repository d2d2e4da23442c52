#pragma once

#include <QObject>

#include "host/CoreQt/CoreQtExport.h"

namespace vx {

/**
 * Joins a signal to a slot, or to another signal, by their signature strings.
 *
 * Behaves as QObject::connect does: a signature that does not exist, or a null object, leaves a
 * warning and no connection. The connection ends with either object.
 *
 * @return whether the connection was made.
 */
VX_COREQT_EXPORT bool connect(const QObject* sender, const char* signal, const QObject* receiver,
                              const char* method, Qt::ConnectionType type);

} // namespace vx
