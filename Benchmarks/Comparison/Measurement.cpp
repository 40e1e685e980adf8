#include "Benchmarks/Comparison/Measurement.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <stdexcept>

#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double clockSeconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

Numbers inChild(const std::function<Numbers()>& measure) {
  std::array<int, 2> channel{};
  if (pipe(channel.data()) != 0) throw std::runtime_error("pipe");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    try {
      const auto numbers = measure();
      const auto size = numbers.size() * sizeof(double);
      _exit(write(channel[1], numbers.data(), size) == static_cast<ssize_t>(size) ? 0 : 1);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(EXIT_FAILURE);
  }
  close(channel[1]);
  Numbers numbers;
  for (double number = 0; read(channel[0], &number, sizeof number) == sizeof number;) {
    numbers.push_back(number);
  }
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) throw std::runtime_error("a measurement failed");
  return numbers;
}

void stayOnOneProcessor() {
  cpu_set_t first;
  CPU_ZERO(&first);
  CPU_SET(0, &first);
  if (sched_setaffinity(0, sizeof first, &first) != 0) throw std::runtime_error("affinity");
}

double quantile(Numbers numbers, double share) {
  const auto position =
      numbers.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(numbers.size()));
  std::nth_element(numbers.begin(), position, numbers.end());
  return *position;
}

double median(Numbers numbers) { return quantile(std::move(numbers), 0.5); }

double processSeconds() { return clockSeconds(CLOCK_PROCESS_CPUTIME_ID); }
double threadSeconds() { return clockSeconds(CLOCK_THREAD_CPUTIME_ID); }

double residentKilobytes() {
  std::ifstream file("/proc/self/smaps_rollup");
  for (std::string word; file >> word;) {
    double kilobytes = 0;
    if (word == "Rss:" && file >> kilobytes) return kilobytes;
  }
  throw std::runtime_error("/proc/self/smaps_rollup");
}

double peakResidentKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss);
}

CallCost makeCalls(Contender& contender, const std::string& server, int calls, int inFlight,
                   int before) {
  return makeCalls(contender, std::vector{server}, calls, inFlight, before);
}

CallCost makeCalls(Contender& contender, const std::vector<std::string>& servers, int calls,
                   int inFlight, int before) {
  using Clock = std::chrono::steady_clock;
  int started = 0;
  int ended = 0;
  double CPUSeconds = processSeconds();
  auto begin = Clock::now();
  const auto start = [&] {
    contender.start(servers[static_cast<std::size_t>(started++) % servers.size()]);
  };
  contender.done = [&](const Record& record) {
    if (record->accountStatus().text() != "ENABLED") throw std::runtime_error("another account");
    if (++ended == before) {
      CPUSeconds = processSeconds();
      begin = Clock::now();
    }
    if (started < before + calls) start();
    if (ended == before + calls) contender.stop();
  };
  while (started < std::min(before + calls, inFlight)) start();
  contender.run();
  const std::chrono::duration<double> elapsed = Clock::now() - begin;
  return {elapsed.count() / calls, (processSeconds() - CPUSeconds) / calls};
}
