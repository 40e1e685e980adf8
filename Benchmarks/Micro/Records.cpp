#include <variant>

#include <benchmark/benchmark.h>

#include <ZolvaCheckoutKit/Core/Helpers/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/ZLVAccountRecords.h>

#include "Benchmarks/Support/Accounts.h"

namespace {

using benchmark::State;

/// Decoded, mapped and destroyed.
void toRecord(State& state) {
  const auto document = accountDocument(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    auto value = ZLVJSONSerialization::JSONObjectWithData(document);
    benchmark::DoNotOptimize(ZLVAccountInfo::initWithDictionary(std::get<ZLVValue>(value)));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.size()));
}
BENCHMARK(toRecord)
    ->Arg(fewPaymentOptions)
    ->Arg(manyPaymentOptions)
    ->Unit(benchmark::kMicrosecond)
    ->MinTime(0.1)
    ->Repetitions(5)
    ->ReportAggregatesOnly();

}  // namespace
