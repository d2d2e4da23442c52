#include "tools/update-catalogue/preview/ClippedText.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>

namespace vx {

namespace {

void addClippedCells(const QTableWidget& table, QStringList& texts)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        if (table.isRowHidden(row)) {
            continue;
        }
        for (int column = 0; column < table.columnCount(); ++column) {
            const QTableWidgetItem* item = table.item(row, column);
            const int left = table.visualRect(table.model()->index(row, column)).left();
            // A row further down is scrolled to; what stands beyond the right edge is missed.
            if (item != nullptr && left + table.fontMetrics().horizontalAdvance(item->text()) >
                                       table.viewport()->width()) {
                texts.append(item->text());
            }
        }
    }
}

template <typename Widget>
void addClippedWidgets(const QWidget& window, QStringList& texts)
{
    for (const Widget* widget : window.findChildren<const Widget*>()) {
        if (!widget->isVisibleTo(&window) || widget->text().isEmpty()) {
            continue;
        }
        const int width = widget->width();
        const bool wraps = widget->heightForWidth(width) > 0;
        const bool fits = wraps ? widget->heightForWidth(width) <= widget->height()
                                : widget->sizeHint().width() <= width;
        if (!fits) {
            texts.append(widget->text());
        }
    }
}

} // namespace

QStringList clippedTexts(const QWidget& window)
{
    QStringList texts;
    for (const QTableWidget* table : window.findChildren<const QTableWidget*>()) {
        addClippedCells(*table, texts);
    }
    addClippedWidgets<QLabel>(window, texts);
    addClippedWidgets<QAbstractButton>(window, texts);
    return texts;
}

} // namespace vx
