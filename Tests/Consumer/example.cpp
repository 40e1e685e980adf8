#include <cstdio>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

int main(int argc, char** argv) {
  auto queue = ZLVLinuxMainQueue::mainQueue();
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Shop", .applicationVersion = "2.1"});
  auto window = platform.userInterface->keyWindowRootViewController();
  ZLVPlatform::install(std::move(platform));

  ZLVClient::initWithMerchantServerURL(argc > 1 ? argv[1] : "https://shop.example/pay", "M-1001",
                                       "shop://done", false);

  auto user = ZLVPartnerDetails::initWithPhoneNumber("81234567890", "62");
  ZLVClient::linkAccountWithPaymentType("zolva", user, window, [queue](auto result, auto error) {
    if (error) {
      std::printf("The account is not linked: %s\n", error->localizedDescription().c_str());
    } else {
      std::printf("Account %s is linked.\n", result->accountID().description().c_str());
    }
    queue->stop();
  });

  queue->run();  // completions run in here, on this thread
}
