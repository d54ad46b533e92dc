#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/memory/in_memory_distributed_notification_center.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/manual_clock.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/recording_application.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/system/system_clock.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ManualMainQueueTest : public ::testing::Test {
  protected:
    Task note(std::string name) {
        return [this, name = std::move(name)] { ran_.push_back(name); };
    }

    ManualMainQueue queue_;
    std::vector<std::string> ran_;
};

TEST_F(ManualMainQueueTest, RunsTasksInTheOrderInWhichTheyCame) {
    queue_.async(note("1"));
    queue_.asyncAfter(0s, note("2"));
    queue_.async(note("3"));
    EXPECT_THAT(ran_, IsEmpty());
    EXPECT_EQ(queue_.runDueTasks(), 3U);
    EXPECT_THAT(ran_, ElementsAre("1", "2", "3"));
}

TEST_F(ManualMainQueueTest, RunsDelayedTasksWhenTheyAreDueAndNotBefore) {
    queue_.asyncAfter(2s, note("late"));
    queue_.asyncAfter(1s, note("early"));
    queue_.asyncAfter(1s, note("early too"));
    EXPECT_EQ(queue_.advance(999ms), 0U);
    EXPECT_EQ(queue_.advance(1ms), 2U);
    EXPECT_THAT(ran_, ElementsAre("early", "early too"));
    EXPECT_EQ(queue_.pendingCount(), 1U);
    EXPECT_EQ(queue_.advance(5s), 1U);
    EXPECT_EQ(queue_.pendingCount(), 0U);
}

TEST_F(ManualMainQueueTest, CountsADelayFromTheTaskThatAsksForIt) {
    queue_.asyncAfter(1s, [this] { queue_.asyncAfter(2s, note("second")); });
    EXPECT_EQ(queue_.advance(2999ms), 1U);
    EXPECT_THAT(ran_, IsEmpty());
    EXPECT_EQ(queue_.advance(1ms), 1U);
    EXPECT_THAT(ran_, ElementsAre("second"));
}

TEST_F(ManualMainQueueTest, RunsNothingWhileOneOfItsTasksRuns) {
    queue_.async([this] {
        queue_.async(note("next"));
        EXPECT_EQ(queue_.runDueTasks(), 0U);
        EXPECT_EQ(queue_.advance(1h), 0U);
        EXPECT_THAT(ran_, IsEmpty());
    });
    EXPECT_EQ(queue_.runDueTasks(), 2U);
    EXPECT_THAT(ran_, ElementsAre("next"));
}

TEST_F(ManualMainQueueTest, DropsWaitingTasksAtItsEnd) {
    const auto held = std::make_shared<int>(0);
    bool ran = false;
    {
        ManualMainQueue queue;
        queue.async([held, &ran] { ran = true; });
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(ManualMainQueueTest, TakesTasksFromOtherThreads) {
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([this] {
            for (int number = 0; number < 100; ++number)
                queue_.async(note("x"));
        });
    }
    std::size_t ran = 0;
    while (ran < 400)
        ran += queue_.runDueTasks();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(ran_.size(), 400U);
}

TEST(ManualBackgroundQueueTest, RunsTasksInOrderWithThoseThatTheyAdd) {
    std::vector<int> ran;
    ManualBackgroundQueue queue;
    queue.async([&] {
        ran.push_back(1);
        queue.async([&] { ran.push_back(3); });
    });
    queue.async([&] { ran.push_back(2); });
    EXPECT_EQ(queue.pendingCount(), 2U);
    EXPECT_EQ(queue.runAll(), 3U);
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
    EXPECT_EQ(queue.runAll(), 0U);
}

TEST(ScriptedAlertsTest, AnswersWithThePreparedAnswersThenWithTheFirstButton) {
    ScriptedAlerts alerts;
    alerts.prepareAnswer({alertSecondButtonReturn, "4711"});
    Alert alert;
    alert.messageText = "Enter vendor ID";
    const AlertAnswer first = alerts.runModal(alert);
    EXPECT_EQ(first.code, 1001);
    EXPECT_EQ(first.accessoryText, "4711");
    EXPECT_EQ(alerts.runModal(alert).code, 1000);
    ASSERT_EQ(alerts.shown().size(), 2U);
    EXPECT_EQ(alerts.shown().front().messageText, "Enter vendor ID");
}

TEST(ScriptedAlertsTest, LetsOthersActWhileAnAlertIsOpen) {
    ScriptedAlerts alerts;
    int depth = 0;
    int deepest = 0;
    alerts.whileOpen([&](const Alert& alert) {
        ++depth;
        deepest = std::max(deepest, depth);
        if (depth < 3)
            alerts.runModal(alert);
        --depth;
    });
    alerts.runModal({});
    EXPECT_EQ(deepest, 3);
    EXPECT_EQ(alerts.shown().size(), 3U);
    alerts.beep();
    EXPECT_EQ(alerts.beepCount(), 1);
}

TEST(ScriptedHttpClientTest, KeepsRequestsAndAnswersFromItsScript) {
    ScriptedHttpClient client([](const HttpRequest& request) {
        HttpAnswer answer;
        answer.body = toBytes(request.url);
        return answer;
    });
    HttpRequest request;
    request.url = "https://host/";
    EXPECT_EQ(client.sendSynchronousRequest(request).body, toBytes("https://host/"));
    ASSERT_EQ(client.requests().size(), 1U);
    EXPECT_EQ(client.requests().front().url, "https://host/");
}

TEST(InMemoryDistributedNotificationCenterTest, DeliversToTheObserversOfTheName) {
    InMemoryDistributedNotificationCenter center;
    std::vector<std::string> received;
    center.addObserver("a", [&](const DistributedNotification& notification) {
        received.push_back("first " + std::get<std::string>(notification.object));
        // Others come too late for this notification.
        center.addObserver("a", [&](const DistributedNotification&) { received.emplace_back("late"); });
    });
    center.addObserver("a", [&](const DistributedNotification&) { received.emplace_back("second"); });
    center.addObserver("b", [&](const DistributedNotification&) { received.emplace_back("other"); });
    center.deliver({"a", std::string("x")});
    center.deliver({"nobody listens", {}});
    EXPECT_THAT(received, ElementsAre("first x", "second"));
    center.post("b");
    EXPECT_THAT(center.posted(), ElementsAre("b"));
    EXPECT_THAT(received, ElementsAre("first x", "second"));
}

TEST(InMemoryLogTest, KeepsLinesOfAllThreads) {
    InMemoryLog log;
    std::thread other([&] { log.log("one"); });
    other.join();
    log.log("two");
    EXPECT_THAT(log.lines(), ElementsAre("one", "two"));
    EXPECT_TRUE(log.contains("two"));
    EXPECT_FALSE(log.contains("tw"));
}

TEST(ManualClockTest, StandsStillUntilItIsSet) {
    ManualClock clock(Date(5s));
    EXPECT_EQ(clock.now(), Date(5s));
    clock.set(Date(3s));
    EXPECT_EQ(clock.now(), Date(3s));
}

TEST(SystemClockTest, TellsTheTime) {
    const Date before = std::chrono::system_clock::now();
    const Date now = SystemClock().now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, std::chrono::system_clock::now());
}

TEST(RecordingApplicationTest, CountsAndGoesOn) {
    RecordingApplication application;
    application.terminate();
    EXPECT_EQ(application.terminateCount(), 1);
}

}  // namespace
}  // namespace corvane
