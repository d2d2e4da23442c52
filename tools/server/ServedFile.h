#pragma once

#include <QString>

#include <httplib.h>

namespace vx {

/** The readable file that @p path (decoded, beginning with "/") names below @p folder, links
    resolved. Empty if there is none, or if it lies outside the folder. */
QString fileBelow(const QString& folder, const QString& path);

/** Fills @p response with the file @p name, or with the one range of it that @p request asks for.
    Several ranges at once yield the whole file. */
void writeFile(const QString& name, httplib::Request& request, httplib::Response& response);

} // namespace vx
