#include "demo_service/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <iterator>
#include <limits>

#include "demo_service/made_up_report_source.h"
#include "demo_service/scenarios.h"

namespace corvane::demo {

namespace {

template <typename Number>
bool readNumber(std::string_view text, Number least, Number greatest, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() && number >= least && number <= greatest;
}

bool readPort(std::string_view text, std::uint16_t& port) {
    return readNumber<std::uint16_t>(text, 0, std::numeric_limits<std::uint16_t>::max(), port);
}

bool readText(std::string_view text, std::string& value) {
    value = text;
    return !text.empty();
}

bool readHostName(std::string_view text, std::string& name) {
    constexpr std::string_view kOfNames = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.";
    name = text;
    return !text.empty() && text.find_first_not_of(kOfNames) == std::string_view::npos;
}

bool readLatency(std::string_view text, std::chrono::milliseconds& latency) {
    constexpr unsigned kOneHour = 3'600'000;
    unsigned number = 0;
    const bool isNumber = readNumber<unsigned>(text, 0, kOneHour, number);
    latency = std::chrono::milliseconds(number);
    return isNumber;
}

bool readTlsVariant(std::string_view text, TlsVariant& variant) {
    constexpr std::array<std::pair<std::string_view, TlsVariant>, 5> kVariants{{
        {"trusted", TlsVariant::Trusted},
        {"self-signed", TlsVariant::SelfSigned},
        {"wrong-host", TlsVariant::WrongHost},
        {"expired", TlsVariant::Expired},
        {"tls1.1", TlsVariant::Tls11},
    }};
    const auto* const found = std::ranges::find(kVariants, text, [](const auto& each) { return each.first; });
    if (found == kVariants.end()) {
        return false;
    }
    variant = found->second;
    return true;
}

bool readScenario(std::string_view text, std::string& scenario) {
    scenario = text;
    const auto names = scenarioNames();
    return std::ranges::any_of(names, [&](const ScenarioName& each) { return each.name == text; });
}

struct Option {
    std::string_view name;
    std::string_view argument;
    std::string_view meaning;
    std::function<bool(std::string_view, CommandLine&)> read;
};

const std::vector<Option>& optionsWithArgument() {
    constexpr std::size_t kAnySize = std::numeric_limits<std::size_t>::max();
    constexpr std::size_t kOneGibibyte = std::size_t{1} << 30U;
    using Text = std::string_view;
    static const std::vector<Option> all{
        {"--port", "N", "port of the report service; 0: any free one (the default)",
         [](Text text, CommandLine& line) { return readPort(text, line.port); }},
        {"--update-port", "N", "port of the update feed; 0: any free one (the default)",
         [](Text text, CommandLine& line) { return readPort(text, line.updatePort); }},
        {"--ca-file", "PATH", "write the certificate of the service's authority there",
         [](Text text, CommandLine& line) { return readText(text, line.caFile); }},
        {"--accounts", "PATH", "lines of user name, password, vendor number with tabs; default: anybody",
         [](Text text, CommandLine& line) { return readText(text, line.accountsFile); }},
        {"--tls", "VARIANT", "trusted, self-signed, wrong-host, expired or tls1.1",
         [](Text text, CommandLine& line) { return readTlsVariant(text, line.tls); }},
        {"--host-name", "NAME", "a name besides localhost for which the certificate holds",
         [](Text text, CommandLine& line) { return readHostName(text, line.hostName); }},
        {"--latency", "MS", "milliseconds before each answer",
         [](Text text, CommandLine& line) { return readLatency(text, line.latency); }},
        {"--report-size", "BYTES", "about that many bytes per report before packing",
         [](Text text, CommandLine& line) {
             return readNumber<std::size_t>(text, 1, kOneGibibyte, line.reportSize);
         }},
        {"--scenario", "NAME", "one of the failures below",
         [](Text text, CommandLine& line) { return readScenario(text, line.scenario); }},
        {"--every", "N", "the scenario holds for every N-th request of a vendor and type only",
         [](Text text, CommandLine& line) { return readNumber<std::size_t>(text, 1, kAnySize, line.every); }},
        {"--feed-version", "TEXT", "offer that version in the update feed; default: no feed",
         [](Text text, CommandLine& line) { return readText(text, line.feedVersion); }},
        {"--feed-notes", "TEXT", "what is new in it",
         [](Text text, CommandLine& line) { return readText(text, line.feedNotes); }},
        {"--feed-link", "URL", "where it can be downloaded",
         [](Text text, CommandLine& line) { return readText(text, line.feedLink); }},
    };
    return all;
}

bool readFlag(std::string_view argument, CommandLine& line) {
    if (argument == "--help") {
        line.asksForHelp = true;
        return true;
    }
    if (argument == "--die-with-parent") {
        line.diesWithParent = true;
        return true;
    }
    return false;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    std::size_t end = 0;
    while ((end = text.find(separator)) != std::string_view::npos) {
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    pieces.push_back(text);
    return pieces;
}

}  // namespace

std::optional<CommandLine> parseCommandLine(std::span<const std::string_view> arguments,
                                            std::string& problem) {
    CommandLine line;
    while (!arguments.empty()) {
        const std::string_view argument = arguments.front();
        arguments = arguments.subspan(1);
        if (readFlag(argument, line)) {
            continue;
        }
        const auto& options = optionsWithArgument();
        const auto option = std::ranges::find(options, argument, &Option::name);
        if (option == options.end()) {
            problem = fmt::format("unknown option {}", argument);
            return std::nullopt;
        }
        if (arguments.empty() || !option->read(arguments.front(), line)) {
            problem = fmt::format("{} needs {}: {}", option->name, option->argument, option->meaning);
            return std::nullopt;
        }
        arguments = arguments.subspan(1);
    }
    return line;
}

std::string helpText() {
    std::string text =
        "Usage: corvane-demo-service [OPTION]...\n"
        "A report service and an update feed on 127.0.0.1, for trying things out.\n\n"
        "When it serves, it prints one line each: REPORT_SERVICE_HOST=host:port,\n"
        "UPDATE_HOST=host:port, REDIRECT_TARGET_HOST=host:port and READY=1. It ends on SIGTERM or "
        "SIGINT.\n\n";
    for (const Option& option : optionsWithArgument()) {
        fmt::format_to(std::back_inserter(text), "  {:<22}{}\n",
                       fmt::format("{} {}", option.name, option.argument), option.meaning);
    }
    text += "  --die-with-parent     end when the process ends that started it\n";
    text += "  --help                this text\n\nScenarios:\n";
    for (const ScenarioName& scenario : scenarioNames()) {
        fmt::format_to(std::back_inserter(text), "  {:<22}{}\n", scenario.name, scenario.meaning);
    }
    return text;
}

std::optional<std::vector<DemoAccount>> accountsFromText(std::string_view text) {
    std::vector<DemoAccount> accounts;
    for (const std::string_view line : split(text, '\n')) {
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        const auto fields = split(line, '\t');
        if (fields.size() != 3) {
            return std::nullopt;
        }
        accounts.push_back({std::string(fields[0]), std::string(fields[1]), std::string(fields[2])});
    }
    return accounts;
}

}  // namespace corvane::demo
