// What the README shows: compiled, never run.

import ZolvaCheckoutKit

@MainActor private func show(_: String?, _: [Any]?) {}
@MainActor private func show(_: String, askServerFirst: Bool) {}

@MainActor func snippet(viewController: ZLVViewController?) async throws {
  ZLVClient.initWithMerchantServerURL(
    "https://shop.example/pay", merchantId: "M-1001", callbackUrl: "shop://done")

  let user = ZLVPartnerDetails(phoneNumber: "7700900123", countryCode: "44")
  do {
    let link = try await ZLVClient.linkAccount(
      withPaymentType: "zolva", zolvaPartnerDetails: user, viewController: viewController)
    // If there was a page it is gone. What the user did there, the server knows.
    let account = try await ZLVClient.enquireAccount(withAccountID: link.accountID ?? "")
    show(account.accountStatus, account.metadata.paymentOptions)
  } catch let error as ZLVError {
    show(error.localizedDescription, askServerFirst: error.requestMayHaveTakenEffect)
  }
}
