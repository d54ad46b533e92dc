#include <benchmark/benchmark.h>

#include <string>

#include "platform/memory/manual_clock.h"
#include "platform/system/property_list_file_store.h"
#include "settings/settings_manger.h"
#include "silent_log.h"
#include "support/temporary_folder.h"

namespace {

using namespace corvane;

ReportKeys keys(int count) {
    ReportKeys list;
    for (int number = 0; number < count; ++number)
        list.push_back(std::to_string(20'150'000 + number));
    return list;
}

/// What the end of a run costs: the cache goes to disk.
void writeCache(benchmark::State& state) {
    const test::TemporaryFolder folder;
    bench::SilentLog log;
    ManualClock clock{};
    PropertyListFileStore store(folder.path() / "settings.plist", log, clock);
    SettingsManger settings(store);
    const ReportKeys list = keys(static_cast<int>(state.range()));
    for (auto _ : state)
        settings.setReportsDownloadedCache(list);
}
BENCHMARK(writeCache)->Arg(447)->Arg(4470)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// What the settings cost at the program's start.
void loadSettings(benchmark::State& state) {
    const test::TemporaryFolder folder;
    bench::SilentLog log;
    ManualClock clock{};
    PropertyListFileStore store(folder.path() / "settings.plist", log, clock);
    SettingsManger(store).setReportsDownloadedCache(keys(static_cast<int>(state.range())));
    for (auto _ : state) {
        PropertyListFileStore again(folder.path() / "settings.plist", log, clock);
        benchmark::DoNotOptimize(SettingsManger(again).reportsDownloadedCache());
    }
}
BENCHMARK(loadSettings)->Arg(447)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
