#pragma once

#include <memory>
#include <vector>

#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>

/// The user interface as the host's functions have it.
class ZLVHostUserInterface final : public ZLVUserInterface {
 public:
  explicit ZLVHostUserInterface(const ZLVHost& host) : host_(host) {}

  /// A likeness of the way through the host's views, made for one walk over it and kept until the
  /// next: its controllers hold nothing of the host's.
  [[nodiscard]] std::shared_ptr<ZLVViewController> keyWindowRootViewController() override;
  [[nodiscard]] std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override;
  bool openURL(const ZLVURL& url) override;

  /// A page on the screen.
  struct Page;

 private:
  class Browser;

  /// The way from the host's root view to where the walk ends.
  [[nodiscard]] std::shared_ptr<ZLVViewController> likenessOfViews() const;
  /// The page that was shown last and is still there, or a null pointer.
  std::shared_ptr<Page> lastPage();

  const ZLVHost& host_;
  std::vector<zlv_page*> shown_;  // the last one on top; some may be gone
  std::shared_ptr<ZLVViewController> likeness_;
};

/// A handle for a controller to show pages over, which it keeps.
zlv_view* ZLVAddView(std::shared_ptr<ZLVViewController> view);

/// The controller behind a handle; a null pointer for NULL.
std::shared_ptr<ZLVViewController> ZLVViewOf(zlv_view* view);
