#include "desktop/qt_main_queue.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "desktop/event_waiting.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(QtMainQueue, RunsTasksInTheOrderInWhichTheyWereAdded) {
    QtMainQueue queue;
    std::vector<int> order;
    for (int i = 1; i <= 4; ++i)
        queue.async([&order, i] { order.push_back(i); });
    EXPECT_THAT(order, IsEmpty()) << "tasks run from the event loop only";
    EXPECT_TRUE(waitUntil([&] { return order.size() == 4; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST(QtMainQueue, RunsDelayedTasksByTheirTimeAndNeverTooEarly) {
    QtMainQueue queue;
    std::vector<int> order;
    const auto start = steady_clock::now();
    steady_clock::duration late{};
    queue.asyncAfter(60ms, [&] {
        order.push_back(60);
        late = steady_clock::now() - start;
    });
    queue.asyncAfter(20ms, [&] { order.push_back(20); });
    queue.asyncAfter(-5ms, [&] { order.push_back(-5); });
    EXPECT_TRUE(waitUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(-5, 20, 60));
    EXPECT_GE(late, 60ms);
}

TEST(QtMainQueue, AcceptsDelaysBeyondTheRangeOfTheClock) {
    QtMainQueue queue;
    bool ran = false;
    bool ranFarAway = false;
    queue.asyncAfter(std::chrono::nanoseconds::max(), [&] { ranFarAway = true; });
    queue.async([&] { ran = true; });
    EXPECT_TRUE(waitUntil([&] { return ran; }));
    EXPECT_FALSE(ranFarAway);
}

TEST(QtMainQueue, RunsNoOtherTaskWhileOneWaitsInANestedEventLoop) {
    QtMainQueue queue;
    std::vector<std::string> events;
    QTimer input;
    QEventLoop nested;
    queue.async([&] {
        events.push_back("begin");
        queue.async([&] { events.push_back("added inside"); });
        int turns = 0;
        QObject::connect(&input, &QTimer::timeout, [&] {
            if (++turns == 20)
                nested.quit();
        });
        input.start(1);
        nested.exec();
        input.stop();
        events.push_back("end, loop went on " + std::to_string(turns));
    });
    queue.async([&] { events.push_back("waiting"); });
    queue.asyncAfter(5ms, [&] { events.push_back("due meanwhile"); });
    EXPECT_TRUE(waitUntil([&] { return events.size() == 5; }));
    EXPECT_THAT(events,
                ElementsAre("begin", "end, loop went on 20", "waiting", "added inside", "due meanwhile"));
}

TEST(QtMainQueue, RunsTasksInANestedEventLoopThatNoTaskOpened) {
    QtMainQueue queue;
    bool ranInside = false;
    QTimer::singleShot(0, [&] {
        QEventLoop nested;
        queue.async([&] {
            ranInside = true;
            nested.quit();
        });
        nested.exec();
    });
    EXPECT_TRUE(waitUntil([&] { return ranInside; }));
}

TEST(QtMainQueue, LetsTheEventLoopHaveItsTurnBetweenManyTasks) {
    QtMainQueue queue;
    int turns = 0;
    bool isDone = false;
    QTimer input;
    QObject::connect(&input, &QTimer::timeout, [&] { ++turns; });
    input.start(0);
    std::function<void(int)> spin = [&](int left) {
        const auto end = steady_clock::now() + 1ms;
        while (steady_clock::now() < end) {
        }
        if (left == 0)
            isDone = true;
        else
            queue.async([&, left] { spin(left - 1); });
    };
    queue.async([&] { spin(100); });
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_GE(turns, 5);
}

TEST(QtMainQueue, TakesTasksFromManyThreadsAndLosesNone) {
    QtMainQueue queue;
    constexpr int threadCount = 4;
    constexpr int tasksPerThread = 2000;
    int ran = 0;
    std::vector<int> lastOfThread(threadCount, -1);
    bool isInOrder = true;
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < tasksPerThread; ++i) {
                queue.async([&, thread, i] {
                    isInOrder = isInOrder && lastOfThread[thread] == i - 1;
                    lastOfThread[thread] = i;
                    ++ran;
                });
            }
        });
    }
    EXPECT_TRUE(waitUntil([&] { return ran == threadCount * tasksPerThread; }));
    EXPECT_TRUE(isInOrder);
}

TEST(QtMainQueue, HoldsHundredsOfThousandsOfTasksCheaply) {
    QtMainQueue queue;
    constexpr int count = 300'000;
    int ran = 0;
    const auto start = steady_clock::now();
    for (int i = 0; i < count; ++i)
        queue.asyncAfter(std::chrono::microseconds(i % 1000), [&] { ++ran; });
    EXPECT_TRUE(waitUntil([&] { return ran == count; }, 60s));
    EXPECT_LT(steady_clock::now() - start, 30s);
}

