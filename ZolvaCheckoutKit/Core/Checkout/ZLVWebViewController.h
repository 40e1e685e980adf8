#pragma once

#include <functional>
#include <memory>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVBrowserViewController.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

/// Shows a page of the wallet and tells when it is gone.
///
/// Its destruction is the only event: however the page went away, and also when it was never shown,
/// the callback runs once, on the thread that drops the last reference.
class ZLVWebViewController : public ZLVBrowserViewController, private virtual ZLVExactClassBase {
 public:
  using Callback = std::function<void()>;

  /// A controller that is not shown yet, or a null pointer when the platform's browser refuses the
  /// URL; the callback is let go uncalled then.
  static std::shared_ptr<ZLVWebViewController> initWithURL(const ZLVURL& url, Callback callback);

  /// Runs the callback, which is required. What the callback throws leaves through the main queue.
  ~ZLVWebViewController() override;

  [[nodiscard]] const Callback& callback() const noexcept { return callback_; }
  void setCallback(Callback callback) { callback_ = std::move(callback); }

  [[nodiscard]] ZLVExactClass exactClass() const noexcept override { return ownClass; }

 protected:
  explicit ZLVWebViewController(std::unique_ptr<ZLVBrowser> browser);

  void viewDidLoad() override;

 private:
  Callback callback_;
};
