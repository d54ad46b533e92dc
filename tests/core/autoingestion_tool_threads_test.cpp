#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/autoingestion_tool.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/scripted_http_client.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

/// A thread for each task; the destructor waits for them.
class ThreadPerTaskQueue final : public BackgroundQueue {
  public:
    ~ThreadPerTaskQueue() override { join(); }

    void async(Task task) override { threads_.emplace_back(std::move(task)); }

    void join() {
        for (std::thread& thread : threads_)
            thread.join();
        threads_.clear();
    }

  private:
    std::vector<std::thread> threads_;
};

TEST(AutoingestionToolThreads, DeliversEveryResultOfManyJobsInOrderOnTheMainThread) {
    constexpr std::size_t jobCount = 24;
    constexpr std::size_t dateCount = 60;
    constexpr std::size_t rejectedFrom = 40;  // of every third job
    std::atomic<std::size_t> requestCount{0};
    ScriptedHttpClient http([&](const HttpRequest& request) {
        ++requestCount;
        HttpAnswer answer;
        if (request.body.ends_with("7")) {
            answer.errorDescription = "The network connection was lost.";
            return answer;
        }
        const bool isRejected =
            request.body.find("USERNAME=wrong&") != std::string::npos && request.body.ends_with("20150210");
        answer.response = HttpResponse{200, "https://service/autoingestion.tft?", {}};
        if (isRejected)
            answer.response->headers = {
                {"ERRORMSG", "Your AppleConnect account or password was entered incorrectly."}};
        else
            answer.response->headers = {{"Content-Disposition", "attachment; filename=r.txt"}};
        answer.body = toBytes(request.body);
        return answer;
    });
    InMemoryLog log;
    ManualMainQueue mainQueue;
    ThreadPerTaskQueue backgroundQueue;
    const ReportServiceConnection connection{"service", http, mainQueue, backgroundQueue, log};

    std::vector<Date> dates;
    dates.reserve(dateCount);
    const Date first = startOfLocalDay(2015y / 1 / 1) + 12h;
    for (std::size_t i = 0; i < dateCount; ++i)
        dates.emplace_back(first + i * 24h);

    const std::thread::id mainThread = std::this_thread::get_id();
    std::mutex mutex;
    std::size_t rejections = 0;
    std::map<std::size_t, std::vector<ReportResult>> results;  // main thread only
    for (std::size_t job = 0; job < jobCount; ++job) {
        const AutoingestionTool client(connection, job % 3 == 0 ? "wrong" : "right", "p",
                                       std::to_string(job));
        client.requestReports(
            dates, AutoingestionToolDateType::Daily,
            [&results, job, mainThread](ReportResult result) {
                EXPECT_EQ(std::this_thread::get_id(), mainThread);
                results[job].push_back(std::move(result));
            },
            [&, mainThread](const std::string&) {
                EXPECT_NE(std::this_thread::get_id(), mainThread);
                const std::lock_guard lock(mutex);
                ++rejections;
            });
    }
    // The main thread delivers while the workers still post.
    while (requestCount < jobCount * rejectedFrom / 2)
        mainQueue.advance(1s);
    backgroundQueue.join();
    mainQueue.advance(2s);

    ASSERT_EQ(results.size(), jobCount);
    EXPECT_EQ(rejections, jobCount / 3);
    for (const auto& [job, jobResults] : results) {
        SCOPED_TRACE(job);
        const bool isRejected = job % 3 == 0;
        // The 41st date is the 10th of February; the closing call comes on top.
        ASSERT_EQ(jobResults.size(), isRejected ? rejectedFrom + 2 : dateCount);
        for (std::size_t i = 0; i + (isRejected ? 1 : 0) < jobResults.size(); ++i)
            ASSERT_EQ(jobResults[i].reportDate, dates[i]);
        EXPECT_TRUE(jobResults.back().isLastReport);
        EXPECT_EQ(jobResults.back().reportDate.has_value(), !isRejected);
    }
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace corvane
