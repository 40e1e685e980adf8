#pragma once

#include <string>
#include <string_view>

#include <Sandbox/AnalyticsCollector.h>
#include <Sandbox/Exchange.h>
#include <Sandbox/Merchant.h>

/// The pages that people see: the wallet's, where a link or a charge is approved, and an overview
/// of the sandbox. No lock, the caller sees to that.
class ZLVWalletPages {
 public:
  ZLVWalletPages(ZLVMerchant& merchant, const ZLVAnalyticsCollector& collector,
                 std::string merchantName)
      : merchant_(merchant), collector_(collector), merchantName_(std::move(merchantName)) {}

  /// The form to approve what the token stands for.
  ZLVSandboxAnswer show(const ZLVSandboxRequest& request, std::string_view token);
  /// Takes the form ("decision=confirm" or "decision=cancel") and sends the user back.
  ZLVSandboxAnswer decide(const ZLVSandboxRequest& request, std::string_view token);
  ZLVSandboxAnswer overview(const ZLVSandboxRequest& request, std::string_view);

 private:
  ZLVMerchant& merchant_;
  const ZLVAnalyticsCollector& collector_;
  std::string merchantName_;
};
