#include <utility>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVBrowserViewController.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

ZLVBrowserViewController::ZLVBrowserViewController(std::unique_ptr<ZLVBrowser> browser)
    : browser_(std::move(browser)) {}

ZLVBrowserViewController::~ZLVBrowserViewController() = default;

void ZLVBrowserViewController::setDismissButtonStyle(ZLVDismissButtonStyle style) {
  browser_->setDismissButtonStyle(style);
}

std::unique_ptr<ZLVBrowser> ZLVBrowserViewController::browserWithURL(const ZLVURL& url) {
  if (url.scheme() != "http" && url.scheme() != "https") return nullptr;
  return ZLVPlatform::installed().userInterface->makeBrowser(url);
}

void ZLVBrowserViewController::viewWillAppear(bool animated) {
  browser_->show(*presentingViewController(), animated, [weak = weak_from_this()] {
    const auto self = weak.lock();
    // Asked of the presenter, because the browser would dismiss only what stands above it.
    if (self && self->presentingViewController() != nullptr) {
      self->presentingViewController()->dismissViewControllerAnimated(false);
    }
  });
}

void ZLVBrowserViewController::viewWillDisappear(bool animated) { browser_->hide(animated); }
