#include "desktop/command_line.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Arguments = std::vector<std::string>;

TEST(ProgramCommandLine, StartsWithoutArguments) {
    EXPECT_FALSE(answerTo({}, "1.2.3"));
}

TEST(ProgramCommandLine, LeavesOtherArgumentsToTheToolkit) {
    for (const Arguments& arguments :
         {Arguments{"-platform", "xcb"}, Arguments{"--unknown"}, Arguments{""}}) {
        EXPECT_FALSE(answerTo(arguments, "1.2.3")) << arguments.front();
    }
}

TEST(ProgramCommandLine, ShowsTheVersion) {
    const auto answer = answerTo({"--version"}, "1.2.3");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->output, "Corvane 1.2.3\n");
    EXPECT_EQ(answer->problem, "");
    EXPECT_EQ(answer->exitStatus, 0);
}

TEST(ProgramCommandLine, ShowsHelpAlsoBehindOtherArguments) {
    for (const Arguments& arguments :
         {Arguments{"--help"}, Arguments{"-h"}, Arguments{"-platform", "xcb", "-h"},
          Arguments{"--help", "--version"}}) {
        const auto answer = answerTo(arguments, "1.2.3");
        ASSERT_TRUE(answer) << arguments.front();
        EXPECT_TRUE(answer->output.starts_with("Usage: corvane")) << arguments.front();
        EXPECT_EQ(answer->exitStatus, 0);
    }
}

TEST(ProgramCommandLine, RefusesWhatNobodyKnows) {
    EXPECT_EQ(refusalOf("--lite").problem,
              "corvane: unknown option: --lite\nTry 'corvane --help' for more information.\n");
    EXPECT_EQ(refusalOf("report.txt").problem,
              "corvane: unexpected argument: report.txt\nTry 'corvane --help' for more information.\n");
    EXPECT_EQ(refusalOf("--lite").exitStatus, 2);
    EXPECT_EQ(refusalOf("--lite").output, "");
}

}  // namespace
}  // namespace corvane
