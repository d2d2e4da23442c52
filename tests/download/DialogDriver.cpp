#include "tests/download/DialogDriver.h"

#include <QApplication>

namespace vx::test {

DialogDriver::DialogDriver(const Handler& handler)
    : m_handler(handler)
{
    connect(&m_timer, SIGNAL(timeout()), SLOT(look()));
    m_timer.start(1);
}

void DialogDriver::look()
{
    m_known.removeAll(nullptr);
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget* widget : widgets) {
        auto* dialog = qobject_cast<QDialog*>(widget);
        if (dialog != nullptr && !m_known.contains(dialog) && m_handler(dialog)) {
            ++m_handled;
            m_known.append(dialog);
            return; // the handler may have closed others
        }
    }
}

} // namespace vx::test
