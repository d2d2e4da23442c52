#pragma once

#include <QMessageBox>
#include <QString>

namespace vx::test {

/** What a message box showed before it was closed. */
struct SeenBox
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    bool modal = false;
    bool hasParent = true;
};

/** Notes what @p dialog shows and presses its OK. @return false unless it is a visible box. */
bool noteAndClose(QDialog* dialog, SeenBox& seen);

} // namespace vx::test
