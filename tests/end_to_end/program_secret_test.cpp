// The password leaves the settings file for the service alone, and nobody else may read that file.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "end_to_end/end_to_end_environment.h"
#include "end_to_end/report_days.h"

namespace corvane::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* password = "Geheim-Passw0rd";

unsigned modeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

class ProgramSecretTest : public EndToEndTest, public testing::WithParamInterface<mode_t> {
  protected:
    ProgramSecretTest() : previousMask_(umask(GetParam())) {}
    ~ProgramSecretTest() override { umask(previousMask_); }

  private:
    const mode_t previousMask_;
};

TEST_P(ProgramSecretTest, IsToldToTheServiceAlone) {
    startService();
    writeAccounts({{"jane@example.com", password, "80012345"}}, fullCacheWithout(recentWorkdays(2)),
                  fullCache());
    const std::filesystem::path traffic = home_.path() / "bus-traffic";
    ChildProcessOptions monitorOptions;
    monitorOptions.command = {"dbus-monitor", "--address", bus_->address()};
    monitorOptions.outputFile = traffic;
    ChildProcess monitor(monitorOptions);
    const auto hears = [&traffic](const char* text) {
        return waitUntil([&] { return readFile(traffic).find(text) != std::string::npos; }, patience);
    };
    ASSERT_TRUE(hears("NameLost"));

    startProgram();
    host_->requestImport(std::nullopt);
    ASSERT_TRUE(service_->requests().waitForCount(1, patience)) << log();
    EXPECT_THAT(asText(service_->requests().requests().front().body), HasSubstr(password));
    const std::filesystem::path process = "/proc/" + std::to_string(program_->id());
    EXPECT_THAT(readFile(process / "environ"), HasSubstr("XDG_CONFIG_HOME"));
    EXPECT_THAT(readFile(process / "environ"), Not(HasSubstr(password)));
    EXPECT_THAT(readFile(process / "cmdline"), HasSubstr(TEST_PROGRAM));
    EXPECT_THAT(readFile(process / "cmdline"), Not(HasSubstr(password)));
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    ASSERT_TRUE(hears("reportUpdateViewControllerDidFinishDistributedNotification"));

    EXPECT_THAT(log(), HasSubstr("updateDailyReports"));
    const auto settingsName = settingsFile().lexically_relative(home_.path()).native();
    const std::set<std::string> files = filesBelow(home_.path());
    EXPECT_GE(files.size(), 5U) << "the log, the output, the bus's traffic, two reports";
    for (const std::string& name : files)
        EXPECT_EQ(readFile(home_.path() / name).find(password) != std::string::npos, name == settingsName)
            << name;

    EXPECT_EQ(modeOf(settingsFile()), 0600U);
    EXPECT_EQ(modeOf(settingsFile().parent_path()), 0700U);
    EXPECT_EQ(modeOf(container()), 0700U);
}

INSTANTIATE_TEST_SUITE_P(EveryUmask, ProgramSecretTest, testing::Values(0, 022, 077));

}  // namespace
}  // namespace corvane::test
