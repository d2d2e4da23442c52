// The size that pictures give to the dialogs: what a person would see, without a needless scroll
// bar.
#include <QDialog>
#include <QScopedPointer>
#include <QScrollBar>
#include <QTableWidget>
#include <QTextBrowser>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/support/TestMain.h"
#include "tools/screenshots/OrdinaryScreen.h"

using namespace vx::screenshots;

namespace {

/** A dialog with so many rows, a comment if wanted, shown as on an ordinary screen. */
void open(vx::SoftwareUpdateAvailableDialog& dialog, int rows, const QString& comment)
{
    QList<QStringList> entries;
    for (int row = 0; row < rows; ++row) {
        entries.append(QStringList{"Firmware 4.2", "0.6 MB", "zip", "de, en", "Dome-24"});
    }
    dialog.setTableEntries(entries);
    dialog.setTableHeaders({"Name", "File Size", "File Type", "Languages", "Platforms"});
    dialog.setCommentText(comment);
    openAsOnOrdinaryScreen(dialog);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCoreApplication::processEvents();
}

} // namespace

class OrdinaryScreenTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useOrdinaryFont(); }
    void hasRoomForTenRows_data();
    void hasRoomForTenRows();
    void endsWithTheScreen();
    void leavesOtherDialogsAlone();
};

void OrdinaryScreenTest::hasRoomForTenRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("comment");
    QTest::addColumn<bool>("scrolls");

    QTest::newRow("one") << 1 << QString() << false;
    QTest::newRow("ten") << 10 << QString() << false;
    QTest::newRow("ten and a comment") << 10 << "New in this version" << false;
    QTest::newRow("five hundred") << 500 << "New in this version" << true;
}

void OrdinaryScreenTest::hasRoomForTenRows()
{
    QFETCH(int, rows);
    QFETCH(QString, comment);
    QFETCH(bool, scrolls);

    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    open(dialog, rows, comment);
    const auto* table = dialog.findChild<QTableWidget*>();
    QCOMPARE(table->verticalScrollBar()->maximum() > 0, scrolls);
    const auto* text = dialog.findChild<QTextBrowser*>();
    QCOMPARE(text->isVisible(), !comment.isEmpty());
    QCOMPARE(text->verticalScrollBar()->maximum(), 0);
}

void OrdinaryScreenTest::endsWithTheScreen()
{
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    open(dialog, 500, "New in this version");
    QCOMPARE(dialog.size().boundedTo(ordinaryScreen), dialog.size());
}

void OrdinaryScreenTest::leavesOtherDialogsAlone()
{
    vx::SoftwareUpdateDialog dialog(nullptr, {});
    const QSize size = dialog.size();
    openAsOnOrdinaryScreen(dialog);
    QCOMPARE(dialog.size(), size);
}

VX_TEST_MAIN(OrdinaryScreenTest)
#include "tst_OrdinaryScreen.moc"
