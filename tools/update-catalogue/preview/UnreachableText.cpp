#include "tools/update-catalogue/preview/UnreachableText.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QStyleOptionViewItem>
#include <QTableWidget>

#include "tools/screenshots/OrdinaryScreen.h"

namespace vx {

namespace {

/** What a cell would need to show all of its text, line for line. */
QSize neededSize(const QTableWidget& table, const QModelIndex& cell)
{
    QStyleOptionViewItem option;
    option.initFrom(&table);
    option.widget = &table;
    return table.itemDelegate()->sizeHint(option, cell);
}

void addCells(const QTableWidget& table, QStringList& texts)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        for (int column = 0; column < table.columnCount() && !table.isRowHidden(row); ++column) {
            const QModelIndex cell = table.model()->index(row, column);
            const QSize needed = neededSize(table, cell);
            // The view scrolls by whole columns, and rows can't be pulled larger.
            if (needed.width() > table.viewport()->width() ||
                needed.height() > table.rowHeight(row)) {
                texts.append(cell.data().toString());
            }
        }
    }
}

template <typename Widget>
void addWidgets(const QWidget& dialog, QStringList& texts)
{
    for (const Widget* widget : dialog.findChildren<const Widget*>()) {
        if (!widget->isVisibleTo(&dialog) || widget->text().isEmpty()) {
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

QStringList unreachableTexts(QDialog& dialog)
{
    const QSize size = dialog.size();
    dialog.resize(screenshots::ordinaryScreen);
    QApplication::processEvents();
    QStringList texts;
    for (const QTableWidget* table : dialog.findChildren<const QTableWidget*>()) {
        addCells(*table, texts);
    }
    addWidgets<QLabel>(dialog, texts);
    addWidgets<QAbstractButton>(dialog, texts);
    dialog.resize(size);
    texts.removeDuplicates();
    return texts;
}

} // namespace vx
