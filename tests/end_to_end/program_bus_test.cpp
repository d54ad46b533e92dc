// The real program when the bus is not there: it goes on, and what it announced goes out once there is one,
// or the log says that it was lost.

#include <gmock/gmock.h>

#include <csignal>

#include "end_to_end/end_to_end_environment.h"
#include "end_to_end/report_days.h"

namespace corvane::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr const char* loss =
    "the notification reportUpdateViewControllerDidFinishDistributedNotification could not be sent";

class ProgramBusTest : public EndToEndTest {
  protected:
    bool waitForLog(const std::string& text) {
        return waitUntil([&] { return log().find(text) != std::string::npos; }, patience);
    }

    /// An import of one report that the service answers only when the bus has gone.
    void loseTheBusDuringAnImport(demo::Content answer) {
        startService();
        writeAccounts({{"jane@example.com", "secret", "80012345"}}, fullCacheWithout(recentWorkdays(1)),
                      fullCache());
        service_->setBehaviour([answer](const demo::ReportRequest&) {
            return demo::Behaviour{.content = answer, .delivery = {.latency = std::chrono::seconds(1)}};
        });
        startProgram();
        host_->requestImport(std::nullopt);
        ASSERT_TRUE(service_->requests().waitForCount(1, patience)) << log();
        bus_->end();
        ASSERT_TRUE(waitForLog("no session bus")) << log();
    }

    /// The host is there before the program can notice that the bus is back.
    void letTheBusComeBack() {
        program_->sendSignal(SIGSTOP);
        bus_->startAgain();
        joinBusAgain();
        program_->sendSignal(SIGCONT);
        EXPECT_TRUE(host_->waitForProgram(true, patience)) << log();
    }
};

TEST_F(ProgramBusTest, AnnouncesTheEndOfAnImportOnceTheBusIsBack) {
    loseTheBusDuringAnImport(demo::Content::NoReport);
    ASSERT_TRUE(waitForLog("download not sucessfull")) << log();
    EXPECT_TRUE(program_->isRunning());
    letTheBusComeBack();
    EXPECT_TRUE(host_->waitForFinishes(1, patience)) << log();
    EXPECT_THAT(log(), HasSubstr("joined the session bus again"));

    service_->setBehaviour({});
    host_->requestImport(std::nullopt);
    EXPECT_TRUE(host_->waitForFinishes(2, patience)) << log();
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_FALSE(host_->waitForFinishes(3, std::chrono::milliseconds(200))) << "an end was announced twice";
    EXPECT_THAT(reports(), SizeIs(1));
    EXPECT_THAT(log(), Not(HasSubstr(loss)));
}

TEST_F(ProgramBusTest, LogsTheLossOfWhatItCouldNotAnnounceToTheEnd) {
    loseTheBusDuringAnImport(demo::Content::Report);
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_THAT(log(), HasSubstr(loss));
    EXPECT_THAT(reports(), SizeIs(1));
    EXPECT_THAT(cache(), Contains(keyOf(demo::ReportDateType::Daily, recentWorkdays(1).front())));
}

TEST_F(ProgramBusTest, GoesOnWithoutABusAndEndsWhenAsked) {
    bus_->end();
    program_ = startedProcess();
    ASSERT_TRUE(waitForLog("no session bus")) << log();
    EXPECT_FALSE(program_->waitForExit(std::chrono::seconds(1)).has_value());
    program_->sendSignal(SIGTERM);
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_THAT(log(), Not(HasSubstr(loss)));
}

TEST_F(ProgramBusTest, TakesRequestsOnceThereIsABus) {
    startService();
    writeAccounts({{"jane@example.com", "secret", "80012345"}}, fullCacheWithout(recentWorkdays(1)),
                  fullCache());
    bus_->end();
    program_ = startedProcess();
    ASSERT_TRUE(waitForLog("no session bus")) << log();
    letTheBusComeBack();
    host_->requestImport(std::nullopt);
    EXPECT_TRUE(host_->waitForFinishes(1, patience)) << log();
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_THAT(reports(), SizeIs(1));
}

}  // namespace
}  // namespace corvane::test