TEST(QtMainQueue, WakesNobodyUpWhileItOnlyWaits) {
    QtMainQueue queue;
    queue.asyncAfter(1h, [] {});
    QCoreApplication::processEvents();
    bool timeIsOver = false;
    QTimer::singleShot(100, [&] { timeIsOver = true; });
    int wakeUps = 0;
    while (!timeIsOver) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ++wakeUps;
    }
    EXPECT_LE(wakeUps, 4);
}

TEST(QtMainQueue, CountsADelayAfterItsTurnFromTheEndOfTheRunningTask) {
    QtMainQueue queue;
    steady_clock::time_point ended{};
    steady_clock::time_point ran{};
    queue.async([&] {
        const auto posted = steady_clock::now();
        std::jthread([&] { queue.asyncAfterTurn(20ms, [&] { ran = steady_clock::now(); }); }).join();
        while (steady_clock::now() < posted + 30ms) {
        }
        ended = steady_clock::now();
    });
    EXPECT_TRUE(waitUntil([&] { return ran != steady_clock::time_point{}; }));
    EXPECT_GE(ran - ended, 20ms);
}

TEST(QtMainQueue, CountsADelayAfterItsTurnFromTheEndOfTheTasksThatAreDue) {
    QtMainQueue queue;
    std::vector<std::string> events;
    queue.async([&] { events.push_back("due before"); });
    queue.asyncAfterTurn(0ms, [&] { events.push_back("after the turn"); });
    queue.async([&] { events.push_back("due behind"); });
    EXPECT_TRUE(waitUntil([&] { return events.size() == 3; }));
    EXPECT_THAT(events, ElementsAre("due before", "due behind", "after the turn"));
}

TEST(QtMainQueue, KeepsTheOrderOfDelaysAfterTheirTurnsWhetherItIsBusyOrNot) {
    QtMainQueue queue;
    std::vector<int> order;
    std::jthread worker([&] {
        for (int i = 0; i < 200; ++i) {
            if (i % 10 == 0)
                queue.async([] { std::this_thread::sleep_for(2ms); });
            queue.asyncAfterTurn(5ms, [&order, i] { order.push_back(i); });
            std::this_thread::sleep_for(100us);
        }
    });
    EXPECT_TRUE(waitUntil([&] { return order.size() == 200; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end())) << testing::PrintToString(order);
}

TEST(QtMainQueue, TakesDelaysAfterItsTurnFromAThreadWithoutWakingUp) {
    QtMainQueue queue;
    queue.asyncAfter(1h, [] {});
    QCoreApplication::processEvents();
    bool isDone = false;
    int wakeUps = 0;
    {
        const std::jthread worker([&] {
            for (int i = 0; i < 100; ++i) {
                queue.asyncAfterTurn(2h, [] {});
                std::this_thread::sleep_for(100us);
            }
            queue.async([&] { isDone = true; });
        });
        while (!isDone) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            ++wakeUps;
        }
    }
    EXPECT_LE(wakeUps, 5);
}

TEST(QtMainQueue, BeginsNoTaskAfterItWasStopped) {
    QtMainQueue queue;
    std::vector<std::string> events;
    queue.async([&] {
        queue.stop();
        events.push_back("stopping task ends");
    });
    queue.async([&] { events.push_back("next task"); });
    EXPECT_TRUE(waitUntil([&] { return !events.empty(); }));
    queue.async([&] { events.push_back("late task"); });
    EXPECT_FALSE(waitUntil([&] { return events.size() > 1; }, 50ms));
}

TEST(QtMainQueue, DestroysDroppedTasksOnceEvenWhenThatAddsAnother) {
    QtMainQueue queue;
    auto owned = std::make_shared<int>(1);
    const std::weak_ptr<int> watcher = owned;
    struct AddsAtItsEnd {
        QtMainQueue& queue;
        std::shared_ptr<int> owned;
        AddsAtItsEnd(QtMainQueue& takes, std::shared_ptr<int> owns) : queue(takes), owned(std::move(owns)) {}
        AddsAtItsEnd(const AddsAtItsEnd&) = delete;
        ~AddsAtItsEnd() {
            queue.async([] {});
        }
    };
    auto adder = std::make_shared<AddsAtItsEnd>(queue, std::move(owned));
    queue.asyncAfter(1h, [adder = std::move(adder)] {});
    queue.dropTasks();
    EXPECT_TRUE(watcher.expired());
}

}  // namespace
}  // namespace corvane
