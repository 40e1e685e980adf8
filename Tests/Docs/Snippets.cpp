// What the README and the guides show, where no example has it: compiled, never run. The blocks
// there are quotations from here, which `check-blocks` compares.

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/Platform/ZLVFunctionLog.h>
#include <ZolvaCheckoutKit/Platform/ZLVRedactingLog.h>
#include <ZolvaCheckoutKit/Testing/ZLVSandboxPlatform.h>
#include <ZolvaCheckoutKit/ZLVAwait.h>
#include <ZolvaCheckoutKit/ZLVVersion.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

// What a host has of its own.
struct MyUserInterface : ZLVFakeUserInterface {};
struct MyMainQueue : ZLVFakeMainQueue {};
struct Order {};
struct Checkout {
  explicit Checkout(std::shared_ptr<ZLVViewController>) {}
  void linkWallet() {}
  std::string status;
};
struct Catalogue {
  std::string operator[](const char* text) const { return text; }
} catalogue;
struct Logger {
  void info(const char*, std::string_view) {}
} logger;
void show(const std::string&) {}
void askServerFor(const Order&) {}
void offerToPayAgain(const std::string&) {}

// README: another platform; the guide to backends
void installBackend() {
  // [backend]
  ZLVPlatform platform = ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "2.1"});
  platform.userInterface = std::make_shared<MyUserInterface>();  // your windows, your browser
  platform.mainQueue = std::make_shared<MyMainQueue>();          // your event loop
  ZLVPlatform::install(std::move(platform));
}

void translate(ZLVPlatform& platform) {
  platform.localizedText = [](const char* text) -> std::string {
    return catalogue[text];  // "%s" in it stands for a server's name; keep it
  };
}

void open(const std::string& text) {
  if (const auto url = ZLVURL::URLWithString(text)) ZLVClient::handleCallbackUrl(*url);
}

void answer(const std::optional<ZLVError>& error, const Order& order) {
  if (error->requestMayHaveTakenEffect()) return askServerFor(order);
  offerToPayAgain(error->localizedDescription());
}

void log(ZLVPlatform& platform) {
  // [redact]
  platform.systemLog = std::make_shared<ZLVRedactingLog>(platform.systemLog);
  // [function]
  platform.systemLog = std::make_shared<ZLVFunctionLog>(
      [](std::string_view line) { logger.info("checkout", line); });
}

ZLVPlatform platformForTests() {
  // clang-format off
  return ZLVLinuxPlatform::platformWithOptions(
    // [sandbox]
    // [collector]
    {.applicationVersion = "2.1", .analyticsRootURL = "http://127.0.0.1:8080/"}
  );
  // clang-format on
}

#if ZLV_VERSION_MAJOR == 0 && ZLV_VERSION_MINOR < 1
#error "The checkout needs ZolvaCheckoutKit 0.1 or later."
#endif

// README: coroutines
// NOLINTBEGIN(readability-static-accessed-through-instance): clang-tidy 14 knows no coroutines
ZLVDetached pay(ZLVCharge charge) {
  const auto result = co_await ZLVAwait::createTransaction(std::move(charge));
  if (!result) co_return show(result.error().localizedDescription());
  show(result->transactionStatus().description());
}
// NOLINTEND(readability-static-accessed-through-instance)

// README: errors
void runGuarded() {
  for (bool isIdle = false; !isIdle;) {
    try {
      isIdle = ZLVLinuxMainQueue::mainQueue()->runUntilIdle(std::chrono::minutes(15));
    } catch (const std::exception& fault) {
      std::fprintf(stderr, "checkout: %s\n", fault.what());
    }
  }
}

// README: testing
void testCheckout() {
  ZLVSandboxPlatform platform;
  ZLVSandboxPlatform::configure();
  Checkout checkout(platform.ui->root);  // yours
  checkout.linkWallet();
  platform.run();         // until a page is shown or nothing is left to do
  platform.decide(true);  // the user confirms
  platform.run();
  EXPECT_EQ(checkout.status, "ENABLED");
}
