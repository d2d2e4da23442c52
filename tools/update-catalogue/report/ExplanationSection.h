#pragma once

#include "tools/update-catalogue/report/ReportPage.h"

namespace vx {

/** Why each kind of installation is offered what it is offered; of very many kinds the first. */
QString explanationSection(const ReportContent& content);

} // namespace vx
