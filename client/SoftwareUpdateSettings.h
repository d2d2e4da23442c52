#pragma once

#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include "SoftwareUpdateClientExport.h"
#include "host/Core/VersionNumber.h"

namespace vx {

/**
 * The cameras that the host manages: the name of each, as the catalogue spells it among its
 * platforms, and the firmware version that is installed on it.
 *
 * The store keeps the list as text without escaping. A name that holds ":" or "," does not come
 * back as it was.
 */
using SoftUpCurrentCameraVersions = QList<QPair<QString, VersionNumber>>;

/**
 * What the client keeps in the application's store, as one plain value.
 *
 * The client holds no copy of it: every operation reads the whole record with
 * SoftwareUpdateClient::getCurrentSettings() and writes it back with
 * SoftwareUpdateClient::setCurrentSettings(). Nothing is checked here; each field says what a value
 * out of range means where it is used.
 */
struct SOFTWAREUPDATECLIENT_EXPORT SoftwareUpdateSettings
{
    /** The product's name as given to the client. Null is never written. Stored as "product". */
    QString product;

    /**
     * Version of the running application. A default-constructed one, which stands for "not known",
     * is never written; an absent one reads as the version "0". Stored as "versionNumber".
     */
    VersionNumber versionNumber;

    /** Only ever reset. Neither stored nor read; part of the record for hosts that carry it. */
    bool quietMode = false;

    /**
     * Address of the update server, requested exactly as it stands. An empty text that is not null
     * is a value of its own. Null is never written. Stored as "serverURL".
     */
    QString serverURL;

    /**
     * Whether the client checks by itself. True in a new record, false in a cleared one, and
     * absence from the store reads as true. Stored as "doUpdateCheck".
     */
    bool doUpdateCheck = true;

    /** Whether packages of every status are offered, or only "STABLE". Stored as "checkForBeta". */
    bool checkForBeta = false;

    /**
     * 0 at application start, 1 daily, 2 weekly, 3 monthly: the index of the combo box in the
     * settings dialog. With any other value no check starts by itself. Stored as "updateInterval".
     */
    int updateInterval = 0;

    /**
     * When the latest check left, in local time, whatever became of it. Null before the first one.
     * Null is never written, nor is a time of a time zone that does not exist. Stored as
     * "lastCheck".
     */
    QDateTime lastCheck;

    /**
     * The application's platforms as the catalogue spells them. Empty is never written. An item
     * must not hold a comma. Stored as "supportedPlatforms".
     */
    QStringList supportedPlatforms;

    /**
     * File types that are offered for the application, such as "dmg". Empty is never written.
     * Stored as "supportedPackageTypes".
     */
    QStringList supportedPackageTypes;

    /**
     * File types for which the dialog enables its install button. Empty is never written. Stored as
     * "installablePackageTypes".
     */
    QStringList installablePackageTypes;

    /** The host's cameras. Empty is never written. Stored as "currentCameraVersions". */
    SoftUpCurrentCameraVersions currentCameraVersions;

    /** Resets every field to the values above, except for `doUpdateCheck`, which becomes false. */
    void clear();
};

} // namespace vx
