#pragma once

#include <atomic>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVOptionalText.h>

/// The library's configuration: one object for the whole process, filled by
/// `ZLVClient::initWithMerchantServerURL` and read by every operation at the moment it runs.
///
/// Write it once, on the main thread, before the first operation. The fields take no lock; only
/// the logging flag may be changed while calls are under way. A text that was never set is absent.
class ZLV_EXPORT ZLVVendor {
 public:
  /// A text or nothing.
  using Text = ZLVOptionalText;

  /// The one instance, made on the first call and kept until the process ends. Any thread.
  static ZLVVendor& shared();

  ZLVVendor(const ZLVVendor&) = delete;
  ZLVVendor& operator=(const ZLVVendor&) = delete;

  /// Base URL of the merchant's own server, such as "https://shop.example/pay": the paths of the
  /// calls are put behind it, with one "/" between. It is used as it is given, so it has to be a
  /// URL already, percent-encoded where that is needed, without query and fragment; otherwise calls
  /// fail with `NSURLErrorBadURL` or go elsewhere. The spelling of the name is the established one.
  [[nodiscard]] const Text& merchantSeverURL() const noexcept { return merchantSeverURL_; }
  void setMerchantSeverURL(Text value) { merchantSeverURL_ = std::move(value); }

  /// For the host's own use; the library neither sets nor reads it.
  [[nodiscard]] const Text& clientKey() const noexcept { return clientKey_; }
  void setClientKey(Text value) { clientKey_ = std::move(value); }

  /// Where the wallet returns the user to: an absolute URL that the system opens in the host's
  /// application, such as "shop://done". The server is told it as it is. Any URL that contains it,
  /// letter for letter, is taken for that return, so choose one that no other URL contains.
  [[nodiscard]] const Text& callbackUrl() const noexcept { return callbackUrl_; }
  void setCallbackUrl(Text value) { callbackUrl_ = std::move(value); }

  /// The merchant's identifier at the wallet: a text of the wallet's, which is also the merchant's
  /// identity and name in the analytics.
  [[nodiscard]] const Text& merchantId() const noexcept { return merchantId_; }
  void setMerchantId(Text value) { merchantId_ = std::move(value); }

  /// Whether requests to the merchant server and their answers are written to the system log.
  ///
  /// **The lines hold phone numbers, account ids and payment tokens in the clear.** Keep it off in
  /// production.
  [[nodiscard]] bool isLoggingEnabled() const noexcept {
    return isLoggingEnabled_.load(std::memory_order_relaxed);
  }
  void setIsLoggingEnabled(bool value) noexcept {
    isLoggingEnabled_.store(value, std::memory_order_relaxed);
  }

 private:
  ZLVVendor() = default;

  Text merchantSeverURL_;
  Text clientKey_;
  Text callbackUrl_;
  Text merchantId_;
  std::atomic<bool> isLoggingEnabled_{false};  // read on the session's thread
};
