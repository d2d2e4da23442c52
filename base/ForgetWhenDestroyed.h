#pragma once

#include <QObject>

namespace vx {

/**
 * Sets @p pointer to null when the object it points to now is destroyed by someone else.
 *
 * A later assignment is left alone: only the object of this call is ever forgotten. Does nothing
 * for null.
 *
 * @param owner the object that holds @p pointer as a member; the link ends with it.
 */
template <typename Object>
void forgetWhenDestroyed(QObject* owner, Object*& pointer)
{
    if (pointer == nullptr) {
        return;
    }
    QObject::connect(pointer, &QObject::destroyed, owner, [&pointer](QObject* gone) {
        if (pointer == gone) {
            pointer = nullptr;
        }
    });
}

} // namespace vx
