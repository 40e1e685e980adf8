#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h>
#include <ZolvaCheckoutKit/Core/Checkout/ZLVCheckoutProcessor.h>
#include <ZolvaCheckoutKit/Core/Network/ZLVNetwork.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVClient.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

namespace {

/// One call to the merchant server.
struct Operation {
  std::string_view name;
  std::string_view pathFormat;
  ZLVHTTPMethod method;
  std::string_view errorEvent;
};

constexpr Operation linkAccount{"linkAccountWithPaymentType", "/v2/pay/account/", ZLVHTTPMethodPost,
                                ZLVEvent::linkAccountError};
constexpr Operation enquireAccount{"enquireAccountWithAccountID", "/v2/pay/account/%@",
                                   ZLVHTTPMethodGet, ZLVEvent::enquireAccountError};
constexpr Operation disableAccount{"disableAccountWithAccountID", "/v2/pay/account/%@/unbind",
                                   ZLVHTTPMethodPost, ZLVEvent::unlinkAccountError};
constexpr Operation createTransaction{"createTransactionWithPaymentType", "/v2/charge",
                                      ZLVHTTPMethodPost, ZLVEvent::createTransactionError};

constexpr std::string_view paymentTypeKey = "payment_type";

/// `value` (an optional or a pointer), without which the call cannot be made.
template <class Value>
auto& required(Value& value, std::string_view what, const Operation& operation) {
  if (value) return *value;
  throw ZLVProgrammingFault(ZLVStringWithFormat("%@: no %@", {operation.name, what}));
}

void requirePlatform(std::string_view call) {
  if (ZLVPlatform::isInstalled()) return;
  throw ZLVProgrammingFault(ZLVStringWithFormat(
      "%@: no platform is installed (call ZLVPlatform::install first)", {call}));
}

/// What every call to a server needs; a fault names the operation that the host called.
void requireReadiness(std::string_view call) {
  requirePlatform(call);
  ZLVAnalyticsTracker::shared().requireEvents(call);
}

/// The record that the answer is read into. One that does not fit is a fault, and an error for the
/// completion, which the fault is about to unwind.
template <class Record>
std::shared_ptr<Record> mapped(const ZLVValue& answer, ZLVCompletion& pending) {
  try {
    return Record::initWithDictionary(answer);
  } catch (const ZLVProgrammingFault& fault) {
    pending.failWhenLetGo(ZLVJSONSerialization::misfitError(fault.what()));
    throw;
  }
}

/// What becomes of a dictionary that the server has answered.
using Accept = ZLVOnce<void(const ZLVValue& answer, ZLVCompletion pending)>;

/// Whether the answer may be a page to show.
enum class MayShowPage : bool { No, Yes };

/// Sends the call. A dictionary that comes back goes to `accept`; an error, or an answer of another
/// kind, completes.
void perform(const Operation& operation, std::string_view accountID, ZLVValue parameters,
             MayShowPage mayShowPage, ZLVCompletion::Handler handler, Accept accept) {
  requireReadiness(operation.name);
  const auto& baseURL =
      required(ZLVVendor::shared().merchantSeverURL(),
               "merchant server URL (give one to initWithMerchantServerURL)", operation);
  const auto service = ZLVNetworkService::initWithBaseURL(
      baseURL, ZLVStringWithFormat(operation.pathFormat, {accountID}), operation.method,
      std::move(parameters), ZLVServiceTypeMerchant);
  auto& network = ZLVNetwork::shared();
  // Queued before the answer can be.
  if (mayShowPage == MayShowPage::Yes) {
    ZLVPlatform::installed().mainQueue->dispatch(
        [] { ZLVPlatform::installed().userInterface->prepareBrowser(); });
  }

  // Nothing above may have answered: what throws there is for the caller alone.
  ZLVCompletion pending(std::move(handler), operation.errorEvent);
  network.request(service, [accept = std::move(accept), pending = std::move(pending)](
                               const ZLVValue& answer, std::optional<ZLVError> error) mutable {
    if (!error && answer.dictionary() == nullptr) error = ZLVJSONSerialization::notAnObjectError();
    if (error) return std::move(pending).fail(*std::move(error));
    std::move(accept)(answer, std::move(pending));
  });
}

/// A call without a page.
template <class Record>
void performWithoutPage(const Operation& operation, const ZLVClient::Text& accountID,
                        std::string_view successEvent, ZLVCompletionHandler<Record> handler) {
  perform(operation, required(accountID, "account id", operation), {}, MayShowPage::No,
          ZLVCompletionOf<Record>::untyped(std::move(handler)),
          [successEvent](const ZLVValue& answer, ZLVCompletion pending) {
            ZLVAnalyticsTracker::shared().trackEventName(successEvent);
            auto record = mapped<Record>(answer, pending);
            std::move(pending).succeed(std::move(record));
          });
}

}  // namespace

