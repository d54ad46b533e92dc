#include "platform/system/thread_pool_queue.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <semaphore>
#include <set>
#include <thread>

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr auto generous = 30s;

/// As long as one lives, no thread can be started: there is no room for its stack.
class NoRoomForThreads {
  public:
    NoRoomForThreads() {
        pthread_attr_init(&previous_);
        pthread_getattr_default_np(&previous_);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 50U);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoRoomForThreads() {
        pthread_setattr_default_np(&previous_);
        pthread_attr_destroy(&previous_);
    }
    NoRoomForThreads(const NoRoomForThreads&) = delete;
    NoRoomForThreads& operator=(const NoRoomForThreads&) = delete;

  private:
    pthread_attr_t previous_{};
};

TEST(ThreadPoolQueueTest, RunsEveryTaskOffTheCallersThread) {
    constexpr int taskCount = 1000;
    std::latch done(taskCount);
    std::atomic<int> onCaller = 0;
    ThreadPoolQueue queue;
    const auto caller = std::this_thread::get_id();
    for (int count = 0; count < taskCount; ++count) {
        queue.async([&] {
            if (std::this_thread::get_id() == caller)
                ++onCaller;
            done.count_down();
        });
    }
    done.wait();
    EXPECT_EQ(onCaller, 0);
}

TEST(ThreadPoolQueueTest, GrowsToItsLimitAndNoFurther) {
    constexpr std::ptrdiff_t limit = 64;
    std::latch allRunning(limit);
    std::latch release(1);
    std::atomic<int> ran = 0;
    ThreadPoolQueue queue;
    for (std::ptrdiff_t count = 0; count < limit + 10; ++count) {
        queue.async([&] {
            if (++ran <= limit)
                allRunning.count_down();
            release.wait();
        });
    }
    allRunning.wait();
    EXPECT_EQ(queue.threadCount(), 64U);
    EXPECT_EQ(ran, limit);
    release.count_down();
    EXPECT_TRUE(queue.stop(generous));
}

TEST(ThreadPoolQueueTest, LeavesATaskToTheThreadsThatThereAreWhenNoneCanBeStarted) {
    std::latch firstRuns(1);
    std::latch release(1);
    std::latch secondRan(1);
    ThreadPoolQueue queue;
    queue.async([&] {
        firstRuns.count_down();
        release.wait();
    });
    firstRuns.wait();
    {
        const NoRoomForThreads noRoom;
        queue.async([&] { secondRan.count_down(); });
    }
    EXPECT_EQ(queue.threadCount(), 1U);
    release.count_down();
    secondRan.wait();
    EXPECT_EQ(queue.threadCount(), 1U);
}

TEST(ThreadPoolQueueDeathTest, IsOfNoUseWithoutAnyThread) {
    EXPECT_DEATH(
        {
            const NoRoomForThreads noRoom;
            ThreadPoolQueue queue;
            queue.async([] {});
        },
        "no thread can be started");
}

TEST(ThreadPoolQueueTest, UsesAnIdleThreadBeforeItStartsAnother) {
    ThreadPoolQueue queue({.maximumThreads = 64, .idleTime = generous});
    for (int count = 0; count < 20; ++count) {
        std::binary_semaphore done(0);
        queue.async([&] { done.release(); });
        done.acquire();
    }
    // A thread may still be on its way back to idleness when the next task comes.
    EXPECT_LT(queue.threadCount(), 20U);
}

