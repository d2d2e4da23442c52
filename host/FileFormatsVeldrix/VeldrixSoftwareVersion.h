#pragma once

#include <QString>

#include "host/FileFormatsVeldrix/FileFormatsVeldrixExport.h"

namespace vx {

/** Shows software versions to the user. */
class VX_FILEFORMATSVELDRIX_EXPORT VeldrixSoftwareVersion
{
public:
    VeldrixSoftwareVersion() = delete;

    /**
     * The text under which a release is shown.
     *
     * @param version the release as the catalogue writes it; white space around it is left out.
     * @param text stands in for a version that is empty or only whitespace.
     * @param number how many of the version's leading numbers are shown; 0 or less shows all of
     *     them. Text after the numbers is always shown, and a version that does not begin with a
     *     number is shown as it is.
     */
    static QString applicationVersion(const QString& version, const QString& text, short number);
};

} // namespace vx
