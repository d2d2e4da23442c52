#pragma once

#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTextBrowser>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/dialogs/ChildAccess.h"

namespace vx::test {

const char* const downloadUrls = SIGNAL(downloadUrls(SoftUpIndexList));
const char* const installPackage = SIGNAL(installPackage(int));
const char* const itemsChanged = SIGNAL(currentItemsChangedSig(SoftUpIndexList));
const char* const releaseNotes = SIGNAL(downloadReleaseNotes(SoftUpIndexList));

/** Rows of texts that name their place, as in "r0c1". */
inline QList<QStringList> entries(int count, int columns = 5)
{
    QList<QStringList> rows;
    for (int row = 0; row < count; ++row) {
        QStringList texts;
        for (int column = 0; column < columns; ++column) {
            texts.append(QStringLiteral("r%1c%2").arg(row).arg(column));
        }
        rows.append(texts);
    }
    return rows;
}

inline QTableWidget& tableOf(const QWidget& dialog)
{
    return child<QTableWidget>(dialog, "tableWidget");
}

inline QTextBrowser& commentOf(const QWidget& dialog)
{
    return child<QTextBrowser>(dialog, "commentText");
}

/** Clicks into the first cell of a row. */
inline void clickRow(const QWidget& dialog, int row,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QTableWidget& table = tableOf(dialog);
    QTest::mouseClick(table.viewport(), Qt::LeftButton, modifiers,
                      table.visualItemRect(table.item(row, 0)).center());
}

/** The rows that the signal carried at this call. */
inline SoftUpIndexList indexes(const QSignalSpy& spy, int call)
{
    return spy.at(call).at(0).value<SoftUpIndexList>();
}

/** Whether release notes, download and install are enabled. */
inline QList<bool> buttonStates(const QWidget& dialog)
{
    return {child<QPushButton>(dialog, "releaseNotesPushButton").isEnabled(),
            child<QPushButton>(dialog, "downloadPushButton").isEnabled(),
            child<QPushButton>(dialog, "installPushButton").isEnabled()};
}

} // namespace vx::test
