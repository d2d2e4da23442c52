#pragma once

#include <QDialog>
#include <QStringList>

#include "SoftwareUpdateClientExport.h"
#include "dialogs/SoftUpIndexList.h"

class Ui_SoftwareUpdateAvailableGui;

namespace vx {

/**
 * The list of packages that a check found, with what the user can do about them.
 *
 * A thin view: it shows ready-made strings, reports rows and has no idea what a package is. Whoever
 * fills it decides about texts, button states and hidden rows. GUI thread only.
 */
class SOFTWAREUPDATECLIENT_EXPORT SoftwareUpdateAvailableDialog : public QDialog
{
    Q_OBJECT

public:
    /**
     * Builds the dialog without showing it: an empty table, no comment, all buttons enabled.
     *
     * @param parent owner of the dialog, as with every QWidget; may be null.
     */
    SoftwareUpdateAvailableDialog(QWidget* parent, Qt::WindowFlags flags);

    /** Does not free the form object. That asymmetry with SoftwareUpdateDialog is deliberate. */
    ~SoftwareUpdateAvailableDialog() override;

    /**
     * Sets the column titles and fits the columns to their contents.
     *
     * To be called after setTableEntries(), which clears the titles and makes the columns.
     */
    void setTableHeaders(QStringList const& headers);

    /**
     * Replaces the rows and clears titles, selection and comment.
     *
     * The first row decides how many columns there are; strings beyond them are left out. Ends by
     * reporting the empty selection with currentItemsChangedSig(), so that signals must be
     * connected before. An empty list leaves a table without items and with the rows and columns it
     * had, is logged at level 3, and ends without that report.
     *
     * If rows were selected, dropping them reports the empty selection, too, before the table is
     * filled.
     */
    void setTableEntries(QList<QStringList> const& entries);

    /**
     * Hides exactly the rows listed and shows all others.
     *
     * Rows that the table does not have are ignored. Hiding a selected row does not deselect it: it
     * is left out of what is reported while it is hidden, and is in it again once it is shown.
     */
    void setHiddenEntries(QList<int> rows);

    /**
     * Shows @p text, as HTML if it looks like that, below the table. An empty text hides the widget
     * and leaves the old text in it.
     */
    void setCommentText(const QString& text);

    /** Whether "Show all languages" is checked. */
    bool getShowAllLanguagesState();

    /** Enables or disables "Install Package". */
    void setInstallButtonState(bool enabled);

    /** Enables or disables "Download Package". */
    void setDownloadButtonState(bool enabled);

    /** Enables or disables "Release Notes". The spelling is part of the interface. */
    void setRealeaseNotesButtonState(bool enabled);

signals:
    /** "Download Package" was pressed; the argument is the selected rows. */
    void downloadUrls(SoftUpIndexList rows);

    /** "Install Package" was pressed; the argument is the table's current row, selected or not. */
    void installPackage(int row);

    /** The selection changed, or the table was filled; the argument is the selected rows. */
    void currentItemsChangedSig(SoftUpIndexList rows);

    /** "Release Notes" was pressed; the argument is the selected rows. */
    void downloadReleaseNotes(SoftUpIndexList rows);

    /** The user toggled "Show all languages"; setting it from code emits nothing. */
    void showAllLanguages(bool state);

    /** "Update Settings..." was pressed. */
    void openUpdateSettings();

private slots:
    void downloadPackagePressed();
    void installPackagePressed();
    void currentItemsChanged();
    void releaseNotesPressed();
    SoftUpIndexList getCurrentSelectedItems();
    void showAllLanguagesPressed();

private:
    Ui_SoftwareUpdateAvailableGui* m_form;
};

} // namespace vx
