#include "dialogs/SoftwareUpdateAvailableDialog.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QtTest>

#include "tests/dialogs/AvailableDialogAccess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"

using namespace vx::test;
using vx::SoftUpIndexList;
using vx::SoftwareUpdateAvailableDialog;

namespace {

const char* const emptyTableLine =
    "SoftwareUpdateAvailableDialog::setTableEntries() -> no table entries set!";

const QStringList headers = {"Name", "File Size", "File Type", "Languages", "Platforms"};

QList<int> hiddenRows(const QTableWidget& table)
{
    QList<int> rows;
    for (int row = 0; row < table.rowCount(); ++row) {
        if (table.isRowHidden(row)) {
            rows.append(row);
        }
    }
    return rows;
}

} // namespace

class AvailableDialogTableTest : public QObject
{
    Q_OBJECT

private slots:
    void fillsTable();
    void preparesTable();
    void setsHeadersAfterEntries();
    void clearsBeforeItFills();
    void reportsEmptySelectionWhenFilled();
    void reportsOnlyEmptySelectionsWhenRefilled();
    void leavesTableEmpty();
    void leavesOldDimensionsWhenEmptied();
    void takesRaggedRows_data();
    void takesRaggedRows();
    void staysReadOnly();
    void doesNotSortByHeader();
    void hidesExactlyTheRowsGiven_data();
    void hidesExactlyTheRowsGiven();
    void replacesHiddenRows();
    void keepsHiddenRowSelected();
    void showsAndHidesComment();
    void hidesCommentOnRefill();
};

void AvailableDialogTableTest::fillsTable()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    const QTableWidget& table = tableOf(dialog);
    QCOMPARE(table.rowCount(), 3);
    QCOMPARE(table.columnCount(), 5);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 5; ++column) {
            const QTableWidgetItem* item = table.item(row, column);
            QVERIFY(item != nullptr);
            QCOMPARE(item->text(), entries(3).at(row).at(column));
            QCOMPARE(item->type(), int(QTableWidgetItem::Type));
        }
    }
    dialog.setTableEntries(entries(1, 2));
    QCOMPARE(table.rowCount(), 1);
    QCOMPARE(table.columnCount(), 2);
}

void AvailableDialogTableTest::preparesTable()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    QTableWidget& table = tableOf(dialog);
    table.setSortingEnabled(true);
    dialog.setTableEntries(entries(2));
    QVERIFY(table.verticalHeader()->isHidden());
    QVERIFY(!table.isSortingEnabled());
    QVERIFY(!table.horizontalHeader()->highlightSections());
    QVERIFY(!table.horizontalHeader()->isSortIndicatorShown());
    QVERIFY(table.horizontalHeader()->stretchLastSection());
    QCOMPARE(table.editTriggers(), QAbstractItemView::NoEditTriggers);
}

void AvailableDialogTableTest::setsHeadersAfterEntries()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    const QTableWidget& table = tableOf(dialog);
    dialog.setTableEntries({QStringList{"a", "b", "c", "d", "e"}});
    const int narrow = table.columnWidth(1);
    dialog.setTableHeaders(headers);
    for (int column = 0; column < headers.size(); ++column) {
        QCOMPARE(table.horizontalHeaderItem(column)->text(), headers.at(column));
    }
    QVERIFY2(table.columnWidth(1) > narrow, "the column was not fitted to its title");

    dialog.setTableEntries(entries(1));
    QVERIFY2(table.horizontalHeaderItem(0) == nullptr, "the titles were not cleared");
}

void AvailableDialogTableTest::clearsBeforeItFills()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(4));
    tableOf(dialog).selectRow(2);
    dialog.setTableEntries({QStringList{"one"}, QStringList{"two"}});
    const QTableWidget& table = tableOf(dialog);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.columnCount(), 1);
    QCOMPARE(table.item(1, 0)->text(), QString("two"));
    QVERIFY(table.selectedItems().isEmpty());
}

void AvailableDialogTableTest::reportsEmptySelectionWhenFilled()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    const QSignalSpy changed(&dialog, itemsChanged);
    int rowsSeen = -1;
    connect(&dialog, &SoftwareUpdateAvailableDialog::currentItemsChangedSig, this,
            [&] { rowsSeen = tableOf(dialog).rowCount(); });
    dialog.setTableEntries(entries(2));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(indexes(changed, 0), SoftUpIndexList());
    QCOMPARE(rowsSeen, 2);
}

