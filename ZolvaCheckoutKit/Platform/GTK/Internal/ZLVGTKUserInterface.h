#pragma once

#include <functional>
#include <memory>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKBrowser.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>

/// The windows of a GTK application.
class ZLVGTKUserInterface final : public ZLVUserInterface {
 public:
  using URLOpener = std::function<bool(const ZLVURL& url)>;

  /// `openURL` may be empty, the system's handlers are used then.
  ZLVGTKUserInterface(std::shared_ptr<const ZLVGTKBrowser::Environment> environment,
                      URLOpener openURL);

  /// That of the active window, or of another one where the active one was not wrapped.
  [[nodiscard]] std::shared_ptr<ZLVViewController> keyWindowRootViewController() override;
  [[nodiscard]] std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override;
  bool openURL(const ZLVURL& url) override;
  void prepareBrowser() override { environment_->engine->prepare(); }

 private:
  std::shared_ptr<const ZLVGTKBrowser::Environment> environment_;
  URLOpener openURL_;
};
