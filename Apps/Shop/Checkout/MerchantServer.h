#pragma once

#include <memory>
#include <string>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// What the shop asks its own server beside the library's calls. Any HTTP client would do; the
/// platform's session trusts the same certificates. Main thread only.
class MerchantServer {
 public:
  /// Asks what has become of the charge for an order. Completes on the main thread; with the
  /// server's status code when that is no success, so with 404 when nothing was charged so far.
  void order(const std::string& id, ZLVCompletionHandler<ZLVTransactionResult> completion);

 private:
  std::unique_ptr<ZLVURLSession> session_;
};
