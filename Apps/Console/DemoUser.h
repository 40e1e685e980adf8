#pragma once

#include <functional>
#include <memory>
#include <string>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// A user interface with the user built in: whoever is shown a wallet page fetches it over HTTP,
/// presses Confirm, and comes back through the callback URL that the wallet redirects to.
class DemoUser : public ZLVUserInterface {
 public:
  using Tell = std::function<void(const std::string& step)>;

  /// `tell` is called on the main thread with what the user does.
  DemoUser(const ZLVPlatform& platform, Tell tell);

  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override { return root_; }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override;
  bool openURL(const ZLVURL& url) override;

 private:
  class Browser;
  using Answered = std::function<void(const ZLVURLAnswer& answer)>;

  void visit(const std::string& url);
  void confirm(const std::string& url, const std::string& page);
  /// Sends a request and answers on the main thread.
  void send(ZLVURLRequest request, Answered answered);

  std::shared_ptr<ZLVMainQueue> queue_;
  std::unique_ptr<ZLVURLSession> session_;
  std::shared_ptr<ZLVViewController> root_ = std::make_shared<ZLVViewController>();
  Tell tell_;
};
