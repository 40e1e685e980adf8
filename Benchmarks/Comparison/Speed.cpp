#include <algorithm>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"

namespace {

struct Entry {
  Make make;
  bool isLibrary;
  int calls;
};

/// What each entry's calls cost, taken in turn and again each round.
std::vector<std::vector<CallCost>> costs(const Run& run, const std::vector<Entry>& entries,
                                         int inFlight, bool onOneProcessor,
                                         const std::vector<std::string>& others = {}) {
  const auto& server = onOneProcessor ? run.neighbour : run.server;
  std::vector<std::vector<CallCost>> costs(entries.size());
  for (int round = 0; round < run.rounds; ++round) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const auto numbers = inChild([&]() -> Numbers {
        const auto& [make, isLibrary, calls] = entries[i];
        if (onOneProcessor) stayOnOneProcessor();
        if (isLibrary) installLibrary(libraryPlatform(server), server);
        const auto contender = make();
        const int before = calls / 10 + 2 * inFlight;
        const auto cost = makeCalls(*contender, others.empty() ? std::vector{server} : others,
                                    calls, inFlight, before);
        return {cost.seconds, cost.CPUSeconds};
      });
      costs[i].push_back({numbers.at(0), numbers.at(1)});
    }
  }
  return costs;
}

double medianOf(const std::vector<CallCost>& costs, double CallCost::*member) {
  Numbers numbers;
  for (const auto& cost : costs) numbers.push_back(cost.*member * 1e6);
  return median(numbers);
}

/// The median of the rounds' ratios, which a drift of the machine leaves alone.
double ratio(const std::vector<CallCost>& costs, const std::vector<CallCost>& reference,
             double CallCost::*member) {
  Numbers ratios;
  for (std::size_t i = 0; i < costs.size(); ++i) {
    ratios.push_back(costs[i].*member / reference[i].*member);
  }
  return median(ratios);
}

constexpr auto seconds = &CallCost::seconds;
constexpr auto CPU = &CallCost::CPUSeconds;

Row atMost(const char* figure, double limit, const std::vector<CallCost>& library,
           const std::vector<CallCost>& other, double CallCost::*member) {
  const double value = ratio(library, other, member);
  return {
      figure, format("≤ %.2f", limit),
      format("%.2f (%.1f µs, %.1f µs)", value, medianOf(library, member), medianOf(other, member)),
      value <= limit};
}

Row ahead(const char* figure, double factor, const std::vector<CallCost>& library,
          const std::vector<CallCost>& contender, double CallCost::*member) {
  const double value = ratio(contender, library, member);
  Row row{figure, "", format("%.2f × (%.1f µs)", value, medianOf(contender, member))};
  if (factor > 0) {
    row.reach = format("≥ %.1f ×", factor);
    row.isMet = value >= factor;
  }
  return row;
}

}  // namespace

