#pragma once

#include <QString>

#include "SoftwareUpdateClientExport.h"

namespace vx {

// Created in this order when the library is loaded, destroyed at exit. A host's own static objects
// may be created earlier and must not read them.

/** Kind of package that a check assigns to the application's own candidates: "Application". */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpApplicationUpdateTag;
/** Kind of package that a check assigns to candidates for a camera: "Camera Firmware". */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpCameraUpdateTag;

// Keys of the settings store, all at its top level.

/** "product", a text. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsProductKey;
/** "versionNumber", the text of a VersionNumber. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsVersionNumberKey;
/** "subVersion". Reserved: no operation reads or writes it. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsSubVersionKey;
/** "quietMode". Reserved: no operation reads or writes it. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsQuietModeKey;
/** "serverURL", a text. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsUpdateServerURLKey;
/** "doUpdateCheck", a flag. Absent or empty reads as true. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsDoUpdateCheckKey;
/** "checkForBeta", a flag. Absent or empty reads as false. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsCheckForBetaKey;
/** "updateInterval", a number from 0 to 3. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSettingsIntervalKey;
/** "lastCheck", a date-time value. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpLastCheckKey;
/** "supportedPlatforms", words joined with commas. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSupportedPlatformsKey;
/** "supportedPackageTypes", words joined with commas. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpSupportedPackageTypeKey;
/** "installablePackageTypes", words joined with commas. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpInstallablePackageTypeKey;
/** "currentCameraVersions", items of the form name:version joined with commas. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpCurrentCameraVersionsKey;

/** "dd.MM.yyyy hh:mm:ss". Reserved: "lastCheck" is a date-time value and not text of this form. */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpDateKeyFormat;
/** File name of the update helper beside the application's executable: "UpdateInstaller". */
extern SOFTWAREUPDATECLIENT_EXPORT const QString sSoftUpUpdateApplicationExecutable;

} // namespace vx
