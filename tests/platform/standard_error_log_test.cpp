#include "platform/system/standard_error_log.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/fatal_error.h"
#include "platform/system/broken_pipes.h"

namespace corvane {
namespace {

std::string written(std::string_view text) {
    ::testing::internal::CaptureStderr();
    StandardErrorLog().log(text);
    return ::testing::internal::GetCapturedStderr();
}

/// Without the time and the process id.
std::string writtenText(std::string_view text) {
    const std::string line = written(text);
    const std::string endOfPrefix = "] ";
    return line.substr(line.find(endOfPrefix) + endOfPrefix.size());
}

TEST(StandardErrorLogTest, BeginsEachLineWithTimeAndProcess) {
    const std::string line = written("no data");
    const std::string shape = "0000-00-00 00:00:00.000 corvane[" + std::to_string(getpid()) + "] no data\n";
    ASSERT_EQ(line.size(), shape.size());
    for (std::size_t index = 0; index < shape.size(); ++index) {
        const bool isDigitOfTime = index < 23 && shape[index] == '0';
        if (isDigitOfTime)
            EXPECT_TRUE(line[index] >= '0' && line[index] <= '9') << line;
        else
            EXPECT_EQ(line[index], shape[index]) << line;
    }
}

TEST(StandardErrorLogTest, WritesOneLineWhateverTheTextHolds) {
    using namespace std::string_view_literals;
    const struct {
        std::string_view text;
        std::string_view expected;
    } cases[] = {
        {""sv, ""sv},
        {"file:Ü 漢 \xf0\x9f\x98\x80 \\n %@ %s"sv, "file:Ü 漢 \xf0\x9f\x98\x80 \\n %@ %s"sv},
        {"a\nb\r\nc\td"sv, "a\\nb\\r\\nc\\td"sv},
        {"\0\x1b[31m\x7f"sv, "\\u0000\\u001b[31m\\u007f"sv},
        {"\xc2\x85\xe2\x80\xa8\xe2\x80\xa9"sv, "\\u0085\\u2028\\u2029"sv},
        {"\xff\xc3(\xe2\x82"sv, "\\xff\\xc3(\\xe2\\x82"sv},
        {"\xed\xa0\x80"sv, "\\xed\\xa0\\x80"sv},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(writtenText(text), std::string(expected) + "\n");
}

TEST(StandardErrorLogTest, DoesNotMixTheLinesOfSeveralThreads) {
    ::testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    for (const char letter : std::string("abcd")) {
        threads.emplace_back([letter] {
            StandardErrorLog log;
            for (int count = 0; count < 50; ++count)
                log.log(std::string(200, letter));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const std::string output = ::testing::internal::GetCapturedStderr();
    std::size_t lines = 0;
    for (std::size_t start = 0; start < output.size(); ++lines) {
        const std::size_t end = output.find('\n', start);
        const std::string line = output.substr(start, end - start);
        EXPECT_TRUE(line.ends_with("] " + std::string(200, line.back()))) << line;
        start = end + 1;
    }
    EXPECT_EQ(lines, 200U);
}

TEST(StandardErrorLogTest, OutlivesAReaderThatHasGone) {
    EXPECT_EXIT(
        {
            int ends[2];
            if (pipe(ends) != 0)
                _exit(1);
            dup2(ends[1], STDERR_FILENO);
            close(ends[0]);
            ignoreBrokenPipes();
            StandardErrorLog().log("nobody reads this");
            _exit(7);
        },
        ::testing::ExitedWithCode(7), "");
}

TEST(StandardErrorLogTest, GivesUpALineThatCannotBeWritten) {
    const int previous = dup(STDERR_FILENO);
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    dup2(full, STDERR_FILENO);
    StandardErrorLog log;
    log.log("lost");
    dup2(previous, STDERR_FILENO);
    close(full);
    close(previous);

    ::testing::internal::CaptureStderr();
    log.log("there is room again");
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::EndsWith("] there is room again\n"));
}

// Signals are the process's business, not the log's.
TEST(StandardErrorLogTest, LeavesASignalOfABrokenPipeThatWasPendingBefore) {
    EXPECT_EXIT(
        {
            sigset_t brokenPipe;
            sigemptyset(&brokenPipe);
            sigaddset(&brokenPipe, SIGPIPE);
            sigprocmask(SIG_BLOCK, &brokenPipe, nullptr);
            raise(SIGPIPE);
            StandardErrorLog().log("written");
            sigset_t pending;
            sigpending(&pending);
            _exit(sigismember(&pending, SIGPIPE) == 1 ? 7 : 1);
        },
        ::testing::ExitedWithCode(7), "written");
}

TEST(FatalErrorTest, LogsTheMessageAndAborts) {
    EXPECT_EXIT(fatalError("the shared container is missing"), ::testing::KilledBySignal(SIGABRT),
                "corvane\\[[0-9]+\\] the shared container is missing\n");
}

}  // namespace
}  // namespace corvane
