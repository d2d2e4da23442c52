#pragma once

#include <QString>

class QDialog;

namespace vx {

/**
 * What stands in @p dialog, for those who can't see its picture: title, labels and buttons, each
 * visible row of the table, the comment. One line each.
 */
QString pictureText(const QDialog& dialog);

} // namespace vx
