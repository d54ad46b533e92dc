#include "import_command/arguments.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane::import_command {
namespace {

constexpr std::string_view timeoutOption = "--timeout";
constexpr std::string_view timeoutPrefix = "--timeout=";

Arguments refused(std::string problem) {
    Arguments arguments;
    arguments.action = Arguments::Action::Refuse;
    arguments.problem = std::move(problem);
    return arguments;
}

Arguments showing(Arguments::Action action) {
    Arguments arguments;
    arguments.action = action;
    return arguments;
}

std::optional<std::chrono::seconds> positiveSeconds(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    const auto longest = static_cast<std::uint64_t>(Arguments::longestTimeout.count());
    if (error == std::errc::result_out_of_range || number > longest)
        return Arguments::longestTimeout;
    if (number == 0)
        return std::nullopt;
    return std::chrono::seconds(number);
}

}  // namespace

Arguments parseArguments(const std::vector<std::string>& arguments) {
    Arguments result;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--help" || *argument == "-h")
            return showing(Arguments::Action::ShowHelp);
        if (*argument == "--version")
            return showing(Arguments::Action::ShowVersion);
        if (*argument == "--lite") {
            result.isLite = true;
            continue;
        }

        std::string seconds;
        if (argument->starts_with(timeoutPrefix)) {
            seconds = argument->substr(timeoutPrefix.size());
        } else if (*argument != timeoutOption) {
            return refused((argument->starts_with('-') ? "unknown option: " : "unexpected argument: ") +
                           *argument);
        } else if (++argument == arguments.end()) {
            return refused("--timeout needs a number of seconds");
        } else {
            seconds = *argument;
        }
        const auto timeout = positiveSeconds(seconds);
        if (!timeout)
            return refused("--timeout needs a positive whole number of seconds, not: " + seconds);
        result.timeout = *timeout;
    }
    return result;
}

}  // namespace corvane::import_command