void ZLVClient::initWithMerchantServerURL(Text merchantServerURL, Text merchantId, Text callbackUrl,
                                          bool isLoggingEnabled) {
  auto& vendor = ZLVVendor::shared();
  vendor.setMerchantSeverURL(std::move(merchantServerURL));
  vendor.setCallbackUrl(std::move(callbackUrl));
  vendor.setIsLoggingEnabled(isLoggingEnabled);
  vendor.setMerchantId(merchantId);
  requireReadiness("initWithMerchantServerURL");
  ZLVAnalyticsTracker::shared().setIdentity(merchantId);
}

void ZLVClient::linkAccountWithPaymentType(Text paymentType,
                                           std::shared_ptr<ZLVPartnerDetails> zolvaPartnerDetails,
                                           std::shared_ptr<ZLVViewController> viewController,
                                           ZLVCompletionHandler<ZLVLinkAccountResult> completion) {
  ZLVDictionary body{
      {std::string(paymentTypeKey), required(paymentType, "payment type", linkAccount)}};
  if (zolvaPartnerDetails != nullptr) body.merge(zolvaPartnerDetails->dictionaryValue());

  using Completion = ZLVCompletionOf<ZLVLinkAccountResult>;
  const auto mayShowPage = MayShowPage(viewController != nullptr);
  perform(
      linkAccount, {}, std::move(body), mayShowPage, Completion::untyped(std::move(completion)),
      [viewController = std::move(viewController)](const ZLVValue& answer, ZLVCompletion pending) {
        auto response = mapped<ZLVLinkAccountResponse>(answer, pending);
        ZLVCheckoutProcessor::processAccountLinkingWithResponse(std::move(response), viewController,
                                                                Completion(std::move(pending)));
      });
}

void ZLVClient::enquireAccountWithAccountID(Text accountID,
                                            ZLVCompletionHandler<ZLVAccountInfo> completion) {
  performWithoutPage(enquireAccount, accountID, ZLVEvent::enquireAccountSuccess,
                     std::move(completion));
}

void ZLVClient::disableAccountWithAccountID(
    Text accountID, ZLVCompletionHandler<ZLVDisableAccountResult> completion) {
  performWithoutPage(disableAccount, accountID, ZLVEvent::unlinkAccountSuccess,
                     std::move(completion));
}

void ZLVClient::createTransactionWithPaymentType(
    Text paymentType, std::shared_ptr<ZLVViewController> viewController,
    std::shared_ptr<ZLVZolvaDetails> zolvaDetails,
    std::shared_ptr<ZLVTransactionDetails> transactionDetails,
    std::shared_ptr<ZLVCustomerDetails> customerDetails, ZLVRecords<ZLVItemDetails> itemDetails,
    ZLVCompletionHandler<ZLVTransactionResult> completion) {
  constexpr const auto& call = createTransaction;
  ZLVDictionary body{
      {std::string(paymentTypeKey), required(paymentType, "payment type", call)},
      {"zolva", required(zolvaDetails, "wallet details", call).dictionaryValue()},
      {"transaction_details",
       required(transactionDetails, "transaction details", call).dictionaryValue()},
      {"customer_details", required(customerDetails, "customer details", call).dictionaryValue()}};
  if (itemDetails) {
    ZLVArray items;
    for (const auto& item : *itemDetails) {
      items.emplace_back(required(item, "item", call).dictionaryValue());
    }
    body.set("item_details", std::move(items));
  }

  using Completion = ZLVCompletionOf<ZLVTransactionResult>;
  const auto mayShowPage = MayShowPage(viewController != nullptr);
  perform(
      call, {}, std::move(body), mayShowPage, Completion::untyped(std::move(completion)),
      [viewController = std::move(viewController)](const ZLVValue& answer, ZLVCompletion pending) {
        auto response = mapped<ZLVTransactionResponse>(answer, pending);
        ZLVCheckoutProcessor::processCreateTransactionWithResponse(
            std::move(response), viewController, Completion(std::move(pending)));
      });
}

void ZLVClient::handleCallbackUrl(const ZLVURL& url) {
  const auto& callbackUrl = ZLVVendor::shared().callbackUrl();
  if (!callbackUrl || callbackUrl->empty()) return;
  if (url.absoluteString().find(*callbackUrl) == std::string::npos) return;

  // Exact classes: a host's subclass of either is its own affair.
  const auto isNavigation = [](const ZLVViewController& controller) {
    return controller.exactClass() == ZLVExactClass::NavigationController;
  };
  requirePlatform("handleCallbackUrl");
  auto current = ZLVPlatform::installed().userInterface->keyWindowRootViewController();
  while (current != nullptr && (isNavigation(*current) || current->presentedViewController())) {
    if (!isNavigation(*current)) {
      current = current->presentedViewController();
    } else if (current->childViewControllers().empty()) {
      current = nullptr;
    } else {
      current = current->childViewControllers().back();
    }
  }
  if (current != nullptr && current->exactClass() == ZLVExactClass::WebViewController) {
    current->dismissViewControllerAnimated(true);
  }
}
