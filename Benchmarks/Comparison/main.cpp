#include <cstdarg>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"
#include "Benchmarks/Support/Accounts.h"
#include "Benchmarks/Support/Server.h"

std::string format(const char* text, ...) {
  char buffer[256];
  va_list arguments;
  va_start(arguments, text);
  std::vsnprintf(buffer, sizeof buffer, text, arguments);
  va_end(arguments);
  return buffer;
}

namespace {

void allowDescriptors() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

void print(const Rows& rows) {
  for (const auto& [figure, reach, measured, isMet] : rows) {
    const char* met = !isMet ? "" : *isMet ? "yes" : "**no**";
    std::printf("| %s | %s | %s | %s |\n", figure.c_str(), reach.c_str(), measured.c_str(), met);
  }
  std::fflush(stdout);
}

Row sizeRow(double kilobytes) {
  constexpr double budget = 350;
  return {"stripped shared objects, core and Linux backend, -Os, needing libcurl only", "≤ 350 KB",
          format("%.0f KB", kilobytes), kilobytes <= budget};
}

void compare(bool isCheap, double kilobytes) {
  allowDescriptors();
  const auto answer = response(accountDocument(fewPaymentOptions));
  const auto serve = [&answer](const TellPort& tellPort) {
    serveHTTP([&answer] { return Answer{answer}; }, tellPort);
  };
  const ForkedServer server(serve);
  const ForkedServer neighbour([&serve](const TellPort& tellPort) {
    stayOnOneProcessor();
    serve(tellPort);
  });
  constexpr int hosts = 157;
  const ForkedServer city([&answer](const TellPort& tellPort) {
    serveHTTP([&answer] { return Answer{answer}; }, tellPort, hosts);
  });
  Run run{"http://127.0.0.1:" + std::to_string(server.port()),
          "http://127.0.0.1:" + std::to_string(neighbour.port()),
          {},
          isCheap ? 3 : 11};
  for (int host = 1; host <= hosts; ++host) {
    run.servers.push_back("http://127.0.0." + std::to_string(host) + ':' +
                          std::to_string(city.port()));
  }
  const auto memory = memoryRows(run);  // before this process has used any to speak of

  std::printf("| figure | reach | measured | met |\n|---|---|---|---|\n");
  if (!isCheap) print(speedRows(run));
  print(recordRows());
  print(mainThreadRows(run));
  if (!isCheap) print(secureRows(run));
  print({sizeRow(kilobytes)});
  print(memory);
  if (!isCheap) print(loadRows(run));
}

}  // namespace

int main(int argc, char** argv) try {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool isCheap = arguments.size() == 2 && arguments[0] == "--cheap";
  if (!isCheap && arguments.size() != 1) {
    std::fprintf(stderr, "usage: comparison [--cheap] KILOBYTES-OF-THE-SHARED-OBJECTS\n");
    return 2;
  }
  compare(isCheap, std::stod(arguments.back()));
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
