#include "host/CoreQt/Connect.h"

bool vx::connect(const QObject* sender, const char* signal, const QObject* receiver,
                 const char* method, Qt::ConnectionType type)
{
    return QObject::connect(sender, signal, receiver, method, type);
}
