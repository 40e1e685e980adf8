#include <exception>
#include <utility>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h>
#include <ZolvaCheckoutKit/Core/Helpers/ZLVDeviceHelper.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>

std::shared_ptr<ZLVWebViewController> ZLVWebViewController::initWithURL(const ZLVURL& url,
                                                                        Callback callback) {
  auto browser = browserWithURL(url);
  if (browser == nullptr) return nullptr;
  std::shared_ptr<ZLVWebViewController> controller(new ZLVWebViewController(std::move(browser)));
  controller->setCallback(std::move(callback));
  return controller;
}

ZLVWebViewController::ZLVWebViewController(std::unique_ptr<ZLVBrowser> browser)
    : ZLVExactClassBase(ZLVExactClass::WebViewController),
      ZLVBrowserViewController(std::move(browser)) {}

ZLVWebViewController::~ZLVWebViewController() {
  try {
    if (!callback_) throw ZLVProgrammingFault("ZLVWebViewController: destroyed without a callback");
    callback_();
  } catch (...) {
    // A destructor cannot throw; the host's run loop gets the exception as from any completion.
    ZLVPlatform::installed().mainQueue->dispatch(
        [thrown = std::current_exception()] { std::rethrow_exception(thrown); });
  }
}

void ZLVWebViewController::viewDidLoad() {
  ZLVBrowserViewController::viewDidLoad();
  constexpr int firstVersionWithStyles = 11;
  if (ZLVDeviceHelper::isOSVersionAtLeast(firstVersionWithStyles)) {
    setDismissButtonStyle(ZLVDismissButtonStyle::Close);
  }
}
