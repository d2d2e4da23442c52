#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

namespace vx::test {

/** What one message box looked like. */
struct SeenBox
{
    QMessageBox::Icon icon;
    QString title;
    QString text;
    /** Sorted, without "&". */
    QStringList buttons;
    QWidget* parent;
    Qt::WindowFlags flags;
    bool modal;
    Qt::TextFormat format;
};

/**
 * Stands for the user before modal message boxes: waits for each, notes it and answers it.
 *
 * Answers are used up in order. A box for which none is left is noted and left with Escape, so that
 * an unexpected one fails a test by its presence and not by a hang.
 */
class BoxWatcher : public QObject
{
public:
    BoxWatcher();

    /** The next box without an answer is left by a click on the button with this text. */
    void willClick(const QString& buttonText);

    /** ... by the Escape key. */
    void willPressEscape();

    /** ... by its close button. */
    void willClose();

    /** ... by @p action, which may destroy it. */
    void willDo(const std::function<void(QMessageBox*)>& action);

    QList<SeenBox> seen() const { return m_seen; }
    void clear() { m_seen.clear(); }

private:
    void look();

    QTimer m_timer;
    QList<std::function<void(QMessageBox*)>> m_answers;
    QList<SeenBox> m_seen;
};

} // namespace vx::test
