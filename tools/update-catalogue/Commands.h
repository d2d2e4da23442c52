#pragma once

#include "tools/update-catalogue/Command.h"

namespace vx {

/** lint/LintCommand.cpp */
extern const Command lintCommand;
/** explain/ExplainCommand.cpp */
extern const Command explainCommand;
/** matrix/MatrixCommand.cpp */
extern const Command matrixCommand;
/** matrix/DiffCommand.cpp */
extern const Command diffCommand;
/** serve/ServeCommand.cpp */
extern const Command serveCommand;
/** preview/PreviewCommand.cpp */
extern const Command previewCommand;
/** report/ReportCommand.cpp */
extern const Command reportCommand;
/** signing/HashCommand.cpp */
extern const Command hashCommand;
/** signing/SealCommand.cpp */
extern const Command sealCommand;
/** signing/UnsealCommand.cpp */
extern const Command unsealCommand;
/** signing/VerifyCommand.cpp */
extern const Command verifyCommand;

} // namespace vx
