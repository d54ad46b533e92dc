#pragma once

#include "import_command/arguments.h"
#include "import_command/output.h"

namespace corvane::import_command {

/// What the command ends with, beside 128 + n after a signal.
enum ExitStatus : int { Done = 0, CouldNotAsk = 1, WrongUsage = 2, TimedOut = 3 };

/// Asks for an import and waits for its end; needs the application object. Problems go to standard error.
ExitStatus runImport(const Arguments& arguments, Output& output);

}  // namespace corvane::import_command
