#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include "core/gzip_codec.h"
#include "engine/report_update_manager.h"
#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/manual_clock.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "silent_log.h"

namespace {

using namespace corvane;

/// Answers every request with the same report.
class OneReportClient final : public HttpClient {
  public:
    HttpAnswer sendSynchronousRequest(const HttpRequest& /*request*/) override { return answer_; }

  private:
    const HttpAnswer answer_{
        .response = HttpResponse{.statusCode = 200,
                                 .url = "https://service.example/autoingestion.tft?",
                                 .headers = {{"Content-Disposition",
                                              "attachment; filename=S_D_80012345_20150104.txt.gz"}}},
        .body = gzippedData(toBytes(std::string(5000, 'x'))),
        .errorDescription = {}};
};

/// Takes every file and keeps none.
class ForgetfulFileManager final : public FileManager {
  public:
    bool fileExistsAtPath(const std::filesystem::path& /*path*/) const override { return true; }
    std::error_code createDirectoryAtPath(const std::filesystem::path& /*path*/) override { return {}; }
    std::error_code writeAtomically(const std::filesystem::path& /*path*/, ByteView /*content*/) override {
        return {};
    }
    std::error_code synchronize(const std::filesystem::path& /*folder*/) override { return {}; }
    std::error_code copyItem(const std::filesystem::path& /*source*/,
                             const std::filesystem::path& /*destination*/) override {
        return {};
    }
    std::optional<std::filesystem::path> containerForApplicationGroup(std::string_view /*id*/) override {
        return "/containers";
    }
};

struct Engine {
    explicit Engine(int accountCount) {
        ITunesAccountList accounts;
        for (int number = 0; number < accountCount; ++number) {
            accounts.push_back(
                std::make_shared<ITunesAccount>(std::to_string(80'000'000 + number), "Account"));
            accounts.back()->setEmail("user@example.com");
            accounts.back()->setPassword("secret");
        }
        settings.setITunesAccounts(std::move(accounts));
    }

    /// Returns the number of answers.
    std::int64_t run() {
        std::int64_t answers = 0;
        bool isFinished = false;
        manager.updateDailyReports([&](const UpdateProgress& progress) {
            ++answers;
            isFinished |= progress.isFinished;
        });
        while (backgroundQueue.pendingCount() + mainQueue.pendingCount() > 0) {
            backgroundQueue.runAll();
            mainQueue.advance(std::chrono::seconds{10});
        }
        if (!isFinished)
            std::abort();
        return answers;
    }

    bench::SilentLog log;
    InMemoryKeyValueStore defaults;
    SettingsManger settings{defaults};
    ManualMainQueue mainQueue;
    ManualBackgroundQueue backgroundQueue;
    OneReportClient httpClient;
    ForgetfulFileManager files;
    ManualClock clock{startOfLocalDay(std::chrono::year{2015} / 6 / 17) + std::chrono::hours{12}};
    ScriptedAlerts alerts;
    SourceLanguageStrings strings;
    ReportServiceConnection connection{"service.example", httpClient, mainQueue, backgroundQueue, log};
    ReportUpdateManager manager{{settings, connection, files, clock, alerts, strings}};
};

/// A first import. The time is the CPU time of one report.
void costOfReport(benchmark::State& state) {
    for (auto _ : state) {
        Engine engine(static_cast<int>(state.range()));
        const std::clock_t begin = std::clock();
        const std::int64_t answers = engine.run();
        const double time = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        state.SetIterationTime(time / static_cast<double>(answers));
    }
}
BENCHMARK(costOfReport)->Arg(10)->Iterations(10)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(costOfReport)->Arg(1000)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// What the main thread does before the first request of a run is under way. Nothing is due.
void startOfRun(benchmark::State& state) {
    Engine engine(static_cast<int>(state.range()));
    engine.run();
    for (auto _ : state) {
        engine.manager.updateDailyReports([](const UpdateProgress&) {});
        state.PauseTiming();
        while (engine.mainQueue.pendingCount() > 0)
            engine.mainQueue.advance(std::chrono::seconds{10});
        engine.backgroundQueue.runAll();
        engine.mainQueue.advance(std::chrono::seconds{10});
        state.ResumeTiming();
    }
}
BENCHMARK(startOfRun)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
