#include <chrono>
#include <cstdio>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

int main(int argc, char** argv) {
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Shop", .applicationVersion = "2.1"});
  auto window = platform.userInterface->keyWindowRootViewController();
  ZLVPlatform::install(std::move(platform));

  ZLVClient::initWithMerchantServerURL(argc > 1 ? argv[1] : "https://shop.example/pay", "M-1001",
                                       "shop://done", false);

  auto user = ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44");
  ZLVClient::linkAccountWithPaymentType("zolva", user, window, [](auto link, auto error) {
    if (error) {
      std::printf("The account is not linked: %s\n", error->localizedDescription().c_str());
      return;
    }
    // If there was a page it is gone. What the user did there, the server knows: enquire, then say.
    const auto id = link->accountID().description();
    ZLVClient::enquireAccountWithAccountID(id, [id](auto account, auto failure) {
      std::printf("Account %s: %s\n", id.c_str(),
                  failure ? failure->localizedDescription().c_str()
                          : account->accountStatus().description().c_str());
    });
  });

  // Completions run in here, on this thread, until the last call and its report are through.
  ZLVLinuxMainQueue::mainQueue()->runUntilIdle(std::chrono::minutes(15));
}
