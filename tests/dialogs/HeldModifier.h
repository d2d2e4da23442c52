#pragma once

#include <QApplication>
#include <QWidget>
#include <QtTest>

namespace vx::test {

/**
 * A modifier key that is held down while the object lives.
 *
 * The key goes through a window as from the keyboard, since only that changes what
 * QApplication::keyboardModifiers() says.
 */
class HeldModifier
{
public:
    HeldModifier(Qt::Key key, Qt::KeyboardModifiers modifier)
        : m_key(key)
    {
        m_window.show();
        QTest::keyPress(m_window.windowHandle(), m_key, modifier);
    }
    ~HeldModifier() { QTest::keyRelease(m_window.windowHandle(), m_key, Qt::NoModifier); }
    HeldModifier(const HeldModifier&) = delete;
    HeldModifier& operator=(const HeldModifier&) = delete;

private:
    QWidget m_window;
    Qt::Key m_key;
};

} // namespace vx::test
