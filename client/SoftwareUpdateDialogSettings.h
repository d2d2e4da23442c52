#pragma once

#include <QMetaType>
#include <QString>

namespace vx {

/**
 * What the client and the settings dialog exchange.
 *
 * The client fills a record from its store and passes it to
 * SoftwareUpdateDialog::setDialogSettings(); the dialog returns one, read from its widgets. A
 * plain value with no link to either.
 */
struct SoftwareUpdateDialogSettings
{
    /** Whether checks run on a schedule; the state of the check box "Check for updates:". */
    bool doUpdateCheck = false;

    /** Whether beta packages are offered, too; the state of "Include beta versions". */
    bool checkForBeta = false;

    /**
     * Index of the interval: 0 at application start, 1 daily, 2 weekly, 3 monthly.
     *
     * Any other value leaves the dialog's combo box without a current entry, which reads back as
     * -1.
     */
    int updateInterval = 0;

    /** Address of the update server, as the user typed it; not checked here. */
    QString serverURL;

    /** The product's version for display. Null, as opposed to empty, hides its caption. */
    QString versionText;

    /** The time of the last check for display. Null, as opposed to empty, hides its caption. */
    QString lastCheckText;
};

} // namespace vx

Q_DECLARE_METATYPE(vx::SoftwareUpdateDialogSettings)
