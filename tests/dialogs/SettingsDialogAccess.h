#pragma once

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/dialogs/ChildAccess.h"

namespace vx::test {

/** A record with something in every field. */
inline SoftwareUpdateDialogSettings sampleSettings()
{
    SoftwareUpdateDialogSettings settings;
    settings.doUpdateCheck = true;
    settings.checkForBeta = true;
    settings.updateInterval = 2;
    settings.serverURL = "http://updates.example.com/catalogue.xml";
    settings.versionText = "4.2.1";
    settings.lastCheckText = "Friday, 21 November 2025 10:00:00";
    return settings;
}

/** The record written out by fields, so that a failure names the field. */
inline QVariantList fields(const SoftwareUpdateDialogSettings& settings)
{
    return {settings.doUpdateCheck, settings.checkForBeta, settings.updateInterval,
            settings.serverURL,     settings.versionText,  settings.lastCheckText};
}

inline QPushButton& standardButton(const QWidget& dialog, QDialogButtonBox::StandardButton which)
{
    return *child<QDialogButtonBox>(dialog, "buttonBox").button(which);
}

inline QString textOf(const QWidget& dialog, const char* label)
{
    return child<QLabel>(dialog, label).text();
}

/** Whether the beta check box, the caption and the field of the server address are shown. */
inline QList<bool> visibleFields(const QWidget& dialog)
{
    return {!child<QWidget>(dialog, "checkForBetaCheckBox").isHidden(),
            !child<QWidget>(dialog, "updateServerLabel").isHidden(),
            !child<QWidget>(dialog, "updateServerLineEdit").isHidden()};
}

} // namespace vx::test
