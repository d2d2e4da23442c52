#pragma once

#include <QString>
#include <Qt>

class QWidget;

namespace vx {

/** What a modal question shows. */
struct Question
{
    QString title;
    QString text;
    /** The button that refuses; Escape and closing the box count as this one. */
    QString rejectText;
    QString acceptText;
    /** Not owned; may be null, and may be destroyed while the box is open. */
    QWidget* parent;
    Qt::WindowFlags flags;
};

/**
 * Asks with a warning sign and waits for the answer in an event loop of its own.
 *
 * Whatever may be destroyed meanwhile must be looked at again afterwards, the caller's own object
 * included.
 *
 * @return 0 for the rejecting button, also if the box went with its parent; 1 for the accepting
 * one.
 */
int ask(const Question& question);

/** Shows @p text with an error sign and "OK", and waits as ask() does. */
void showError(const QString& title, const QString& text, QWidget* parent, Qt::WindowFlags flags);

} // namespace vx
