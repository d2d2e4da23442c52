#include "host/FileFormatsVeldrix/VeldrixSoftwareVersion.h"

namespace vx {

QString VeldrixSoftwareVersion::applicationVersion(const QString& version, const QString& text,
                                                   short number)
{
    Q_UNUSED(number)
    return version.isEmpty() ? text : version;
}

} // namespace vx
