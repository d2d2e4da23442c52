#include "host/CoreQt/InvokeQueued.h"

#include <QMetaObject>

namespace vx {

void invokeQueued(QObject* receiver, const char* method, QGenericArgument a0, QGenericArgument a1,
                  QGenericArgument a2, QGenericArgument a3, QGenericArgument a4,
                  QGenericArgument a5, QGenericArgument a6, QGenericArgument a7,
                  QGenericArgument a8, QGenericArgument a9)
{
    if (receiver != nullptr) {
        QMetaObject::invokeMethod(receiver, method, Qt::QueuedConnection, a0, a1, a2, a3, a4, a5,
                                  a6, a7, a8, a9);
    }
}

} // namespace vx