TEST(ThreadPoolQueueTest, LetsIdleThreadsGoAndStartsNewOnes) {
    ThreadPoolQueue queue({.maximumThreads = 4, .idleTime = 10ms});
    for (int round = 0; round < 2; ++round) {
        std::latch done(4);
        for (int count = 0; count < 4; ++count)
            queue.async([&] { done.count_down(); });
        done.wait();
        const auto limit = std::chrono::steady_clock::now() + generous;
        while (queue.threadCount() > 0 && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(1ms);
        EXPECT_EQ(queue.threadCount(), 0U);
    }
}

/// A queue that is stopped lets a task go at once. Only while its threads are busy.
bool keepsTasks(ThreadPoolQueue& queue) {
    const auto held = std::make_shared<int>(0);
    queue.async([held] {});
    return held.use_count() > 1;
}

TEST(ThreadPoolQueueTest, DropsWaitingTasksWhenStopped) {
    std::atomic<bool> secondRan = false;
    std::latch running(1);
    std::latch release(1);
    const auto held = std::make_shared<int>(0);
    ThreadPoolQueue queue({.maximumThreads = 1, .idleTime = generous});
    queue.async([&] {
        running.count_down();
        release.wait();
    });
    queue.async([&secondRan, held] { secondRan = true; });
    running.wait();
    std::thread releaser([&] {
        while (keepsTasks(queue))
            std::this_thread::sleep_for(1ms);
        release.count_down();
    });
    EXPECT_TRUE(queue.stop(generous));
    releaser.join();
    EXPECT_FALSE(secondRan);
    EXPECT_EQ(held.use_count(), 1);
    queue.async([&secondRan] { secondRan = true; });
    EXPECT_EQ(queue.threadCount(), 0U);
    EXPECT_FALSE(secondRan);
}

TEST(ThreadPoolQueueTest, DoesNotWaitForATaskBeyondTheLimit) {
    const auto release = std::make_shared<std::binary_semaphore>(0);
    const auto ended = std::make_shared<std::binary_semaphore>(0);
    std::latch running(1);
    {
        ThreadPoolQueue queue;
        queue.async([&running, release, ended] {
            running.count_down();
            release->acquire();
            ended->release();
        });
        running.wait();
        EXPECT_FALSE(queue.stop(10ms));
        EXPECT_FALSE(queue.stop(0ms));
        release->release();
        EXPECT_TRUE(queue.stop(generous));
    }
    ended->acquire();
}

TEST(ThreadPoolQueueTest, MayBeGoneBeforeItsLastTaskEnds) {
    const auto release = std::make_shared<std::binary_semaphore>(0);
    const auto ended = std::make_shared<std::binary_semaphore>(0);
    {
        std::latch running(1);
        ThreadPoolQueue queue;
        queue.async([&running, release, ended] {
            running.count_down();
            release->acquire();
            ended->release();
        });
        running.wait();
    }
    release->release();
    EXPECT_TRUE(ended->try_acquire_for(generous));
}

TEST(ThreadPoolQueueTest, TakesTasksFromItsOwnTasks) {
    std::latch done(1);
    ThreadPoolQueue queue({.maximumThreads = 1, .idleTime = generous});
    queue.async([&] { queue.async([&] { done.count_down(); }); });
    done.wait();
    EXPECT_TRUE(queue.stop(generous));
}

TEST(ThreadPoolQueueTest, ReleasesWhatATaskHoldsOnceItHasRun) {
    const auto held = std::make_shared<int>(0);
    ThreadPoolQueue queue({.maximumThreads = 1, .idleTime = generous});
    queue.async([held] {});
    std::latch next(1);
    queue.async([&] { next.count_down(); });
    next.wait();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(ThreadPoolQueueTest, RunsTasksAtTheLowestPriorityAndLeavesTheOthersTheirs) {
    const int previous = getpriority(PRIO_PROCESS, 0);
    std::latch done(1);
    int priority = 0;
    ThreadPoolQueue queue;
    queue.async([&] {
        priority = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
        done.count_down();
    });
    done.wait();
    EXPECT_EQ(priority, 19);
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())), previous);
}

TEST(ThreadPoolQueueTest, LeavesTheProcessSignalsToOtherThreads) {
    std::latch done(1);
    bool isBlocked = false;
    ThreadPoolQueue queue;
    queue.async([&] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        isBlocked = sigismember(&mask, SIGTERM) == 1 && sigismember(&mask, SIGPIPE) == 1;
        done.count_down();
    });
    done.wait();
    EXPECT_TRUE(isBlocked);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGTERM), 0);
}

}  // namespace
}  // namespace corvane
