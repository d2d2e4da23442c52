#pragma once

#include "client/SoftwareUpdateSettings.h"

class QSettings;

namespace vx {

/** Makes @p record what @p store holds; what is not in it, or can't be read, gets its default. */
void readSettings(const QSettings& store, SoftwareUpdateSettings* record);

} // namespace vx
