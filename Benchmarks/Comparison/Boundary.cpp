#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <poll.h>

#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>

#include "Benchmarks/Comparison/Contender.h"
#include "Benchmarks/Support/Accounts.h"

namespace {

void check(zlv_result result) {
  if (result != ZLV_OK) throw std::runtime_error(zlv_last_fault());
}

/// The same call as the client's, made by a host in C. What such a host does with the text is not
/// the boundary's: one record stands for all.
class Boundary final : public Contender {
 public:
  void start(const std::string& server) override {
    if (!std::exchange(isInstalled_, true)) install(server);
    check(zlv_enquire("acc-1", accept, this));
  }
  void run() override {
    pollfd event{zlv_main_queue_descriptor(), POLLIN, 0};
    for (isStopped_ = false; !isStopped_;) {
      poll(&event, 1, -1);
      check(zlv_main_queue_drain());
    }
  }
  void stop() override { isStopped_ = true; }

 private:
  static void install(const std::string& server) {
    const auto analytics = server + '/';
    zlv_platform platform{};
    platform.size = sizeof platform;
    platform.application_name = "Benchmark";
    platform.application_version = "1";
    platform.analytics_root_url = analytics.c_str();
    check(zlv_install(&platform));
    check(zlv_configure(server.c_str(), "M-1", "app://done", 0));
  }

  static void accept(void* context, const char* record, const char* error) {
    if (error != nullptr || std::strstr(record, "\"account_status\":\"ENABLED\"") == nullptr) {
      std::fprintf(stderr, "another account: %s\n", error);
      std::abort();
    }
    auto& self = *static_cast<Boundary*>(context);
    self.done(self.record_);
  }

  const Record record_ = recordOf(accountDocument(fewPaymentOptions));
  bool isInstalled_ = false;
  bool isStopped_ = false;
};

}  // namespace

std::unique_ptr<Contender> makeBoundary() { return std::make_unique<Boundary>(); }
