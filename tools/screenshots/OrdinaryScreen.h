#pragma once

#include <QSize>

class QDialog;

namespace vx::screenshots {

/** The smallest screen that is still common, at 96 dots per inch. */
constexpr QSize ordinaryScreen(1366, 768);

/**
 * Makes pictures alike on all machines: letters of 96 dots per inch, no scaling, words of a set in
 * the same order in each run. Qt's warnings, of which a platform without a display has many, are
 * not printed. To be called before the QApplication is there.
 */
void prepareOrdinaryScreen();

/** Gives the application letters of the size that desktops have. */
void useOrdinaryFont();

/**
 * Gives @p dialog the size that it would have on an ordinary screen: as its contents ask, with room
 * for up to ten rows of its table and for a comment. To be called again when these change.
 */
void openAsOnOrdinaryScreen(QDialog& dialog);

} // namespace vx::screenshots
