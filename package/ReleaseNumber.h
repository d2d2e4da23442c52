#pragma once

#include <QString>

#include "host/Core/VersionNumber.h"

namespace vx {

/** The value of a package's release text, or of any other text that came through Qt. */
inline VersionNumber releaseNumber(const QString& release)
{
    return {release.toLatin1().toStdString()};
}

} // namespace vx