Rows speedRows(const Run& run) {
  constexpr int calls = 2000;
  const auto one = costs(run,
                         {{&makeLibrary, true, calls},
                          {&makeCurl, false, calls},
                          {&makeSoup, false, calls},
                          {&makeQt, false, calls / 2},
                          {&makeSocket, false, calls},
                          {&makeClient, true, calls},
                          {&makeCurlWithUsedHandles, false, calls},
                          {&makeBoundary, false, calls}},
                         1, true);
  const auto apart = costs(run,
                           {{&makeLibrary, true, calls},
                            {&makeCurl, false, calls},
                            {&makeSoup, false, calls},
                            {&makeQt, false, calls / 2}},
                           1, false);
  const auto many = costs(run,
                          {{&makeLibrary, true, 5 * calls},
                           {&makeCurl, false, 5 * calls},
                           {&makeSoup, false, 2 * calls}},
                          64, false);
  const auto callsPerSecond = [](const auto& cost) { return 1e6 / medianOf(cost, seconds); };
  const double throughput = 1 / ratio(many[0], many[1], seconds);
  return {
      atMost("one call at a time: latency, over raw multi", 1.10, one[0], one[1], seconds),
      atMost("one call at a time: CPU, over raw multi", 1.10, one[0], one[1], CPU),
      atMost("the same, threads where the system puts them: latency", 1.05, apart[0], apart[1],
             seconds),
      {"64 in flight: calls/s, over raw multi", "≥ 1.00",
       format("%.2f (%.0f, %.0f)", throughput, callsPerSecond(many[0]), callsPerSecond(many[1])),
       throughput >= 1},
      atMost("64 in flight: CPU per call, over raw multi", 1.00, many[0], many[1], CPU),
      ahead("ahead of libsoup, latency", 1.8, one[0], one[2], seconds),
      ahead("ahead of Qt, latency", 3.5, one[0], one[3], seconds),
      ahead("ahead of libsoup, threads where the system puts them, latency", 1.5, apart[0],
            apart[2], seconds),
      ahead("ahead of Qt, threads where the system puts them, latency", 0, apart[0], apart[3],
            seconds),
      ahead("ahead of libsoup, CPU", 0, one[0], one[2], CPU),
      ahead("ahead of Qt, CPU", 0, one[0], one[3], CPU),
      ahead("ahead of libsoup, 64 in flight", 0, many[0], many[2], seconds),
      ahead("beside raw multi with used handles, latency", 0, one[0], one[6], seconds),
      ahead("beside a raw blocking socket, latency", 0, one[0], one[4], seconds),
      ahead("beside the client's call with its usage event, a second call, latency", 0, one[0],
            one[5], seconds),
      atMost("the client's call through the C interface: latency, over C++", 1.15, one[7], one[5],
             seconds),
      atMost("the client's call through the C interface: CPU, over C++", 1.15, one[7], one[5], CPU),
  };
}

Rows loadRows(const Run& run) {
  constexpr int calls = 5000;
  constexpr int mostOfRaw = 1000;  // which grows tenfold beyond
  constexpr double allowed = 1.10;
  const std::vector<int> loads{1, 10, 100, 1000, 10'000};
  // Of one server 64 calls are under way at a time. To as many servers as that takes, all are.
  const std::vector<std::string> servers(run.servers.begin(), run.servers.end());
  const auto measured = [&](const std::vector<std::string>& to, int inFlight) {
    std::vector<Entry> entries{{&makeLibrary, true, std::max(calls, 2 * inFlight)}};
    if (inFlight <= mostOfRaw) entries.push_back({&makeCurl, false, calls});
    return costs(run, entries, inFlight, false, to);
  };
  std::vector<std::vector<std::vector<CallCost>>> costsOfLoads;
  std::string library;
  std::string raw;
  double growth = 0;
  for (const int inFlight : loads) {
    const auto& load = costsOfLoads.emplace_back(measured({}, inFlight));
    for (const auto& before : costsOfLoads) {
      growth = std::max(growth, ratio(load[0], before[0], CPU));
    }
    library += format(" %.1f", medianOf(load[0], CPU));
    if (load.size() > 1) raw += format(" %.1f", medianOf(load[1], CPU));
  }
  const auto fewer = measured(servers, 1000);
  const auto all = measured(servers, 10'000);
  return {{"1, 10, 100, 1,000, 10,000 in flight: CPU per call never grows by more than", "≤ 1.10",
           format("%.2f (µs:%s; raw multi, up to 1,000:%s)", growth, library.c_str(), raw.c_str()),
           growth <= allowed},
          {"1,000, 10,000 in flight to 157 servers: CPU per call grows by", "",
           format("%.2f (µs: %.1f %.1f; raw multi, 1,000: %.1f)", ratio(all[0], fewer[0], CPU),
                  medianOf(fewer[0], CPU), medianOf(all[0], CPU), medianOf(fewer[1], CPU))}};
}
