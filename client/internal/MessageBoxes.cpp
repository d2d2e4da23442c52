#include "client/internal/MessageBoxes.h"

#include <QMessageBox>
#include <QPointer>

namespace vx {

namespace {

// The box is on the heap and watched, because a parent that is destroyed meanwhile deletes it.
int run(QMessageBox* box)
{
    const QPointer<QMessageBox> watched(box);
    const int result = box->exec();
    delete watched.data();
    return result;
}

} // namespace

int ask(const Question& question)
{
    auto* box = new QMessageBox(QMessageBox::Warning, question.title, question.text,
                                QMessageBox::NoButton, question.parent, question.flags);
    // The order is the result: exec() returns the index of the button among those added.
    box->addButton(question.rejectText, QMessageBox::RejectRole);
    box->addButton(question.acceptText, QMessageBox::AcceptRole);
    return run(box);
}

void showError(const QString& title, const QString& text, QWidget* parent, Qt::WindowFlags flags)
{
    auto* box = new QMessageBox(QMessageBox::Critical, title, text, QMessageBox::Ok, parent, flags);
    // This constructor adds a hint for Windows that an error has never had.
    constexpr Qt::WindowType fixedSize = Qt::MSWindowsFixedSizeDialogHint;
    box->setWindowFlag(fixedSize, flags.testFlag(fixedSize));
    run(box);
}

} // namespace vx
