#pragma once

#include <QCommandLineParser>

#include "tools/update-catalogue/lint/Rule.h"

namespace vx {

/** Adds the options that lint and report share. */
void declareLint(QCommandLineParser& parser);

/** What the options say. @throws CommandFailure with ExitUsage for a rule that does not exist. */
LintOptions lintOptionsFrom(const QCommandLineParser& parser);

} // namespace vx
