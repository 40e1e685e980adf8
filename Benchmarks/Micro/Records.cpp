#include <string>
#include <utility>
#include <variant>

#include <benchmark/benchmark.h>

#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVEnquiryRecords.h>

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

/// An answer of equal pieces, so many that it is just accepted.
struct LargeAnswer {
  std::string start, piece, end;
  int pieces;
};

/// Mapped and destroyed, which is done on the main thread.
void largest(State& state, const LargeAnswer& answer) {
  auto text = answer.start + answer.piece;
  for (int i = 1; i < answer.pieces; ++i) text += ',' + answer.piece;
  text += answer.end;
  for (auto _ : state) {
    state.PauseTiming();
    auto decoded = ZLVJSONSerialization::JSONObjectWithData(text, ZLVPlatform().maximumDecodedSize);
    auto value = std::get<ZLVValue>(std::move(decoded));
    decoded = ZLVValue();
    state.ResumeTiming();
    benchmark::DoNotOptimize(ZLVAccountInfo::initWithDictionary(value));
    value = {};
  }
}
const std::string optionsStart = R"({"metadata":{"payment_options":[)";
BENCHMARK_CAPTURE(largest, empty_options, LargeAnswer{optionsStart, "{}", "]}}", 84'000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(largest, empty_balances,
                  LargeAnswer{optionsStart, R"({"balance":{}})", "]}}", 42'000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(largest, empty_arrays, LargeAnswer{R"({"a":[)", "[]", "]}", 162'000})
    ->Unit(benchmark::kMillisecond);

}  // namespace
