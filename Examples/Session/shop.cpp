// A shop that goes to its own server with its own key or nowhere, and that waits no longer than its
// users do. It enquires one account after the other.
//
//     shop SERVER PIN CA-FILE ACCOUNT...

#include <chrono>
#include <cstdio>
#include <string>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "PinnedSession.h"
#include "TimedSession.h"

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fprintf(stderr, "usage: shop SERVER PIN CA-FILE ACCOUNT...\n");
    return 2;
  }
  const Pin pin{.baseURL = argv[1], .publicKeys = argv[2], .CAFile = argv[3]};
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Corner Coffee",
       .applicationVersion = "2.1",
       .analyticsRootURL = "http://127.0.0.1:1/"});  // nowhere: this shop is for a test

  auto make = std::move(platform.makeURLSession);
  platform.makeURLSession = [make, pin]() -> std::unique_ptr<ZLVURLSession> {
    return std::make_unique<TimedSession>(std::make_unique<PinnedSession>(make(), pin),
                                          std::chrono::seconds(2));
  };
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(pin.baseURL, "M-1001", "shop://done", false);

  for (int i = 4; i < argc; ++i) {
    ZLVClient::enquireAccountWithAccountID(argv[i], [](const auto& account, const auto& error) {
      if (account) {
        std::printf("account: %s\n", account->accountStatus().description().c_str());
      } else {
        std::printf("error %lld: %s%s\n", static_cast<long long>(error->code()),
                    error->localizedDescription().c_str(),
                    error->requestMayHaveTakenEffect() ? "" : " Nothing came of it.");
      }
    });
    ZLVLinuxMainQueue::mainQueue()->runUntilIdle(std::chrono::seconds(10));
  }
}
