#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QScopedPointer>
#include <QtTest>

#include "tests/dialogs/ChildAccess.h"
#include "tests/support/TestMain.h"
#include "tools/screenshots/DialogScenes.h"

using namespace vx::test;
using namespace vx::screenshots;

namespace {

QString sizeText(const QSize& size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

/** What a widget needs so that none of its text is cut off. */
QSize neededSize(const QWidget& widget)
{
    if (widget.hasHeightForWidth()) {
        return {0, widget.heightForWidth(widget.width())};
    }
    return widget.sizeHint();
}

bool showsText(const QWidget* widget)
{
    return qobject_cast<const QLabel*>(widget) != nullptr ||
           qobject_cast<const QAbstractButton*>(widget) != nullptr ||
           qobject_cast<const QComboBox*>(widget) != nullptr;
}

/** The visible children that take part in the dialog's own layouts. */
QList<QWidget*> shownChildren(const QDialog& dialog)
{
    QList<QWidget*> result;
    for (QWidget* widget : dialog.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (widget->isVisible()) {
            result.append(widget);
        }
    }
    return result;
}

QStringList clipped(const QDialog& dialog)
{
    QStringList result;
    for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
        const bool ours = !widget->objectName().startsWith("qt_");
        const QSize needed = neededSize(*widget);
        if (ours && widget->isVisible() && showsText(widget) &&
            widget->size().expandedTo(needed) != widget->size()) {
            result.append(widget->objectName() + " is " + sizeText(widget->size()) + " and needs " +
                          sizeText(needed));
        }
    }
    return result;
}

QStringList overlapping(const QDialog& dialog)
{
    QStringList result;
    const QList<QWidget*> children = shownChildren(dialog);
    for (int i = 0; i < children.size(); ++i) {
        if (!dialog.rect().contains(children.at(i)->geometry())) {
            result.append(children.at(i)->objectName() + " leaves the dialog");
        }
        for (int j = 0; j < i; ++j) {
            if (children.at(i)->geometry().intersects(children.at(j)->geometry())) {
                result.append(children.at(i)->objectName() + " covers " +
                              children.at(j)->objectName());
            }
        }
    }
    return result;
}

} // namespace

class DialogLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void fitsItsTexts_data();
    void fitsItsTexts();
    void staysWithinSmallScreen_data() { fitsItsTexts_data(); }
    void staysWithinSmallScreen();
};

void DialogLayoutTest::fitsItsTexts_data()
{
    QTest::addColumn<int>("scene");
    QTest::addColumn<int>("look");
    for (int look = 0; look < looks().size(); ++look) {
        for (int scene = 0; scene < scenes().size(); ++scene) {
            QTest::addRow("%s-%s", qPrintable(scenes().at(scene).name),
                          qPrintable(looks().at(look).name()))
                << scene << look;
        }
    }
}

void DialogLayoutTest::fitsItsTexts()
{
    QFETCH(int, scene);
    QFETCH(int, look);
    const AppliedLook applied(looks().at(look));
    const QScopedPointer<QDialog> dialog(scenes().at(scene).build());
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.data()));
    QCoreApplication::processEvents();
    QCOMPARE(clipped(*dialog).join('\n'), QString());
    QCOMPARE(overlapping(*dialog).join('\n'), QString());
}

void DialogLayoutTest::staysWithinSmallScreen()
{
    QFETCH(int, scene);
    QFETCH(int, look);
    const AppliedLook applied(looks().at(look));
    const QScopedPointer<QDialog> dialog(scenes().at(scene).build());
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.data()));
    const QSize screen(1280, 720);
    QCOMPARE(dialog->minimumSize().boundedTo(screen), dialog->minimumSize());
    QCOMPARE(dialog->size().boundedTo(screen), dialog->size());
}

VX_TEST_MAIN(DialogLayoutTest)
#include "tst_DialogLayout.moc"
