#pragma once

#include <QString>

#include "host/Core/VersionNumber.h"

namespace vx {

/** The value of a package's release text, or of any other text that came through Qt. */
inline VersionNumber releaseNumber(const QString& release)
{
    return {release.toLatin1().toStdString()};
}

/** The text of @p version, from which releaseNumber() makes the same value again. */
inline QString releaseText(const VersionNumber& version)
{
    return QString::fromLatin1(version.toString().c_str());
}

} // namespace vx
