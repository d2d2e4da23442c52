#pragma once

#include <Qt>

#include "host/GUIBaseUtils/GUIBaseUtilsExport.h"

class QWidget;

namespace vx {

/**
 * The window flags of a dialog: title, system menu and close button, but no button for context
 * help, which our dialogs do not have, and none to minimise, since a modal dialog that is out of
 * sight makes the application look frozen.
 *
 * @param standsAlone true for a dialog of the application itself, which may be maximised; false for
 *     one opened from another dialog, which it should not cover.
 */
VX_GUIBASEUTILS_EXPORT Qt::WindowFlags dialogFlags(bool standsAlone);

/**
 * The window flags of a message box that belongs to @p parent: on macOS a sheet of its window, on
 * other systems, and without a parent, a dialog of its own with title and close button.
 */
VX_GUIBASEUTILS_EXPORT Qt::WindowFlags sheetDialogFlags(QWidget* parent);

} // namespace vx
