#pragma once

#include <QString>

#include "package/PackageInfo.h"

namespace vx {

/**
 * A package that waits to be installed, and what its installation needs. All start empty, and
 * nothing clears them after a launch.
 */
struct PendingInstall
{
    /** The package; localFile, fileSize and confirmInstall are what an installation looks at. */
    PackageInfo package;
    /** Path of the updater program. Stored for the host application and read by nothing here. */
    QString updaterExe;
    /** Folder to install into. Stored for the host application and read by nothing here. */
    QString targetFolder;
    /** Program to start afterwards. Stored for the host application and read by nothing here. */
    QString applicationExe;
};

} // namespace vx
