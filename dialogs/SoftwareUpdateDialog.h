#pragma once

#include <QDialog>

#include "SoftwareUpdateClientExport.h"
#include "client/SoftwareUpdateDialogSettings.h"

class QAbstractButton;
class Ui_SoftwareUpdateDialogGui;

namespace vx {

/**
 * The settings dialog: the current version, the last check, a check by hand and the schedule.
 *
 * A view only. It shows a record, returns one on request and reports the user's actions by
 * signals; it reads and writes no store and starts no check. GUI thread only.
 *
 * The beta check box and the server address are meant for support staff: they are visible only if a
 * keyboard modifier is held while the dialog is created.
 */
class SOFTWAREUPDATECLIENT_EXPORT SoftwareUpdateDialog : public QDialog
{
    Q_OBJECT

public:
    /**
     * Builds the dialog without showing it.
     *
     * QApplication::keyboardModifiers() is read here and never again: any modifier keeps the beta
     * check box and the server address visible for the life of the dialog, none hides them.
     *
     * @param parent owner of the dialog, as with every QWidget; may be null.
     */
    SoftwareUpdateDialog(QWidget* parent, Qt::WindowFlags flags);

    /** Frees the form object; the widgets go with the dialog. */
    ~SoftwareUpdateDialog() override;

    /**
     * Fills the widgets, hidden ones included, and emits nothing.
     *
     * A null @c versionText or @c lastCheckText hides the caption in front of it and leaves the
     * text shown before in place; an empty one keeps the caption visible. An @c updateInterval
     * outside 0 to 3 leaves the combo box without a current entry.
     */
    void setDialogSettings(SoftwareUpdateDialogSettings const& settings);

    /** Reads a new record from the widgets, hidden ones included. */
    SoftwareUpdateDialogSettings getDialogSettings();

    /** Shows the outcome of a check. Rich text is recognised; an empty text clears the message. */
    void setNotificationText(const QString& text);

signals:
    /** The user pressed "Check Now". */
    void checkForUpdate();

    /** The user confirmed with OK; @p settings is getDialogSettings(). Comes before accepted(). */
    void applySettings(SoftwareUpdateDialogSettings settings);

    /** For whoever wants the update-available dialog at once; the dialog itself never emits it. */
    void forceUpdateAvailable();

public slots:
    /** Shows the busy indicator, while a check is under way. */
    void enableProgress();

    /** Hides the busy indicator. The spelling is part of the interface. */
    void disbaleProgress();

private slots:
    /** Emits applySettings(). Nothing here is connected to it; it stays part of the class. */
    void emitApplySettings();

    void standardButtonClicked(QAbstractButton* button);

private:
    Ui_SoftwareUpdateDialogGui* m_form;
};

} // namespace vx
