import Foundation
import ZolvaCheckoutKit

/// The shop's calls into the library, all of them.
@MainActor public final class Checkout {
  /// What the shop shows its user.
  public enum State: Equatable, Sendable {
    case unlinked
    case linked(balance: String)
    case failed(String)
    /// The answer was lost: only the shop's server knows whether the order is paid.
    case unknown(order: String)
    case ordered(status: String)
  }

  private var account: (id: String, token: String?)?

  public init(server: String) {
    ZLVClient.initWithMerchantServerURL(server, merchantId: "M-1001", callbackUrl: "shop://done")
  }

  /// Links the user's wallet and says what came of it, which the account knows, not the page.
  public func link(
    phoneNumber: String, countryCode: String, over viewController: ZLVViewController?
  ) async -> State {
    await state(order: nil) {
      let user = ZLVPartnerDetails(phoneNumber: phoneNumber, countryCode: countryCode)
      let link = try await ZLVClient.linkAccount(
        withPaymentType: "zolva", zolvaPartnerDetails: user, viewController: viewController)
      let id = link.accountID ?? ""
      let info = try await ZLVClient.enquireAccount(withAccountID: id)
      guard info.accountStatus == "ENABLED" else { return .unlinked }
      let option = info.metadata.paymentOptions?.first
      account = (id, option?.token)
      return .linked(balance: "\(option?.balance.currency ?? "") \(option?.balance.value ?? "")")
    }
  }

  /// Pays an order; `amount` in euros.
  public func pay(
    order: String, amount: Double, over viewController: ZLVViewController?
  ) async -> State {
    guard let account else { return .unlinked }
    return await state(order: order) {
      let charge = try await ZLVClient.createTransaction(
        withPaymentType: "zolva", viewController: viewController,
        zolvaDetails: .init(accountID: account.id, paymentOptionToken: account.token),
        transactionDetails: .init(grossAmount: amount, orderID: order, currency: "EUR"),
        customerDetails: .init(
          phoneNumber: "+447700900123", firstName: "Ada", lastName: "Ng",
          email: "ada@example.com"),
        itemDetails: [.init(itemID: "espresso", name: "Espresso", price: amount, quantity: 1)])
      return .ordered(status: charge.transactionStatus ?? "")
    }
  }

  public func unlink() async -> State {
    guard let id = account?.id else { return .unlinked }
    return await state(order: nil) {
      _ = try await ZLVClient.disableAccount(withAccountID: id)
      account = nil
      return .unlinked
    }
  }

  /// For `onOpenURL`: every URL that the application is asked to open.
  public func open(_ url: URL) { ZLVClient.handleCallbackUrl(url) }

  private func state(order: String?, _ call: () async throws -> State) async -> State {
    do { return try await call() } catch let error as ZLVError {
      if let order, error.requestMayHaveTakenEffect { return .unknown(order: order) }
      return .failed(error.localizedDescription)
    } catch {
      return .failed("Cancelled.")
    }
  }
}
