#pragma once

#include <QDialog>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace vx::test {

/**
 * Stands in for the user while the code under test waits in dialogs of its own.
 *
 * From any event loop, that of a dialog included, it looks for dialogs and hands each one to the
 * handler until the handler says that it has dealt with it. Hidden dialogs are handed over, too: a
 * progress dialog hides until it is worth showing.
 */
class DialogDriver : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<bool(QDialog*)>;

    explicit DialogDriver(const Handler& handler);

    /** How many dialogs were dealt with. */
    int handled() const { return m_handled; }

private slots:
    void look();

private:
    Handler m_handler;
    QTimer m_timer;
    QList<QPointer<QDialog>> m_known;
    int m_handled = 0;
};

} // namespace vx::test
