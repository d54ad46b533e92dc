// Runs on real threads, and under clocks and calendars that do what they should not.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <set>
#include <thread>
#include <utility>

#include "platform/memory/manual_background_queue.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/system/thread_pool_queue.h"
#include "reliability/engine_on_disk.h"
#include "reliability/rounds.h"
#include "support/engine_environment.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

constexpr int typeCount = 4;

/// Every third answer is a report, the others are refusals of all kinds.
HttpAnswer mixedAnswer(const HttpRequest& request) {
    const std::string date = formFields(request.body).at("REPORTDATE");
    switch ((date[6] * 10 + date[7]) % 6) {
        case 0:
        case 1:
            return answerWithItsReport(request);
        case 2:
            return answerWithMessage("There are no reports available to download for this selection.");
        case 3:
            return answerWithTransportFailure();
        case 4:
            return {
                .response = HttpResponse{.statusCode = 500, .url = "https://service.example/", .headers = {}},
                .body = toBytes("<html>"),
                .errorDescription = {}};
        default:
            return answerWithMessage(signInMessage);
    }
}

TEST(EngineThreads, EightAccountsOfFourTypesOverManyRuns) {
    constexpr int accounts = 8;
    const TemporaryFolder home;
    for (int round = 0; round < rounds(4, 20); ++round) {
        SCOPED_TRACE(round);
        ScriptedHttpClient http(round % 2 == 0 ? answerWithItsReport : mixedAnswer);
        ThreadPoolQueue queue;
        EngineOnDisk engine({home.path(), http, queue});
        engine.settings.setITunesAccounts(ITunesAccountList{});
        for (int number = 0; number < accounts; ++number)
            engine.addAccount(std::to_string(4711 + number));
        engine.fillCacheExceptNewest(9);
        engine.startRun();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (engine.finishes == 0 && std::chrono::steady_clock::now() < deadline) {
            engine.turn();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_EQ(engine.finishes, 1);
        std::set<std::pair<std::string, std::string>> lists;
        for (const HttpRequest& request : http.requests())
            lists.emplace(formFields(request.body).at("VNDNUMBER"), formFields(request.body).at("DATETYPE"));
        EXPECT_EQ(lists.size(), static_cast<std::size_t>(accounts * typeCount));
        EXPECT_GE(engine.answers, static_cast<int>(http.requests().size()));
        ASSERT_TRUE(queue.stop(std::chrono::seconds(10)));
    }
}

void useZone(const char* name) {
    setenv("TZ", name, 1);
    tzset();
}

class EngineTimeTest : public testing::Test {
  protected:
    ~EngineTimeTest() override { useZone("UTC"); }

    /// A first import at the day's noon, during which something happens to the clock; then every key is there
    /// once.
    void importWhile(std::chrono::year_month_day day, const std::function<void(EngineOnDisk&)>& disturb) {
        const TemporaryFolder home;
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home.path(), http, queue});
        engine.clock.set(startOfLocalDay(day) + std::chrono::hours(12));
        engine.addAccount("4711");
        engine.startRun();
        queue.runAll();
        engine.mainQueue.advance(std::chrono::seconds(1));
        disturb(engine);
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
        EXPECT_EQ(engine.finishes, 1);
        expectKeysOnce(engine);
        engine.startRun();
        queue.runAll();
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
        EXPECT_EQ(engine.finishes, 2);
        expectKeysOnce(engine);
    }

    static void expectKeysOnce(const EngineOnDisk& engine) {
        ReportKeys keys = *engine.settings.reportsDownloadedCache();
        std::sort(keys.begin(), keys.end());
        EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end());
    }
};

constexpr std::chrono::year_month_day ordinaryDay{std::chrono::year{2015}, std::chrono::June,
                                                  std::chrono::day{17}};

TEST_F(EngineTimeTest, TheClockIsSetBack) {
    importWhile(ordinaryDay, [](EngineOnDisk& engine) {
        engine.clock.set(engine.clock.now() - std::chrono::hours(24 * 400));
    });
}

TEST_F(EngineTimeTest, TheClockIsSetForward) {
    importWhile(ordinaryDay, [](EngineOnDisk& engine) {
        engine.clock.set(engine.clock.now() + std::chrono::hours(24 * 400));
    });
}

TEST_F(EngineTimeTest, TheZoneChangesDuringARun) {
    for (const char* zone : {"Pacific/Kiritimati", "Pacific/Pago_Pago", "America/Havana"}) {
        useZone("Europe/Berlin");
        importWhile(ordinaryDay, [zone](EngineOnDisk&) { useZone(zone); });
    }
}

TEST_F(EngineTimeTest, LeapDaysYearsEndsAndClockChanges) {
    using namespace std::chrono;
    for (const char* zone : {"UTC", "Europe/Berlin", "America/Havana", "Pacific/Apia"}) {
        useZone(zone);
        for (const year_month_day day : {2016y / 2 / 29, 2016y / 3 / 1, 2015y / 12 / 31, 2016y / 1 / 1,
                                         2015y / 3 / 29, 2015y / 10 / 25, 2012y / 1 / 2}) {
            SCOPED_TRACE(std::string(zone) + " " + std::to_string(static_cast<int>(day.year())) + "-" +
                         std::to_string(static_cast<unsigned>(day.month())) + "-" +
                         std::to_string(static_cast<unsigned>(day.day())));
            importWhile(day, [](EngineOnDisk&) {});
        }
    }
}

}  // namespace
}  // namespace corvane::test
