#include "host/NetworkHttp/internal/ResultSlot.h"

#include <QtGlobal>

namespace vx {

namespace {

/** QMetaMethod::invoke does not check types, so that a slot of other parameters must not pass. */
bool takesRequest(const QMetaMethod& method)
{
    const QList<QByteArray> types = method.parameterTypes();
    return types.isEmpty() || (types.size() == 1 && types.first() == "RequestPtr");
}

} // namespace

QMetaMethod resultSlot(const QObject* receiver, const char* slot)
{
    if (receiver == nullptr || slot == nullptr) {
        return QMetaMethod();
    }
    // The macros SLOT and SIGNAL put a digit in front.
    const bool hasCode = *slot >= '0' && *slot <= '9';
    const QByteArray signature = QMetaObject::normalizedSignature(hasCode ? slot + 1 : slot);
    const QMetaObject* const meta = receiver->metaObject();
    const QMetaMethod method = meta->method(meta->indexOfMethod(signature.constData()));
    if (!method.isValid() || !takesRequest(method)) {
        qWarning("HttpClient: No such slot %s::%s", meta->className(), signature.constData());
        return QMetaMethod();
    }
    return method;
}

bool callResultSlot(QObject* receiver, const QMetaMethod& slot, const RequestPtr& request)
{
    if (receiver == nullptr || !slot.isValid()) {
        return false;
    }
    return slot.parameterCount() == 0 ? slot.invoke(receiver)
                                      : slot.invoke(receiver, Q_ARG(RequestPtr, request));
}

} // namespace vx
