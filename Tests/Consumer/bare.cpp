// A host built without run-time type information and exceptions, and with view controllers, user
// interface and session of its own: says nothing and ends with 0 when all is as it should be.
#include <cstdio>
#include <cstdlib>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#if defined(__cpp_rtti) || defined(__cpp_exceptions)
#error "This host is to be built with -fno-rtti -fno-exceptions."
#endif

namespace {

using namespace std::chrono_literals;

const auto queue = ZLVLinuxMainQueue::mainQueue();

/// Answers every call with the page to activate an account.
struct Session : ZLVURLSession {
  void dataTask(ZLVURLRequest, CompletionHandler handler) override {
    queue->dispatch([handler = std::move(handler)]() mutable {
      std::move(handler)({.data = R"({"status_code": "201", "actions": [
          {"name": "activation-deeplink", "url": "https://wallet.example/"}]})",
                          .statusCode = 201,
                          .error = {}});
    });
  }
};

struct Browser : ZLVBrowser {
  void setDismissButtonStyle(ZLVDismissButtonStyle) override {}
  void show(ZLVViewController&, bool, ZLVOnce<void()>) override {}
  void hide(bool) override {}
};

struct UserInterface : ZLVUserInterface {
  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override { return root; }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL&) override {
    return std::make_unique<Browser>();
  }
  bool openURL(const ZLVURL&) override { return false; }

  std::shared_ptr<ZLVViewController> root;
};

struct Page : ZLVViewController {};
struct Stack : ZLVNavigationController {};

void expect(bool isTrue, const char* what) {
  if (isTrue) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::exit(1);
}

}  // namespace

int main() {
  const auto interface = std::make_shared<UserInterface>();
  auto platform = ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "1"});
  platform.makeURLSession = [] { return std::make_unique<Session>(); };
  platform.userInterface = interface;
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL("https://shop.example", "M-1", "shop://done", false);

  int completed = 0;
  const auto page = std::make_shared<Page>();
  const auto isClosedByCallback = [&](const std::shared_ptr<ZLVViewController>& root) {
    interface->root = root;
    if (page->presentedViewController() == nullptr) {
      const auto user = ZLVPartnerDetails::initWithPhoneNumber("5550123", "1");
      ZLVClient::linkAccountWithPaymentType("zolva", user, page,
                                            [&](auto, auto error) { completed += !error; });
      while (page->presentedViewController() == nullptr) queue->drain();
      expect(!queue->runUntilIdle(0ms), "the call of a page that is shown is under way");
    }
    ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString("shop://done?result=success"));
    return page->presentedViewController() == nullptr;
  };

  expect(isClosedByCallback(page), "a page over the host's own controller is found");
  const auto stack = std::make_shared<ZLVNavigationController>();
  stack->pushViewController(page);
  expect(isClosedByCallback(stack), "a page over the top of a stack is found");
  stack->popViewController();
  const auto ownStack = std::make_shared<Stack>();
  ownStack->pushViewController(page);
  expect(!isClosedByCallback(ownStack), "a subclass is not taken for the library's own class");
  expect(isClosedByCallback(page), "the page that was left open is still the library's");
  expect(queue->runUntilIdle(60s) && completed == 3, "every call was answered");
}
