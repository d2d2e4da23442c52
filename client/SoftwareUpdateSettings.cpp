#include "client/SoftwareUpdateSettings.h"

namespace vx {

void SoftwareUpdateSettings::clear()
{
    *this = SoftwareUpdateSettings();
    // Unlike a new record, a cleared one asks for no checks. Reading the store relies on neither.
    doUpdateCheck = false;
}

} // namespace vx
