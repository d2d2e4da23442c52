#pragma once

#include <QWidget>
#include <QtTest>

namespace vx::test {

/** The child of @p parent with this object name; a missing one ends the program with a message. */
template <class Child>
Child& child(const QWidget& parent, const char* name)
{
    auto* found = parent.findChild<Child*>(QString::fromLatin1(name));
    if (found == nullptr) {
        qFatal("%s has no child %s of this class", qPrintable(parent.objectName()), name);
    }
    return *found;
}

/** Presses the named button with the mouse. */
inline void click(const QWidget& parent, const char* name)
{
    QTest::mouseClick(&child<QWidget>(parent, name), Qt::LeftButton);
}

/** Signatures of the methods of one kind and access that @p type itself declares, in order. */
inline QStringList methodsOf(const QMetaObject& type, QMetaMethod::MethodType kind,
                             QMetaMethod::Access access)
{
    QStringList result;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == kind && method.access() == access) {
            result.append(QString::fromLatin1(method.methodSignature()));
        }
    }
    return result;
}

} // namespace vx::test
