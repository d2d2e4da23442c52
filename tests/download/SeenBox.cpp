#include "tests/download/SeenBox.h"

#include <QPushButton>

namespace vx::test {

bool noteAndClose(QDialog* dialog, SeenBox& seen)
{
    auto* box = qobject_cast<QMessageBox*>(dialog);
    if (box == nullptr || !box->isVisible()) {
        return false;
    }
    seen = {box->windowTitle(),     box->text(),    box->icon(),
            box->standardButtons(), box->isModal(), box->parent() != nullptr};
    box->button(QMessageBox::Ok)->click();
    return true;
}

} // namespace vx::test
