#include "import_command/messages.h"

#include <gmock/gmock.h>

namespace corvane::import_command {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(MessagesTest, TellsWhatHasCome) {
    EXPECT_EQ(summaryLine(0), "Import finished: no new reports.\n");
    EXPECT_EQ(summaryLine(1), "Import finished: 1 new report.\n");
    EXPECT_EQ(summaryLine(447), "Import finished: 447 new reports.\n");
    EXPECT_EQ(progressText(2), "Importing: 2 new reports so far");
}

TEST(MessagesTest, ExplainsTheCommand) {
    EXPECT_THAT(helpText(), StartsWith("Usage: corvane-import [--lite] [--timeout SECONDS]\n"));
    EXPECT_THAT(helpText(), HasSubstr("default: 3600"));
    EXPECT_THAT(versionText(),
                testing::MatchesRegex("corvane-import \\(Corvane\\) [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_EQ(usageProblem("unknown option: --fast"),
              "corvane-import: unknown option: --fast\n"
              "Try 'corvane-import --help' for more information.\n");
    EXPECT_EQ(timeoutProblem(std::chrono::seconds(1)), "the import was not over within 1 second");
    EXPECT_EQ(timeoutProblem(std::chrono::seconds(60)), "the import was not over within 60 seconds");
}

TEST(MessagesTest, AsksWithAnObject) {
    EXPECT_EQ(optionsText(true), R"({"isLite": true})");
    EXPECT_EQ(optionsText(false), R"({"isLite": false})");
}

TEST(MessagesTest, KeepsControlCharactersFromTheTerminal) {
    struct Row {
        std::string text;
        std::string shown;
    };
    const std::vector<Row> rows{
        {"S_D_4711_20150104.txt", "S_D_4711_20150104.txt"},
        {"Umsätze 売上 😀", "Umsätze 売上 😀"},
        {"\x1B[2J", "\\x1B[2J"},
        {"a\nb\tc", "a\\x0Ab\\x09c"},
        {"\x7F", "\\x7F"},
        {"\xC2\x9B"
         "31m",
         "\\xC2\\x9B31m"},
        {"\xE2\x80\xAEtxt", "\\xE2\\x80\\xAEtxt"},
        {"\xE2\x80\x8B\xE2\x80\x90", "\\xE2\\x80\\x8B\xE2\x80\x90"},
        {"\xE2\x81\xA6\xE2\x81\x9F", "\\xE2\\x81\\xA6\xE2\x81\x9F"},
        {"\xEF\xBB\xBF\xD8\x9C", "\\xEF\\xBB\\xBF\\xD8\\x9C"},
        {"a\\x1B", "a\\\\x1B"},
        {"\xFF\xC3", "\\xFF\\xC3"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(forTerminal(row.text), row.shown);
}

}  // namespace
}  // namespace corvane::import_command
