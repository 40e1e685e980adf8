// caller CONTENDER MERCHANT COLLECTOR: an application that asks for an account whenever it is told
// to by a line, and writes how long it waited for it, in milliseconds. In between its loop runs.

#include <atomic>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

#include "Benchmarks/Comparison/Contender.h"

namespace {

using Clock = std::chrono::steady_clock;

std::unique_ptr<Contender> makeInstalledClient(const std::string& merchant,
                                               const std::string& collector, bool connectsAhead) {
  ZLVLinuxOptions options{.applicationName = "Benchmark",
                          .applicationVersion = "1",
                          .analyticsRootURL = collector + '/'};
  if (connectsAhead) options.connectsAheadTo = merchant;
  installLibrary(ZLVLinuxPlatform::platformWithOptions(std::move(options)), merchant);
  return makeClient();
}

std::unique_ptr<Contender> make(const std::string& name, const std::string& merchant,
                                const std::string& collector) {
  if (name.starts_with("library")) {
    return makeInstalledClient(merchant, collector, name == "library-ahead");
  }
  static const std::map<std::string, Make> peers{{"libsoup", &makeSoup}, {"qt", &makeQt}};
  return peers.at(name)();
}

/// Runs the loop until a line comes; false when none will.
bool waitForLine(Contender& contender) {
  std::atomic<bool> isThere = false;
  std::atomic<bool> isTaken = false;
  bool isLine = false;
  std::thread reader([&] {
    std::string line;
    isLine = static_cast<bool>(std::getline(std::cin, line));
    isThere = true;
    // Some loops forget that they were stopped when they did not run yet.
    for (; !isTaken; std::this_thread::sleep_for(std::chrono::milliseconds(1))) contender.stop();
  });
  while (!isThere) contender.run();
  isTaken = true;
  reader.join();
  return isLine;
}

double call(Contender& contender, const std::string& merchant) {
  bool isOver = false;
  double milliseconds = 0;
  const auto start = Clock::now();
  contender.done = [&](const Record& record) {
    milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    if (record->accountStatus().text() != "ENABLED") throw std::runtime_error("another account");
    isOver = true;
    contender.stop();
  };
  contender.start(merchant);
  while (!isOver) contender.run();
  return milliseconds;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 4) throw std::runtime_error("usage: caller CONTENDER MERCHANT COLLECTOR");
  const auto contender = make(argv[1], argv[2], argv[3]);
  while (waitForLine(*contender)) {
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    std::printf("%.6f ", now.count());
    std::printf("%.3f\n", call(*contender, argv[2]));
    std::fflush(stdout);
  }
  _exit(0);  // at once, whatever is still under way
} catch (const std::exception& error) {
  std::fprintf(stderr, "caller: %s\n", error.what());
  return 1;
}