void AvailableDialogTableTest::reportsOnlyEmptySelectionsWhenRefilled()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(5));
    dialog.show();
    clickRow(dialog, 4);
    QSignalSpy changed(&dialog, itemsChanged);
    int rowsSeen = -1;
    connect(&dialog, &SoftwareUpdateAvailableDialog::currentItemsChangedSig, this,
            [&] { rowsSeen = tableOf(dialog).rowCount(); });
    dialog.setTableEntries(entries(2));
    for (int call = 0; call < changed.count(); ++call) {
        QCOMPARE(indexes(changed, call), SoftUpIndexList());
    }
    QCOMPARE(rowsSeen, 2);

    changed.clear();
    clickRow(dialog, 1);
    dialog.setTableEntries({});
    QCOMPARE(indexes(changed, changed.count() - 1), SoftUpIndexList());
}

void AvailableDialogTableTest::leavesTableEmpty()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    const LogCapture log;
    const QSignalSpy changed(&dialog, itemsChanged);
    dialog.setTableEntries({});
    QCOMPARE(tableOf(dialog).rowCount(), 0);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(buttonStates(dialog), QList<bool>({true, true, true}));
    QCOMPARE(log.count(3, emptyTableLine), 1);
    QCOMPARE(log.lines(3).size(), 1);
    QVERIFY(log.lines(1).isEmpty());
    QVERIFY(log.lines(2).isEmpty());
}

void AvailableDialogTableTest::leavesOldDimensionsWhenEmptied()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.setTableHeaders(headers);
    dialog.setCommentText("comment");
    dialog.setInstallButtonState(false);
    const QSignalSpy changed(&dialog, itemsChanged);
    dialog.setTableEntries({});

    const QTableWidget& table = tableOf(dialog);
    QCOMPARE(table.rowCount(), 3);
    QCOMPARE(table.columnCount(), 5);
    QVERIFY(table.item(0, 0) == nullptr);
    QVERIFY(table.horizontalHeaderItem(0) == nullptr);
    QVERIFY(commentOf(dialog).isHidden());
    QVERIFY(commentOf(dialog).toPlainText().isEmpty());
    QCOMPARE(buttonStates(dialog), QList<bool>({true, true, false}));
    QCOMPARE(changed.count(), 0);
}

void AvailableDialogTableTest::takesRaggedRows_data()
{
    using Rows = QList<QStringList>;
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<Rows>("shown");
    QTest::newRow("short second row") << Rows{{"a", "b"}, {"c"}} << Rows{{"a", "b"}, {"c", ""}};
    QTest::newRow("long last row") << Rows{{"a"}, {"b", "c", "d"}} << Rows{{"a"}, {"b"}};
    QTest::newRow("long row before a short one")
        << Rows{{"a", "b"}, {"c", "d", "e"}, {}} << Rows{{"a", "b"}, {"c", "d"}, {"e", ""}};
    QTest::newRow("first row without strings") << Rows{{}, {"a"}} << Rows{{}, {}};
}

void AvailableDialogTableTest::takesRaggedRows()
{
    QFETCH(QList<QStringList>, rows);
    QFETCH(QList<QStringList>, shown);
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(rows);
    const QTableWidget& table = tableOf(dialog);
    QList<QStringList> actual;
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < table.columnCount(); ++column) {
            texts.append(table.model()->index(row, column).data().toString());
        }
        actual.append(texts);
    }
    QCOMPARE(actual, shown);
}

void AvailableDialogTableTest::staysReadOnly()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(2));
    dialog.show();
    QTableWidget& table = tableOf(dialog);
    const QPoint cell = table.visualItemRect(table.item(1, 0)).center();
    clickRow(dialog, 1);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, cell);
    QTest::keyClick(&table, Qt::Key_F2);
    QTest::keyClicks(&table, "x");
    QVERIFY(table.findChildren<QLineEdit*>().isEmpty());
    QCOMPARE(table.item(1, 0)->text(), QString("r1c0"));
}

