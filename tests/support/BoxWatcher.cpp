#include "tests/support/BoxWatcher.h"

#include <QAbstractButton>
#include <QApplication>
#include <QtTest>

namespace vx::test {

namespace {

QString plainText(const QAbstractButton* button)
{
    return button->text().remove(QLatin1Char('&'));
}

SeenBox lookedAt(const QMessageBox& box)
{
    QStringList buttons;
    for (const QAbstractButton* button : box.buttons()) {
        buttons << plainText(button);
    }
    buttons.sort();
    return {box.icon(),         box.windowTitle(), box.text(),    buttons,
            box.parentWidget(), box.windowFlags(), box.isModal(), box.textFormat()};
}

void click(QMessageBox* box, const QString& text)
{
    for (QAbstractButton* button : box->buttons()) {
        if (plainText(button) == text) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    qFatal("no button \"%s\" in the box", qPrintable(text));
}

} // namespace

BoxWatcher::BoxWatcher()
{
    QObject::connect(&m_timer, &QTimer::timeout, this, &BoxWatcher::look);
    m_timer.start(5);
}

void BoxWatcher::willClick(const QString& buttonText)
{
    willDo([buttonText](QMessageBox* box) { click(box, buttonText); });
}

void BoxWatcher::willPressEscape()
{
    willDo([](QMessageBox* box) { QTest::keyClick(box, Qt::Key_Escape); });
}

void BoxWatcher::willClose()
{
    willDo([](QMessageBox* box) { box->close(); });
}

void BoxWatcher::willDo(const std::function<void(QMessageBox*)>& action)
{
    m_answers.append(action);
}

void BoxWatcher::look()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || !box->isVisible()) {
        return;
    }
    m_seen.append(lookedAt(*box));
    if (m_answers.isEmpty()) {
        willPressEscape();
    }
    m_answers.takeFirst()(box);
}

} // namespace vx::test
