#include "tools/screenshots/OrdinaryScreen.h"

#include <QApplication>
#include <QDialog>
#include <QHashFunctions>
#include <QHeaderView>
#include <QLayout>
#include <QSplitter>
#include <QTableWidget>
#include <QTextBrowser>
#include <QTextStream>

#include <algorithm>

namespace vx::screenshots {

namespace {

constexpr int mostRows = 10;
constexpr int ordinaryPointSize = 10;

int visibleRows(const QTableWidget& table)
{
    int count = 0;
    for (int row = 0; row < table.rowCount(); ++row) {
        count += table.isRowHidden(row) ? 0 : 1;
    }
    return count;
}

/** The height at which no row has to be scrolled to, unless there are very many. */
int comfortableHeight(const QTableWidget& table)
{
    const int rows = std::min(visibleRows(table), mostRows);
    const int needed = table.horizontalHeader()->sizeHint().height() +
                       rows * table.verticalHeader()->defaultSectionSize() + 2 * table.frameWidth();
    return std::max(needed, table.sizeHint().height());
}

/** Platforms without a display have much to remark, of which no picture is any better. */
void dropRemarks(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        QTextStream(stderr) << qFormatLogMessage(type, context, text) << '\n';
    }
}

} // namespace

void prepareOrdinaryScreen()
{
    qInstallMessageHandler(dropRemarks);
    qSetGlobalQHashSeed(0);
    qputenv("QT_FONT_DPI", "96");
    for (const char* scaling : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS",
                                "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_ENABLE_HIGHDPI_SCALING"}) {
        qunsetenv(scaling);
    }
}

void useOrdinaryFont()
{
    QFont font = QApplication::font();
    font.setPointSize(ordinaryPointSize);
    QApplication::setFont(font);
}

// The offscreen platform has a screen of 800 by 600, of which a new dialog takes two thirds at
// most. An ordinary screen lets it open as its contents ask.
void openAsOnOrdinaryScreen(QDialog& dialog)
{
    const auto* table = dialog.findChild<QTableWidget*>();
    const auto* comment = dialog.findChild<QTextBrowser*>();
    if (table == nullptr || comment == nullptr) {
        return;
    }
    const int rows = comfortableHeight(*table);
    const int text = comment->sizeHint().height();
    const int room = rows - table->sizeHint().height() + (comment->isHidden() ? text : 0);
    dialog.resize((dialog.sizeHint() + QSize(0, room)).boundedTo(ordinaryScreen));
    // The splitter shares out what it has by then.
    dialog.layout()->activate();
    dialog.findChild<QSplitter*>()->setSizes({rows, text});
}

} // namespace vx::screenshots
