#pragma once

#include "tools/update-catalogue/lint/Linter.h"

namespace vx::test {

/** A catalogue without findings, for the application "Manager" and the camera "CAM-1". */
QByteArray soundCatalogue();

/** What the program takes without options: the platforms and types of the client. */
LintOptions clientOptions();

/** What lint finds in @p catalogue, with the rules that @p options select. */
FindingList lint(const QByteArray& catalogue, const LintOptions& options = clientOptions());

/** The names of the rules in @p findings, each once. */
QStringList rulesOf(const FindingList& findings);

} // namespace vx::test
