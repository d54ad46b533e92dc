#pragma once

#include <string_view>

namespace corvane {

/// Stops the process: writes the message to the log on standard error, then aborts. For faults of the program
/// or of its installation that it cannot work with; never for what a user or a service sent, unless it is
/// trusted.
[[noreturn]] void fatalError(std::string_view message);

}  // namespace corvane
