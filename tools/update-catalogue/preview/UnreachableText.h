#pragma once

#include <QStringList>

class QDialog;

namespace vx {

/**
 * Texts of @p dialog that a person can't read in full, whatever is done: cells that are wider than
 * the dialog on an ordinary screen or that have more lines than a row shows, and labels and buttons
 * that are cut off even then. What can be scrolled to, or seen in a wider dialog or column, is not
 * among them. The dialog has its size again afterwards.
 */
QStringList unreachableTexts(QDialog& dialog);

} // namespace vx
