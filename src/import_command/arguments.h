#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace corvane::import_command {

/// What the command line asks for.
struct Arguments {
    enum class Action { Import, ShowHelp, ShowVersion, Refuse };

    Action action = Action::Import;
    bool isLite = false;
    std::chrono::seconds timeout = defaultTimeout;
    std::string problem;  ///< of `Refuse`: what is wrong, one line without its end

    static constexpr std::chrono::seconds defaultTimeout = std::chrono::hours(1);
    static constexpr std::chrono::seconds longestTimeout = std::chrono::hours(24 * 365);
};

/// Reads the arguments after the program's name: `--lite`, `--timeout SECONDS` (also `--timeout=SECONDS`, a
/// positive whole number; more than a year counts as a year), `--help` or `-h`, `--version`. The first of
/// the last three, or the first mistake, decides; of a repeated option the last one counts.
Arguments parseArguments(const std::vector<std::string>& arguments);

}  // namespace corvane::import_command
