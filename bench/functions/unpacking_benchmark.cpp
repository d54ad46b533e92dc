#include <benchmark/benchmark.h>
#include <zlib.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>

#include "core/gzip_codec.h"
#include "demo_service/made_up_report_source.h"

namespace {

using namespace corvane;

struct PackedReport {
    Bytes packed;
    std::size_t size;
};

const PackedReport& packedReport(std::int64_t size) {
    static std::map<std::int64_t, PackedReport> reports;
    const auto found = reports.find(size);
    if (found != reports.end())
        return found->second;
    const auto text = demo::MadeUpReportSource(static_cast<std::size_t>(size))
                          .report("80012345", demo::ReportDateType::Daily, std::chrono::year{2015} / 6 / 17);
    return reports.emplace(size, PackedReport{*gzippedData(toBytes(*text)), text->size()}).first->second;
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(5'000)->Arg(500'000)->Arg(50'000'000)->Unit(benchmark::kMicrosecond);
}

// Both sides copy the packed report, because ours consumes it.

void unpack(benchmark::State& state) {
    const PackedReport& report = packedReport(state.range());
    for (auto _ : state) {
        Bytes packed = report.packed;
        benchmark::DoNotOptimize(gunzippedData(std::move(packed)));
    }
}
BENCHMARK(unpack)->Apply(sizes);

void unpackInOneCall(benchmark::State& state) {
    const PackedReport& report = packedReport(state.range());
    for (auto _ : state) {
        Bytes packed = report.packed;
        const auto unpacked = std::make_unique_for_overwrite<Bytef[]>(report.size);
        z_stream stream{};
        stream.next_in = packed.data();
        stream.avail_in = static_cast<uInt>(packed.size());
        stream.next_out = unpacked.get();
        stream.avail_out = static_cast<uInt>(report.size);
        constexpr int windowBits = 15 + 32;
        if (inflateInit2(&stream, windowBits) != Z_OK || inflate(&stream, Z_FINISH) != Z_STREAM_END)
            std::abort();
        inflateEnd(&stream);
        benchmark::DoNotOptimize(unpacked.get());
    }
}
BENCHMARK(unpackInOneCall)->Apply(sizes);

}  // namespace
