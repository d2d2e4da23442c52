#include "host/GUIBaseUtils/DialogFlags.h"

namespace vx {

namespace {

// Naming any button makes Qt leave out those that are not named.
constexpr Qt::WindowFlags dialogWithCloseButton =
    Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

} // namespace

Qt::WindowFlags dialogFlags(bool standsAlone)
{
    return standsAlone ? dialogWithCloseButton | Qt::WindowMaximizeButtonHint
                       : dialogWithCloseButton;
}

Qt::WindowFlags sheetDialogFlags(QWidget* parent)
{
#ifdef Q_OS_MACOS
    if (parent != nullptr) {
        return Qt::Sheet;
    }
#else
    Q_UNUSED(parent)
#endif
    return dialogWithCloseButton;
}

} // namespace vx
