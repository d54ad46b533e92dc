#pragma once

namespace corvane::import_command {

/// From now on SIGINT, SIGTERM and SIGHUP end the process at once with 128 + the signal's number; those that
/// were ignored at the start stay ignored.
void endAtInterruption();

/// Whether the cursor stands behind a text on the terminal's line: an interruption then ends the line first.
void setLineIsOpen(bool isOpen);

}  // namespace corvane::import_command
