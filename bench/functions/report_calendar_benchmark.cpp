#include <benchmark/benchmark.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "engine/report_calendar.h"

namespace {

using namespace corvane;

const Date noon = startOfLocalDay(std::chrono::year{2015} / 6 / 17) + std::chrono::hours{12};

using Cache = std::optional<std::vector<std::string>>;

Cache fullCache() {
    std::vector<std::string> keys;
    for (const SaleDataReportType type : allReportTypes) {
        for (const Date date : dueReportDates(type, noon, std::nullopt))
            keys.push_back(reportKey(date, type));
    }
    return keys;
}

void findDueDates(benchmark::State& state, const Cache& cache) {
    for (auto _ : state) {
        for (const SaleDataReportType type : allReportTypes)
            benchmark::DoNotOptimize(dueReportDates(type, noon, cache));
    }
}

void dueDatesWithFullCache(benchmark::State& state) {
    findDueDates(state, fullCache());
}
BENCHMARK(dueDatesWithFullCache)->Unit(benchmark::kMicrosecond);

void dueDatesWithoutCache(benchmark::State& state) {
    findDueDates(state, std::nullopt);
}
BENCHMARK(dueDatesWithoutCache)->Unit(benchmark::kMicrosecond);

void makeReportKey(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(reportKey(noon, SaleDataReportType::Daily));
}
BENCHMARK(makeReportKey)->Unit(benchmark::kMicrosecond);

}  // namespace
