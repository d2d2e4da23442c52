#include <QDialog>
#include <QMessageBox>
#include <QtTest>

#include "host/GUIBaseUtils/DialogFlags.h"
#include "tests/support/TestMain.h"

class DialogFlagsTest : public QObject
{
    Q_OBJECT

private slots:
    void areThoseOfADialog_data();
    void areThoseOfADialog();
    void onlyADialogOfItsOwnIsMaximised();
    void sheetBelongsToItsParent();
    void takeEffectOnADialog();
};

void DialogFlagsTest::areThoseOfADialog_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("true") << int(vx::dialogFlags(true));
    QTest::newRow("false") << int(vx::dialogFlags(false));
    QTest::newRow("sheet without parent") << int(vx::sheetDialogFlags(nullptr));
}

void DialogFlagsTest::areThoseOfADialog()
{
    QFETCH(int, flags);
    QCOMPARE(flags & int(Qt::WindowType_Mask), int(Qt::Dialog));
    QVERIFY((flags & Qt::WindowTitleHint) != 0);
    QVERIFY((flags & Qt::WindowCloseButtonHint) != 0);
    QVERIFY((flags & Qt::WindowContextHelpButtonHint) == 0);
    QVERIFY((flags & Qt::WindowMinimizeButtonHint) == 0);
    QVERIFY((flags & Qt::WindowStaysOnTopHint) == 0);
}

void DialogFlagsTest::onlyADialogOfItsOwnIsMaximised()
{
    QVERIFY(vx::dialogFlags(true).testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(!vx::dialogFlags(false).testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(vx::dialogFlags(true) != vx::dialogFlags(false));
}

void DialogFlagsTest::sheetBelongsToItsParent()
{
    QWidget parent;
    const Qt::WindowFlags type = vx::sheetDialogFlags(&parent) & Qt::WindowType_Mask;
#ifdef Q_OS_MACOS
    QCOMPARE(type, Qt::WindowFlags(Qt::Sheet));
#else
    QCOMPARE(type, Qt::WindowFlags(Qt::Dialog));
#endif
}

void DialogFlagsTest::takeEffectOnADialog()
{
    for (const Qt::WindowFlags flags : {vx::dialogFlags(true), vx::dialogFlags(false)}) {
        const QDialog dialog(nullptr, flags);
        QCOMPARE(dialog.windowFlags(), flags);
    }
    QWidget parent;
    const QMessageBox box(QMessageBox::Warning, QStringLiteral("Title"), QStringLiteral("Text"),
                          QMessageBox::NoButton, &parent, vx::sheetDialogFlags(&parent));
    QVERIFY(box.isWindow());
    QVERIFY(!box.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QVERIFY(box.windowFlags().testFlag(Qt::WindowCloseButtonHint));
}

VX_TEST_MAIN(DialogFlagsTest)
#include "tst_DialogFlags.moc"
