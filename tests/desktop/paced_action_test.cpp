#include "desktop/paced_action.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <chrono>
#include <vector>

#include "desktop/event_waiting.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

TEST(PacedAction, RunsOnceForAllRequestsOfATurnAndNotAtOnce) {
    int value = 0;
    std::vector<int> seen;
    PacedAction action(1ms, [&] { seen.push_back(value); });
    for (value = 1; value < 3; ++value)
        action.request();
    EXPECT_TRUE(seen.empty());
    EXPECT_TRUE(waitUntil([&] { return !seen.empty(); }));
    EXPECT_EQ(seen, std::vector{3});
    EXPECT_FALSE(waitUntil([&] { return seen.size() > 1; }, 20ms));
}

TEST(PacedAction, RunsAtMostOnceInAnIntervalAndForTheLastRequest) {
    constexpr auto interval = 20ms;
    int requested = 0;
    int seen = 0;
    int runs = 0;
    PacedAction action(interval, [&] {
        seen = requested;
        ++runs;
    });
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(waitUntil([&] {
        ++requested;
        action.request();
        return time.elapsed() > 10 * interval.count();
    }));
    EXPECT_TRUE(waitUntil([&] { return seen == requested; }));
    EXPECT_GT(runs, 1);
    EXPECT_LE(runs, time.elapsed() / interval.count() + 1);
}

TEST(PacedAction, RunsNothingAfterItsEnd) {
    bool ran = false;
    {
        PacedAction action(0ms, [&] { ran = true; });
        action.request();
    }
    EXPECT_FALSE(waitUntil([&] { return ran; }, 20ms));
}

}  // namespace
}  // namespace corvane
