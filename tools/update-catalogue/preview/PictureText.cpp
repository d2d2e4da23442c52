#include "tools/update-catalogue/preview/PictureText.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QTableWidget>
#include <QTextBrowser>
#include <QTextDocumentFragment>

namespace vx {

namespace {

void addRows(const QTableWidget& table, QStringList& lines)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < table.columnCount() && !table.isRowHidden(row); ++column) {
            cells.append(table.model()->index(row, column).data().toString().simplified());
        }
        if (!cells.isEmpty()) {
            lines.append(cells.join(" | "));
        }
    }
}

void addLine(const QString& text, QStringList& lines)
{
    const QString plain = QTextDocumentFragment::fromHtml(text).toPlainText();
    if (!plain.isEmpty()) {
        lines.append(plain);
    }
}

} // namespace

QString pictureText(const QDialog& dialog)
{
    QStringList lines{dialog.windowTitle()};
    for (const QWidget* widget : dialog.findChildren<const QWidget*>()) {
        if (!widget->isVisibleTo(&dialog)) {
            continue;
        }
        if (const auto* table = qobject_cast<const QTableWidget*>(widget)) {
            addRows(*table, lines);
        } else if (const auto* comment = qobject_cast<const QTextBrowser*>(widget)) {
            lines.append(comment->toPlainText());
        } else if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            addLine(label->text(), lines);
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            addLine(button->text(), lines);
        }
    }
    return lines.join('\n');
}

} // namespace vx
