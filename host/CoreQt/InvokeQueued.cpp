#include "host/CoreQt/InvokeQueued.h"

#include <QByteArray>
#include <QDebug>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QStringList>
#include <QVector>

#include <algorithm>

#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

using Arguments = QVector<QGenericArgument>;

/** A method as the caller wrote it, without the digit that SLOT() and SIGNAL() put in front. */
QByteArray bareMethod(const char* method)
{
    const QByteArray text(method);
    const bool hasCode = !text.isEmpty() && text.front() >= '0' && text.front() <= '9';
    return text.mid(hasCode ? 1 : 0);
}

QString withoutQualifiers(const QByteArray& signature)
{
    static const QRegularExpression qualifier(QStringLiteral("\\w+::"));
    return QString::fromUtf8(signature).remove(qualifier);
}

/** Whether @p method is the one written: by its name, or by its name and its parameters. */
bool hasWrittenForm(const QMetaMethod& method, const QByteArray& written)
{
    if (!written.contains('(')) {
        return method.name() == written;
    }
    const QByteArray signature = QMetaObject::normalizedSignature(written.constData());
    return withoutQualifiers(method.methodSignature()) == withoutQualifiers(signature);
}

/** Whether two type names are the same, one of them perhaps without its namespace. */
bool isSameName(const QByteArray& a, const QByteArray& b)
{
    return a == b || a.endsWith("::" + b) || b.endsWith("::" + a);
}

bool takes(const QMetaMethod& method, int index, const QGenericArgument& argument)
{
    const int wanted = method.parameterType(index);
    const int given = metaTypeId(argument.name());
    // Names decide only where a type is not registered: two types may share their last name.
    if (wanted != QMetaType::UnknownType && given != QMetaType::UnknownType) {
        return wanted == given;
    }
    return isSameName(method.parameterTypes().at(index),
                      QMetaObject::normalizedType(argument.name()));
}

bool takesAll(const QMetaMethod& method, const Arguments& arguments)
{
    if (method.parameterCount() != arguments.size()) {
        return false;
    }
    for (int i = 0; i < arguments.size(); ++i) {
        if (!takes(method, i, arguments.at(i))) {
            return false;
        }
    }
    return true;
}

/** The method to call, the one of the most derived class first; invalid if there is none. */
QMetaMethod findMethod(const QMetaObject* metaObject, const QByteArray& written,
                       const Arguments& arguments)
{
    for (int i = metaObject->methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = metaObject->method(i);
        if (hasWrittenForm(method, written) && takesAll(method, arguments)) {
            return method;
        }
    }
    return {};
}

void warnOfMissing(const QObject* receiver, const QByteArray& written, const Arguments& arguments)
{
    QStringList types;
    for (const QGenericArgument& argument : arguments) {
        types.append(QString::fromUtf8(argument.name()));
    }
    qWarning("invokeQueued: %s has no method %s for the arguments (%s)",
             receiver->metaObject()->className(), written.constData(),
             qPrintable(types.join(QLatin1Char(','))));
}

} // namespace

void invokeQueued(QObject* receiver, const char* method, QGenericArgument a0, QGenericArgument a1,
                  QGenericArgument a2, QGenericArgument a3, QGenericArgument a4,
                  QGenericArgument a5, QGenericArgument a6, QGenericArgument a7,
                  QGenericArgument a8, QGenericArgument a9)
{
    const QByteArray written = bareMethod(method);
    if (receiver == nullptr || written.isEmpty()) {
        return;
    }
    Arguments arguments{a0, a1, a2, a3, a4, a5, a6, a7, a8, a9};
    const auto end = std::find_if(arguments.begin(), arguments.end(), [](const auto& argument) {
        return argument.name() == nullptr || *argument.name() == '\0';
    });
    arguments.erase(end, arguments.end());
    const QMetaMethod found = findMethod(receiver->metaObject(), written, arguments);
    if (!found.isValid()) {
        warnOfMissing(receiver, written, arguments);
        return;
    }
    found.invoke(receiver, Qt::QueuedConnection, a0, a1, a2, a3, a4, a5, a6, a7, a8, a9);
}

} // namespace vx
