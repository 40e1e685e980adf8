#include <chrono>
#include <utility>

#include <sys/resource.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"

namespace {

/// What the calling thread has used and how often it had to wait for something.
struct ThreadUsage {
  double waits = waitsNow();
  double seconds = threadSeconds();

  static double waitsNow() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return static_cast<double>(usage.ru_nvcsw);
  }
};

/// Adds up what happens inside the blocks that run on the main thread, and outside of the host's
/// own waiting for them.
class Meter {
 public:
  template <class Work>
  void measure(Work&& work) {
    const ThreadUsage before;
    std::forward<Work>(work)();
    seconds_ += threadSeconds() - before.seconds;
    waits_ += ThreadUsage::waitsNow() - before.waits;
  }
  double takeSeconds() { return std::exchange(seconds_, 0); }
  [[nodiscard]] double waits() const { return waits_; }

 private:
  double seconds_ = 0;
  double waits_ = 0;
};

class MeteredQueue final : public ZLVMainQueue {
 public:
  MeteredQueue(std::shared_ptr<ZLVMainQueue> queue, Meter& meter)
      : queue_(std::move(queue)), meter_(meter) {}
  void dispatch(ZLVOnce<void()> block) override {
    queue_->dispatch([this, block = std::move(block)]() mutable {
      meter_.measure([&block] { std::move(block)(); });
    });
  }

 private:
  std::shared_ptr<ZLVMainQueue> queue_;
  Meter& meter_;
};

/// Median and 99th percentile of a call's time on the main thread, and the waits of all calls.
Numbers calls(Make make, const std::string& server) {
  constexpr int count = 5000;
  stayOnOneProcessor();
  Meter meter;
  auto platform = libraryPlatform(server);
  platform.mainQueue = std::make_shared<MeteredQueue>(platform.mainQueue, meter);
  installLibrary(std::move(platform), server);
  const auto contender = make();
  contender->done = [&contender](const Record&) { contender->stop(); };
  Numbers times;
  for (int i = 0; i < count; ++i) {
    meter.measure([&] { contender->start(server); });
    contender->run();
    times.push_back(meter.takeSeconds() * 1e6);
  }
  return {median(times), quantile(times, 0.99), meter.waits()};
}

Numbers setUp(const std::string& server) {
  const auto begin = std::chrono::steady_clock::now();
  installLibrary(libraryPlatform(server), server);
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - begin;
  return {elapsed.count()};
}

}  // namespace

Rows mainThreadRows(const Run& run) {
  Numbers medians;
  Numbers tails;
  Numbers waits;
  Numbers plain;
  Numbers setUps;
  for (int round = 0; round < run.rounds; ++round) {
    const auto client = inChild([&run] { return calls(&makeClient, run.neighbour); });
    medians.push_back(client.at(0));
    tails.push_back(client.at(1));
    waits.push_back(client.at(2));
    plain.push_back(inChild([&run] { return calls(&makeLibrary, run.neighbour); }).at(0));
    setUps.push_back(inChild([&run] { return setUp(run.server); }).at(0));
  }
  return {
      {"main-thread time of one call, issue and completion: median", "≤ 10 µs",
       format("%.1f µs (without its usage event %.1f µs)", median(medians), median(plain)),
       median(medians) <= 10},
      {"the same: 99th percentile", "≤ 50 µs", format("%.1f µs", median(tails)),
       median(tails) <= 50},
      {"waits of the main thread in 5,000 such calls", "0", format("%.0f", median(waits)),
       median(waits) == 0},
      {"install and configure, main thread", "≤ 1 ms", format("%.2f ms", median(setUps)),
       median(setUps) <= 1},
  };
}
