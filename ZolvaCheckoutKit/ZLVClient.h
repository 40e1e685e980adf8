#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <ZolvaCheckoutKit/ZLVAccountRecords.h>
#include <ZolvaCheckoutKit/ZLVEnquiryRecords.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVOptionalText.h>
#include <ZolvaCheckoutKit/ZLVRequestRecords.h>
#include <ZolvaCheckoutKit/ZLVTransactionRecords.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

class ZLVViewController;

/// Receives the one answer of an operation, on the main thread: a record and no error, or no
/// record and an error. May be empty.
template <class Record>
using ZLVCompletionHandler =
    std::function<void(std::shared_ptr<Record> record, std::optional<ZLVError> error)>;

/// The library's front door.
///
/// Install a platform, configure once, then call the operations:
///
/// ```cpp
/// ZLVClient::initWithMerchantServerURL("https://shop.example/pay", "M-1", "shop://done", false);
/// ZLVClient::enquireAccountWithAccountID("acc-1", [](auto account, auto error) {
///   if (error) return show(error->localizedDescription());
///   show(account->accountStatus().description());
/// });
/// ```
///
/// Every operation returns at once and answers exactly once, later, through its completion. The
/// operations may be called on any thread. Each throws `ZLVProgrammingFault` on the caller's
/// thread, before anything is sent, when no platform is installed, when the library is not
/// configured or when a value that it cannot do without is missing.
class ZLV_EXPORT ZLVClient {
 public:
  /// A text or nothing.
  using Text = ZLVOptionalText;

  ZLVClient() = delete;

  /// Writes the shared `ZLVVendor` and announces the merchant to the analytics service. Makes no
  /// object. Main thread, before any other operation; calling it again replaces all four values.
  /// Throws `ZLVProgrammingFault` when there is no merchant id; the values are stored all the same.
  /// What each value has to be, `ZLVVendor` tells at the field of its name.
  static void initWithMerchantServerURL(Text merchantServerURL, Text merchantId, Text callbackUrl,
                                        bool isLoggingEnabled);

  /// Links a wallet account. When the server asks for an activation, its page is shown over
  /// `viewController` and the completion runs once the page is gone, whatever the user did there:
  /// enquire the account to learn the outcome. The record is a `ZLVLinkAccountResponse`.
  /// `viewController` is kept until the answer is there; with none, or where something is presented
  /// already, no page is shown and the completion runs at once.
  static void linkAccountWithPaymentType(Text paymentType,
                                         std::shared_ptr<ZLVPartnerDetails> zolvaPartnerDetails,
                                         std::shared_ptr<ZLVViewController> viewController,
                                         ZLVCompletionHandler<ZLVLinkAccountResult> completion);

  /// Fetches a linked account with its payment options.
  ///
  /// `accountID` becomes a segment of the URL's path as it is given. An id that a server's answer
  /// named is passed on unchanged. One from anywhere else, such as a link or a form, has to be
  /// percent-encoded first, all but letters, digits and "-._~", and must not be "." or "..": with
  /// a "/", "?" or "#" in it the call would be another one than you meant, and with a space or a
  /// line break it fails with `NSURLErrorBadURL`.
  static void enquireAccountWithAccountID(Text accountID,
                                          ZLVCompletionHandler<ZLVAccountInfo> completion);

  /// Unlinks an account. `accountID` is as in `enquireAccountWithAccountID`.
  static void disableAccountWithAccountID(Text accountID,
                                          ZLVCompletionHandler<ZLVDisableAccountResult> completion);

  /// Creates a charge paid from a linked account. A verification page is handled as an activation
  /// is in `linkAccountWithPaymentType`. The record is a `ZLVTransactionResponse`. The request is
  /// sent once: after an error whose `requestMayHaveTakenEffect()` is true ask your server whether
  /// the charge was made before you repeat it. `itemDetails` may be left out; everything else is
  /// required.
  static void createTransactionWithPaymentType(
      Text paymentType, std::shared_ptr<ZLVViewController> viewController,
      std::shared_ptr<ZLVZolvaDetails> zolvaDetails,
      std::shared_ptr<ZLVTransactionDetails> transactionDetails,
      std::shared_ptr<ZLVCustomerDetails> customerDetails, ZLVRecords<ZLVItemDetails> itemDetails,
      ZLVCompletionHandler<ZLVTransactionResult> completion);

  /// Call it with every URL that the application is asked to open, on the main thread. A URL that
  /// contains the configured callback URL closes the page that is shown; any other is ignored.
  ///
  /// The page is looked for from the root view controller of the window that gets what is typed:
  /// through what is presented, and from a `ZLVNavigationController` to the top of its stack. One
  /// over the navigation controller itself, or over a child of another container (a subclass of
  /// `ZLVNavigationController` included), is not found: present over the top of the stack.
  static void handleCallbackUrl(const ZLVURL& url);
};
