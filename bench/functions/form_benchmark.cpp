#include <benchmark/benchmark.h>

#include "core/autoingestion_form.h"

namespace {

using namespace corvane;

void makeFormBody(benchmark::State& state) {
    AutoingestionForm form;
    form.username = "sales+reports@example.com";
    form.password = "p4ss word & more";
    form.vendorID = "80012345";
    form.reportDate = "20150104";
    for (auto _ : state)
        benchmark::DoNotOptimize(formBody(form));
}
BENCHMARK(makeFormBody)->Unit(benchmark::kMicrosecond);

}  // namespace
