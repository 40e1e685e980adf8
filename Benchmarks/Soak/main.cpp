// Very many calls, some of which fail, and what is left of them.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/ZLVClient.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Support/Accounts.h"
#include "Benchmarks/Support/Server.h"

namespace {

constexpr int inFlight = 64;
constexpr int settled = 10'000;         // calls after which memory is to be flat
constexpr double allowedGrowth = 1024;  // KB
constexpr double faultShare = 0.01;

/// One answer in a hundred is one of these, taken in turn.
void serveWithFaults(const TellPort& tellPort) {
  using Then = Answer::Then;
  const std::string whole = response(accountDocument(fewPaymentOptions));
  const std::string half = whole.substr(0, whole.size() / 2);
  const std::string noHeader = whole.substr(0, 20);
  const std::string noJSON = response("{\"status_code\":");
  const std::string refusal = response(R"({"status_code":"402","status_message":"No."})");
  const std::array<Answer, 8> faults{{{"", Then::Close},
                                      {"", Then::Reset},
                                      {noHeader, Then::Close},
                                      {half, Then::Close},
                                      {half, Then::Reset},
                                      {"nonsense\r\n\r\n", Then::Close},
                                      {noJSON},
                                      {refusal}}};
  std::minstd_rand random;  // NOLINT(*-msc51-cpp): the same faults each time
  std::bernoulli_distribution isFault(faultShare);
  std::size_t next = 0;
  serveHTTP(
      [&]() -> Answer {
        if (isFault(random)) return faults.at(next++ % faults.size());
        return {whole, Then::Keep};
      },
      tellPort);
}

std::ptrdiff_t descriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// The library, on a session that can be ended.
class Library {
 public:
  explicit Library(const std::string& server) {
    struct Forwarder final : ZLVURLSession {
      explicit Forwarder(std::unique_ptr<ZLVURLSession>& target) : session(target) {}
      void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
        session->dataTask(std::move(request), std::move(handler));
      }
      std::unique_ptr<ZLVURLSession>& session;
    };
    auto platform = libraryPlatform(server);
    session_ = platform.makeURLSession();
    platform.makeURLSession = [this] { return std::make_unique<Forwarder>(session_); };
    installLibrary(std::move(platform), server);
  }

  void endSession() { session_.reset(); }

 private:
  std::unique_ptr<ZLVURLSession> session_;
};

/// What became of the calls, and of this process's memory meanwhile.
struct Result {
  explicit Result(int calls) : answers(static_cast<std::size_t>(calls)) {}

  std::vector<unsigned char> answers;  // to each call
  std::map<std::string, int> outcomes;
  double settledKilobytes = 0;
  double mostKilobytes = 0;

  void count(int call, const Record& record, const std::optional<ZLVError>& error) {
    if ((record == nullptr) != error.has_value()) throw std::runtime_error("neither or both");
    ++answers.at(static_cast<std::size_t>(call));
    ++outcomes[error ? error->domain() + ' ' + std::to_string(error->code()) : "a record"];
  }
  void lookAtMemory(int ended) {
    if (ended % settled != 0) return;
    const double kilobytes = residentKilobytes();
    if (ended == settled) settledKilobytes = kilobytes;
    mostKilobytes = std::max(mostKilobytes, kilobytes);
  }
};

void makeCalls(int calls, Result& result) {
  const auto queue = ZLVLinuxMainQueue::mainQueue();
  int started = 0;
  int ended = 0;
  const std::function<void()> start = [&] {
    ZLVClient::enquireAccountWithAccountID(
        "acc-1", [&, call = started++](const Record& record, const auto& error) {
          result.count(call, record, error);
          result.lookAtMemory(++ended);
          if (started < calls) start();
          if (ended == calls) queue->stop();
        });
  };
  while (started < std::min(inFlight, calls)) start();
  queue->run();
}

bool soak(int calls) {
  const ForkedServer server(&serveWithFaults);
  const auto url = "http://127.0.0.1:" + std::to_string(server.port());
  const auto queue = ZLVLinuxMainQueue::mainQueue();
  Result result(calls);
  const auto before = descriptors();
  Library library(url);
  makeCalls(calls, result);
  library.endSession();
  const auto after = descriptors();

  const auto once = std::ranges::count(result.answers, 1);
  const double growth = result.mostKilobytes - result.settledKilobytes;
  std::printf("calls %d, answered exactly once %td\n", calls, once);
  for (const auto& [outcome, count] : result.outcomes) {
    std::printf("  %-24s %d\n", outcome.c_str(), count);
  }
  std::printf("resident after %d calls %.0f KB, at most %.0f KB more later\n", settled,
              result.settledKilobytes, growth);
  std::printf("descriptors before %td, after %td\n", before, after);
  return once == calls && growth <= allowedGrowth && before == after;
}

}  // namespace

int main(int argc, char** argv) try {
  const int calls = argc > 1 ? std::stoi(argv[1]) : 1'000'000;
  if (calls < 2 * settled) throw std::invalid_argument("too few calls to tell");
  return soak(calls) ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return EXIT_FAILURE;
}