void AvailableDialogTableTest::doesNotSortByHeader()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries({QStringList{"b", "1"}, QStringList{"c", "2"}, QStringList{"a", "3"}});
    dialog.setTableHeaders({"Name", "File Size"});
    dialog.show();
    QTableWidget& table = tableOf(dialog);
    QHeaderView* header = table.horizontalHeader();
    for (int presses = 0; presses < 2; ++presses) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(0) + 15, header->height() / 2));
        QCOMPARE(table.item(0, 0)->text() + table.item(1, 0)->text() + table.item(2, 0)->text(),
                 QString("bca"));
    }
}

void AvailableDialogTableTest::hidesExactlyTheRowsGiven_data()
{
    QTest::addColumn<QList<int>>("given");
    QTest::addColumn<QList<int>>("hidden");
    QTest::newRow("none") << QList<int>() << QList<int>();
    QTest::newRow("first and last") << QList<int>({0, 4}) << QList<int>({0, 4});
    QTest::newRow("not in order") << QList<int>({3, 1}) << QList<int>({1, 3});
    QTest::newRow("repeated") << QList<int>({2, 2}) << QList<int>({2});
    QTest::newRow("past the last row") << QList<int>({4, 5, 6}) << QList<int>({4});
    QTest::newRow("negative") << QList<int>({-1, 0}) << QList<int>({0});
    QTest::newRow("all") << QList<int>({0, 1, 2, 3, 4}) << QList<int>({0, 1, 2, 3, 4});
}

void AvailableDialogTableTest::hidesExactlyTheRowsGiven()
{
    QFETCH(QList<int>, given);
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(5));
    dialog.setHiddenEntries(given);
    QTEST(hiddenRows(tableOf(dialog)), "hidden");
    QCOMPARE(tableOf(dialog).rowCount(), 5);
}

void AvailableDialogTableTest::replacesHiddenRows()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(5));
    dialog.setHiddenEntries({0, 1});
    dialog.setHiddenEntries({1, 2});
    QCOMPARE(hiddenRows(tableOf(dialog)), QList<int>({1, 2}));
    dialog.setHiddenEntries({});
    QCOMPARE(hiddenRows(tableOf(dialog)), QList<int>());
}

void AvailableDialogTableTest::keepsHiddenRowSelected()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.setTableEntries(entries(3));
    dialog.show();
    clickRow(dialog, 1);
    const QSignalSpy changed(&dialog, itemsChanged);
    dialog.setHiddenEntries({1});
    QCOMPARE(changed.count(), 0);
    QVERIFY(tableOf(dialog).selectionModel()->isRowSelected(1, {}));
    const QSignalSpy downloaded(&dialog, downloadUrls);
    click(dialog, "downloadPushButton");
    QCOMPARE(indexes(downloaded, 0), SoftUpIndexList());
    dialog.setHiddenEntries({});
    click(dialog, "downloadPushButton");
    QCOMPARE(indexes(downloaded, 1), SoftUpIndexList({1}));
}

void AvailableDialogTableTest::showsAndHidesComment()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    QTextBrowser& comment = commentOf(dialog);
    dialog.setCommentText("<b>Name 1.0, Application</b><br />Text");
    QVERIFY(comment.isVisible());
    QCOMPARE(comment.toPlainText(), QString("Name 1.0, Application\nText"));
    dialog.setCommentText("");
    QVERIFY(comment.isHidden());
    QCOMPARE(comment.toPlainText(), QString("Name 1.0, Application\nText"));
    dialog.setCommentText(QString());
    QVERIFY(comment.isHidden());
    dialog.setCommentText("plain");
    QVERIFY(comment.isVisible());
    QCOMPARE(comment.toPlainText(), QString("plain"));
}

void AvailableDialogTableTest::hidesCommentOnRefill()
{
    SoftwareUpdateAvailableDialog dialog(nullptr, {});
    dialog.show();
    dialog.setCommentText("old");
    dialog.setTableEntries(entries(1));
    QVERIFY(commentOf(dialog).isHidden());
    QVERIFY(commentOf(dialog).toPlainText().isEmpty());
}

VX_TEST_MAIN(AvailableDialogTableTest)
#include "tst_AvailableDialogTable.moc"
