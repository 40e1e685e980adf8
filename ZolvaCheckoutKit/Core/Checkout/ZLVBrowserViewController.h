#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>
#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

/// A view controller that shows one web page with a button to close it.
class ZLVBrowserViewController : public ZLVViewController {
 public:
  ~ZLVBrowserViewController() override;

  void setDismissButtonStyle(ZLVDismissButtonStyle style);

 protected:
  explicit ZLVBrowserViewController(std::unique_ptr<ZLVBrowser> browser);

  /// The installed platform's browser for the URL; null for anything but http and https.
  static std::unique_ptr<ZLVBrowser> browserWithURL(const ZLVURL& url);

  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;

 private:
  std::unique_ptr<ZLVBrowser> browser_;
};
