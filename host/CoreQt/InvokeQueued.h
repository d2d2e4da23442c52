#pragma once

#include <QGenericArgument>

#include "host/CoreQt/CoreQtExport.h"

class QObject;

namespace vx {

/**
 * Calls a method of @p receiver through the event loop of the receiver's thread.
 *
 * @p method is a bare name, a signature, or what SLOT() and SIGNAL() make of a signature. The
 * method called is the one of that name with as many parameters as there are arguments and with
 * their types. A type may be qualified on one side only: an argument "vx::PackageInfoList" meets a
 * parameter declared as PackageInfoList.
 *
 * The arguments are copied before this returns; their types must be registered meta-types. The
 * first argument without a name ends the list. A receiver that is destroyed before its event loop
 * comes round is not called. A null receiver, or a null or empty method, does nothing; a method
 * that the receiver does not have leaves a warning and does nothing else.
 */
VX_COREQT_EXPORT void
invokeQueued(QObject* receiver, const char* method, QGenericArgument a0 = QGenericArgument(),
             QGenericArgument a1 = QGenericArgument(), QGenericArgument a2 = QGenericArgument(),
             QGenericArgument a3 = QGenericArgument(), QGenericArgument a4 = QGenericArgument(),
             QGenericArgument a5 = QGenericArgument(), QGenericArgument a6 = QGenericArgument(),
             QGenericArgument a7 = QGenericArgument(), QGenericArgument a8 = QGenericArgument(),
             QGenericArgument a9 = QGenericArgument());

} // namespace vx
