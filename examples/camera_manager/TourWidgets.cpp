#include "examples/camera_manager/TourWidgets.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTableWidget>

namespace {

QWidget* visibleWindowNamed(const char* name)
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName() == QLatin1String(name)) {
            return widget;
        }
    }
    return nullptr;
}

/** Posted, not sent: what a click opens may have an event loop of its own. */
void postClick(QWidget* widget, const QPoint& where)
{
    const QPoint global = widget->mapToGlobal(where);
    QCoreApplication::postEvent(widget,
                                new QMouseEvent(QEvent::MouseButtonPress, where, global,
                                                Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    QCoreApplication::postEvent(widget,
                                new QMouseEvent(QEvent::MouseButtonRelease, where, global,
                                                Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
}

QStringList rowTexts(const QTableWidget* table, int row)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column) {
        const QTableWidgetItem* item = table->item(row, column);
        texts.append(item != nullptr ? item->text() : QString());
    }
    return texts;
}

} // namespace

QWidget* settingsDialog()
{
    return visibleWindowNamed("SoftwareUpdateDialogGui");
}

QWidget* updateAvailableDialog()
{
    return visibleWindowNamed("SoftwareUpdateAvailableGui");
}

QMessageBox* messageBox()
{
    return visibleWindow<QMessageBox>();
}

QString labelText(const QWidget* window, const char* name)
{
    const auto* label = window->findChild<QLabel*>(QLatin1String(name));
    return label != nullptr ? label->text() : QString();
}

QStringList visibleRows(const QTableWidget* table)
{
    QStringList rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (!table->isRowHidden(row)) {
            rows.append(rowTexts(table, row).join(" | "));
        }
    }
    return rows;
}

void clickButton(const QWidget* window, const char* name)
{
    if (window != nullptr) {
        clickButton(window->findChild<QAbstractButton*>(QLatin1String(name)));
    }
}

void clickButton(QAbstractButton* button)
{
    if (button != nullptr) {
        postClick(button, button->rect().center());
    }
}

void clickRow(QTableWidget* table, int row)
{
    postClick(table->viewport(), table->visualItemRect(table->item(row, 0)).center());
}

QString describeScreen()
{
    QStringList windows;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible()) {
            const auto* box = qobject_cast<const QMessageBox*>(widget);
            const QString text = box != nullptr ? ": " + box->text() : QString();
            windows.append(QStringLiteral("\"%1%2\"").arg(widget->windowTitle(), text));
        }
    }
    return windows.join(", ");
}
