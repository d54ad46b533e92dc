#include "desktop/command_line.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

namespace corvane {

namespace {

constexpr int wrongUsage = 2;

constexpr std::string_view helpText = R"(Usage: corvane [--help | --version]
Fetch App Store sales reports for a sales-analysis application.

Opens the settings window; where Corvane runs already, brings its window to the
front. An import begins when an application or corvane-import asks for it.

  -h, --help     show this help and end
      --version  show the version and end

The options of the Qt toolkit, such as -platform, work as well.
)";

}  // namespace

std::optional<CommandLineAnswer> answerTo(const std::vector<std::string>& arguments,
                                          std::string_view version) {
    for (const std::string& argument : arguments) {
        if (argument == "--help" || argument == "-h")
            return CommandLineAnswer{.output = std::string(helpText)};
        if (argument == "--version")
            return CommandLineAnswer{.output = fmt::format("Corvane {}\n", version)};
    }
    return std::nullopt;
}

CommandLineAnswer refusalOf(std::string_view argument) {
    const std::string_view kind = argument.starts_with('-') ? "unknown option" : "unexpected argument";
    return {.problem =
                fmt::format("corvane: {}: {}\nTry 'corvane --help' for more information.\n", kind, argument),
            .exitStatus = wrongUsage};
}

int giveAnswer(const CommandLineAnswer& answer) {
    std::fputs(answer.problem.c_str(), stderr);
    const bool isWritten = std::fputs(answer.output.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return isWritten ? answer.exitStatus : EXIT_FAILURE;
}

}  // namespace corvane
