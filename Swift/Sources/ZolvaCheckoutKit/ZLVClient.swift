import Foundation

/// Payments with a Zolva wallet, through the merchant's own server.
///
/// Configure once, then call the operations. Each comes twice: with `async`, and with a completion.
/// Either way it is answered exactly once, on the main actor, whatever goes wrong, and never before
/// the call has returned.
///
/// ```swift
/// ZLVClient.initWithMerchantServerURL(
///   "https://shop.example/pay", merchantId: "M-1001", callbackUrl: "shop://done")
///
/// let user = ZLVPartnerDetails(phoneNumber: "7700900123", countryCode: "44")
/// let link = try await ZLVClient.linkAccount(
///   withPaymentType: "zolva", zolvaPartnerDetails: user, viewController: self)
/// ```
///
/// **Cancelling** a task that awaits an operation detaches its caller, with `CancellationError`, and
/// nothing else: what was sent stays sent and may take effect, nothing is sent again, and a page that
/// is shown stays. A task that is cancelled before it calls sends nothing.
///
/// An operation that is called before the configuration, or with a number that is not finite, is a
/// mistake in the program and ends it.
public enum ZLVClient {
  /// What a completion receives.
  public typealias Completion<Record> = @MainActor @Sendable (Result<Record, ZLVError>) -> Void

  /// Configures the library and announces the merchant to the analytics service; calling it again
  /// replaces all four values. Makes no object, in spite of its name.
  ///
  /// - Parameters:
  ///   - url: The merchant's own server, which the operations are sent below.
  ///   - callbackUrl: What the wallet opens the application by in the end: "shop://done".
  ///   - isLoggingEnabled: Logs calls to the merchant's server, **with phone numbers, account ids
  ///     and payment tokens in the clear**.
  @MainActor public static func initWithMerchantServerURL(
    _ url: String, merchantId: String, callbackUrl: String, isLoggingEnabled: Bool = false
  ) {
    if !ZLVPlatform.isInstalled { ZLVPlatform.install(ZLVPlatform()) }
    Core.configure(
      merchantServerURL: url, merchantId: merchantId, callbackUrl: callbackUrl,
      isLoggingEnabled: isLoggingEnabled)
  }

  // MARK: Accounts

  /// Links a wallet account. Where the server asks for an activation its page is shown over
  /// `viewController`, and the answer comes once the page is gone, whatever the user did there:
  /// enquire the account to learn the outcome. Where no page can be shown there it comes at once.
  /// Any thread.
  public static func linkAccount(
    withPaymentType paymentType: String, zolvaPartnerDetails: ZLVPartnerDetails?,
    viewController: ZLVViewController?,
    completion: @escaping Completion<ZLVLinkAccountResult>
  ) {
    onMain {
      Core.link(
        paymentType: paymentType, partnerDetails: zolvaPartnerDetails?.json,
        presenter: viewController.map(Presenter.init), answer: answer(completion))
    }
  }

  /// Fetches a linked account with its ways to pay. The id goes into the URL as it is. Any thread.
  public static func enquireAccount(
    withAccountID accountID: String, completion: @escaping Completion<ZLVAccountInfo>
  ) {
    Core.enquire(accountID: accountID, answer: answer(completion))
  }

  /// Unlinks an account. The id goes into the URL as it is. Any thread.
  public static func disableAccount(
    withAccountID accountID: String, completion: @escaping Completion<ZLVDisableAccountResult>
  ) {
    Core.disable(accountID: accountID, answer: answer(completion))
  }

  // MARK: Charges

  /// Creates a charge that a linked account pays. The request goes out once. A verification page is
  /// handled as `linkAccount` handles an activation. After an error whose
  /// `requestMayHaveTakenEffect` is true, ask your server whether the charge was made before you try
  /// again. Any thread.
  public static func createTransaction(
    withPaymentType paymentType: String, viewController: ZLVViewController?,
    zolvaDetails: ZLVZolvaDetails, transactionDetails: ZLVTransactionDetails,
    customerDetails: ZLVCustomerDetails, itemDetails: [ZLVItemDetails]?,
    completion: @escaping Completion<ZLVTransactionResult>
  ) {
    var details = [
      "payment_type": ZLVJSON.text(paymentType), "zolva": zolvaDetails.json,
      "transaction_details": transactionDetails.json, "customer_details": customerDetails.json,
    ]
    if let itemDetails { details["item_details"] = .array(itemDetails.map(\.json)) }
    let document = ZLVJSON.object(details)
    onMain {
      Core.charge(
        details: document, presenter: viewController.map(Presenter.init),
        answer: answer(completion))
    }
  }

  // MARK: The way back

  /// Takes every URL that the application is asked to open. One that contains the configured callback
  /// URL closes the page, so that its call completes; any other is ignored.
  @MainActor public static func handleCallbackUrl(_ url: URL) {
    Core.handleCallbackUrl(url.absoluteString)
  }

  private static func answer<Record: ZLVRecord>(
    _ completion: @escaping Completion<Record>
  ) -> Core.Answer {
    { completion($0.map(Record.init(json:))) }
  }
}
