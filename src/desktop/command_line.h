#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a command line asks for that is over at once.
struct CommandLineAnswer {
    std::string output{};   ///< for standard output
    std::string problem{};  ///< for standard error
    int exitStatus = 0;
};

/// Answers --help, -h and --version, wherever among the arguments they stand. Absent for an ordinary start.
std::optional<CommandLineAnswer> answerTo(const std::vector<std::string>& arguments,
                                          std::string_view version);

/// The answer to an argument of which neither the program nor its toolkit knows.
CommandLineAnswer refusalOf(std::string_view argument);

/// Writes the answer out and returns its exit status, or another one when it cannot be written.
int giveAnswer(const CommandLineAnswer& answer);

}  // namespace corvane
