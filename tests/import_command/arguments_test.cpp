#include "import_command/arguments.h"

#include <gtest/gtest.h>

namespace corvane::import_command {
namespace {

using Action = Arguments::Action;
using std::chrono::seconds;

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += '[' + text + ']';
    return all;
}

TEST(ArgumentsTest, ReadsEveryForm) {
    struct Row {
        std::vector<std::string> arguments;
        bool isLite;
        seconds timeout;
    };
    const std::vector<Row> rows{
        {{}, false, std::chrono::hours(1)},
        {{"--lite"}, true, std::chrono::hours(1)},
        {{"--timeout", "5"}, false, seconds(5)},
        {{"--timeout=5"}, false, seconds(5)},
        {{"--timeout", "1", "--lite"}, true, seconds(1)},
        {{"--lite", "--lite"}, true, std::chrono::hours(1)},
        {{"--timeout", "5", "--timeout=7"}, false, seconds(7)},
        {{"--timeout", "007"}, false, seconds(7)},
        {{"--timeout", "99999999999999999999999"}, false, Arguments::longestTimeout},
        {{"--timeout", "31536001"}, false, Arguments::longestTimeout},
    };
    for (const Row& row : rows) {
        const Arguments arguments = parseArguments(row.arguments);
        EXPECT_EQ(arguments.action, Action::Import) << joined(row.arguments);
        EXPECT_EQ(arguments.isLite, row.isLite) << joined(row.arguments);
        EXPECT_EQ(arguments.timeout, row.timeout) << joined(row.arguments);
    }
}

TEST(ArgumentsTest, RefusesWhatItDoesNotKnow) {
    const std::vector<std::vector<std::string>> rows{{"--timeout"},
                                                     {"--timeout", ""},
                                                     {"--timeout="},
                                                     {"--timeout", "0"},
                                                     {"--timeout", "-1"},
                                                     {"--timeout", "+1"},
                                                     {"--timeout", " 1"},
                                                     {"--timeout", "1 "},
                                                     {"--timeout", "1.5"},
                                                     {"--timeout", "0x10"},
                                                     {"--timeout", "1s"},
                                                     {"--timeout", "--lite"},
                                                     {"--lit"},
                                                     {"--lite=1"},
                                                     {"--Lite"},
                                                     {"-l"},
                                                     {"lite"},
                                                     {""},
                                                     {"--"},
                                                     {"--timeout", "00"},
                                                     {"--version=1"},
                                                     {"--timeouts=1"},
                                                     {"--lite", "surplus"}};
    for (const auto& row : rows) {
        const Arguments arguments = parseArguments(row);
        EXPECT_EQ(arguments.action, Action::Refuse) << joined(row);
        EXPECT_FALSE(arguments.problem.empty()) << joined(row);
    }
}

TEST(ArgumentsTest, LetsTheFirstDecide) {
    EXPECT_EQ(parseArguments({"--help", "--nonsense"}).action, Action::ShowHelp);
    EXPECT_EQ(parseArguments({"-h"}).action, Action::ShowHelp);
    EXPECT_EQ(parseArguments({"--lite", "--version", "--help"}).action, Action::ShowVersion);
    EXPECT_EQ(parseArguments({"--nonsense", "--help"}).action, Action::Refuse);
}

TEST(ArgumentsTest, NamesTheMistake) {
    EXPECT_EQ(parseArguments({"--fast"}).problem, "unknown option: --fast");
    EXPECT_EQ(parseArguments({"fast"}).problem, "unexpected argument: fast");
    EXPECT_EQ(parseArguments({"--timeout"}).problem, "--timeout needs a number of seconds");
    EXPECT_EQ(parseArguments({"--timeout", "soon"}).problem,
              "--timeout needs a positive whole number of seconds, not: soon");
}

}  // namespace
}  // namespace corvane::import_command
