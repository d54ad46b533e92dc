#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "core/itunes_account_archive.h"

namespace {

using namespace corvane;

ITunesAccountList accounts(int count) {
    ITunesAccountList list;
    for (int number = 0; number < count; ++number) {
        const std::string vendorID = std::to_string(80'000'000 + number);
        list.push_back(std::make_shared<ITunesAccount>(vendorID, "Studio Zürich " + vendorID));
        list.back()->setEmail("user" + vendorID + "@example.com");
        list.back()->setPassword("secret " + vendorID);
    }
    return list;
}

void writeArchive(benchmark::State& state) {
    const ITunesAccountList list = accounts(static_cast<int>(state.range()));
    for (auto _ : state)
        benchmark::DoNotOptimize(archivedAccountList(list));
}
BENCHMARK(writeArchive)->Arg(300)->Unit(benchmark::kMicrosecond);

void readArchive(benchmark::State& state) {
    const Bytes archive = archivedAccountList(accounts(static_cast<int>(state.range())));
    for (auto _ : state)
        benchmark::DoNotOptimize(unarchivedAccountList(archive));
}
BENCHMARK(readArchive)->Arg(300)->Unit(benchmark::kMicrosecond);

}  // namespace
