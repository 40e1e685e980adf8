#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVBoundary.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVDocuments.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostUserInterface.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVClient.h>

namespace {

constexpr const char* abandoned =
    R"({"code":-999,"description":"The call ended before it was answered.",)"
    R"("domain":"NSURLErrorDomain","request_may_have_taken_effect":true,"user_info":{}})";
constexpr const char* withoutMemory =
    R"({"code":-1008,"description":"This machine has not enough memory for the call.",)"
    R"("domain":"NSURLErrorDomain","request_may_have_taken_effect":true,"user_info":{}})";

/// A host's completion, called once. One that the library has lost, because the host dropped its
/// blocks, is called when it goes.
class Completion {
 public:
  Completion(zlv_completion function, void* context) : function_(function), context_(context) {}
  Completion(const Completion&) = delete;
  Completion& operator=(const Completion&) = delete;
  ~Completion() {
    if (use()) call(nullptr, abandoned);
  }

  /// The right to call it, or to see to it that nobody does; true the first time.
  bool use() noexcept { return !isUsed_.exchange(true); }

  void answer(const ZLVMappable* record, const ZLVError* error) noexcept {
    if (!use()) return;
    std::string text;
    try {
      text = error != nullptr ? ZLVTextOfError(*error) : ZLVTextOfRecord(*record);
    } catch (const std::exception&) {
      return call(nullptr, withoutMemory);
    }
    if (error != nullptr) return call(nullptr, text.c_str());
    call(text.c_str(), nullptr);
  }

 private:
  void call(const char* record, const char* error) const noexcept {
    if (function_ != nullptr) function_(context_, record, error);
  }

  const zlv_completion function_;
  void* const context_;
  std::atomic<bool> isUsed_{false};
};

/// Starts an operation: where that fails the result tells, and nothing else does.
template <class Record, class Start>
zlv_result begin(zlv_completion function, void* context, Start start) noexcept {
  std::shared_ptr<Completion> completion;
  const auto result = ZLVResultOf([&] {
    completion = std::make_shared<Completion>(function, context);
    start(ZLVCompletionHandler<Record>([completion](auto record, auto error) {
      completion->answer(record.get(), error ? &*error : nullptr);
    }));
  });
  // What failed when everything was on its way already may have been answered in the meantime.
  return result != ZLV_OK && completion != nullptr && !completion->use() ? ZLV_OK : result;
}

}  // namespace

zlv_result zlv_configure(const char* merchant_server_url, const char* merchant_id,
                         const char* callback_url, int32_t is_logging_enabled) {
  return ZLVResultOf([&] {
    ZLVClient::initWithMerchantServerURL(merchant_server_url, merchant_id, callback_url,
                                         is_logging_enabled != 0);
  });
}

zlv_result zlv_link(const char* payment_type, const char* partner_details, zlv_view* view,
                    zlv_completion completion, void* context) {
  return begin<ZLVLinkAccountResult>(completion, context, [&](auto handler) {
    ZLVClient::linkAccountWithPaymentType(payment_type, ZLVPartnerDetailsOfText(partner_details),
                                          ZLVViewOf(view), std::move(handler));
  });
}

zlv_result zlv_enquire(const char* account_id, zlv_completion completion, void* context) {
  return begin<ZLVAccountInfo>(completion, context, [&](auto handler) {
    ZLVClient::enquireAccountWithAccountID(account_id, std::move(handler));
  });
}

zlv_result zlv_disable(const char* account_id, zlv_completion completion, void* context) {
  return begin<ZLVDisableAccountResult>(completion, context, [&](auto handler) {
    ZLVClient::disableAccountWithAccountID(account_id, std::move(handler));
  });
}

zlv_result zlv_charge(const char* details, zlv_view* view, zlv_completion completion,
                      void* context) {
  return begin<ZLVTransactionResult>(completion, context, [&](auto handler) {
    auto charge = ZLVChargeOfText(details);
    ZLVClient::createTransactionWithPaymentType(
        std::move(charge.paymentType), ZLVViewOf(view), std::move(charge.zolva),
        std::move(charge.transaction), std::move(charge.customer), std::move(charge.items),
        std::move(handler));
  });
}

zlv_result zlv_handle_callback_url(const char* url) {
  return ZLVResultOf([&] {
    constexpr const char* call = "zlv_handle_callback_url";
    const auto parsed = ZLVURL::URLWithString(ZLVRequired(url, call, "URL"));
    if (!ZLVPlatform::isInstalled()) ZLVThrowFault(call, "no platform is installed");
    if (parsed) ZLVClient::handleCallbackUrl(*parsed);
  });
}
