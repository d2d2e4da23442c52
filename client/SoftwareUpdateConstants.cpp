#include "client/SoftwareUpdateConstants.h"

namespace vx {

const QString sSoftUpApplicationUpdateTag = QStringLiteral("Application");
const QString sSoftUpCameraUpdateTag = QStringLiteral("Camera Firmware");

const QString sSoftUpSettingsProductKey = QStringLiteral("product");
const QString sSoftUpSettingsVersionNumberKey = QStringLiteral("versionNumber");
const QString sSoftUpSettingsSubVersionKey = QStringLiteral("subVersion");
const QString sSoftUpSettingsQuietModeKey = QStringLiteral("quietMode");
const QString sSoftUpSettingsUpdateServerURLKey = QStringLiteral("serverURL");
const QString sSoftUpSettingsDoUpdateCheckKey = QStringLiteral("doUpdateCheck");
const QString sSoftUpSettingsCheckForBetaKey = QStringLiteral("checkForBeta");
const QString sSoftUpSettingsIntervalKey = QStringLiteral("updateInterval");
const QString sSoftUpLastCheckKey = QStringLiteral("lastCheck");
const QString sSoftUpSupportedPlatformsKey = QStringLiteral("supportedPlatforms");
const QString sSoftUpSupportedPackageTypeKey = QStringLiteral("supportedPackageTypes");
const QString sSoftUpInstallablePackageTypeKey = QStringLiteral("installablePackageTypes");
const QString sSoftUpCurrentCameraVersionsKey = QStringLiteral("currentCameraVersions");

const QString sSoftUpDateKeyFormat = QStringLiteral("dd.MM.yyyy hh:mm:ss");
const QString sSoftUpUpdateApplicationExecutable = QStringLiteral("UpdateInstaller");

} // namespace vx
