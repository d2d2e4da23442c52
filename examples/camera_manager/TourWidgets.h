#pragma once

#include <QApplication>
#include <QString>
#include <QWidget>

class QAbstractButton;
class QMessageBox;
class QTableWidget;

/** The open settings dialog, or null. */
QWidget* settingsDialog();

/** The open update-available dialog, or null. */
QWidget* updateAvailableDialog();

/** The open message box, or null. */
QMessageBox* messageBox();

/** A visible window of class @p Window, or null. */
template <class Window>
Window* visibleWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<Window*>(widget);
        if (window != nullptr && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

/** The text of the label @p name in @p window; empty if there is none. */
QString labelText(const QWidget* window, const char* name);

/** The rows of @p table that can be seen, as text. */
QStringList visibleRows(const QTableWidget* table);

/** Clicks with the mouse on the button @p name of @p window, once the caller is done. Without
   window or button nothing happens, which the next step of a tour notices. */
void clickButton(const QWidget* window, const char* name);

/** The same on @p button. */
void clickButton(QAbstractButton* button);

/** Clicks with the mouse on the first cell of @p row, once the caller is done. */
void clickRow(QTableWidget* table, int row);

/** The titles and texts of the windows that are open, for a report. */
QString describeScreen();
