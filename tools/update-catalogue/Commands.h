#pragma once

#include "tools/update-catalogue/Command.h"

namespace vx {

/** lint/LintCommand.cpp */
extern const Command lintCommand;

} // namespace vx
