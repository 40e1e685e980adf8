#include <stdexcept>
#include <utility>
#include <variant>

#include <ZolvaCheckoutKit/Core/Network/ZLVNetwork.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZLVClient.h>

#include "Benchmarks/Comparison/Contender.h"

namespace {

class Library : public Contender {
 public:
  void start(const std::string& server) override {
    ZLVNetwork::shared().request(
        ZLVNetworkService::initWithBaseURL(server, accountPath, ZLVHTTPMethodGet, {},
                                           ZLVServiceTypeMerchant),
        [this](const ZLVValue& answer, const std::optional<ZLVError>& error) {
          if (error) throw std::runtime_error(error->debugDescription());
          done(ZLVAccountInfo::initWithDictionary(answer));
        });
  }
  void run() override { queue_->run(); }
  void stop() override { queue_->stop(); }

 private:
  std::shared_ptr<ZLVLinuxMainQueue> queue_ = ZLVLinuxMainQueue::mainQueue();
};

class Client final : public Library {
 public:
  /// To the server that is configured.
  void start(const std::string& /*server*/) override {
    ZLVClient::enquireAccountWithAccountID(
        "acc-1", [this](const Record& record, const std::optional<ZLVError>& error) {
          if (error) throw std::runtime_error(error->debugDescription());
          done(record);
        });
  }
};

}  // namespace

std::unique_ptr<Contender> makeLibrary() { return std::make_unique<Library>(); }
std::unique_ptr<Contender> makeClient() { return std::make_unique<Client>(); }

ZLVPlatform libraryPlatform(const std::string& server, std::optional<std::string> CAFile) {
  return ZLVLinuxPlatform::platformWithOptions({.applicationName = "Benchmark",
                                                .applicationVersion = "1",
                                                .CAFile = std::move(CAFile),
                                                .analyticsRootURL = server + '/'});
}

void installLibrary(ZLVPlatform platform, const std::string& server) {
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(server, "M-1", "app://done", false);
}

ZLVValue decoded(std::string_view body) {
  return std::get<ZLVValue>(ZLVJSONSerialization::JSONObjectWithData(body));
}
