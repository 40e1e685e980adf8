#include <map>

#include <benchmark/benchmark.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"

namespace {

/// Keeps the median of each benchmark's runs, in microseconds.
class Medians final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const auto& run : runs) {
      if (run.aggregate_name == "median") numbers.push_back(run.GetAdjustedCPUTime());
    }
  }
  Numbers numbers;
};

Row row(const char* figure, double limit, double microseconds) {
  return {figure, format("≤ %.0f µs", limit), format("%.1f µs", microseconds),
          microseconds <= limit};
}

}  // namespace

Rows recordRows() {
  const auto numbers = inChild([] {
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians, "toRecord");
    return medians.numbers;
  });
  return {row("700-byte answer: bytes → record", 5, numbers.at(0)),
          row("98 KB with 500 payment options: bytes → record", 700, numbers.at(1))};
}
