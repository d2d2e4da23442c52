#pragma once

#include "tools/update-catalogue/report/ReportPage.h"

namespace vx {

/** Who in the field is offered what, with the share of the field in numbers and as bars. */
QString matrixSection(const ReportContent& content);

} // namespace vx
