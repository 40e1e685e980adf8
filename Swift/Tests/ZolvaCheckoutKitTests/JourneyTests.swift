import Foundation
import Testing
import ZolvaCheckoutKit

/// The whole journey, each time in a process of its own: a process has one platform.
@Suite struct JourneyTests {
  @Test(arguments: ["Foundation", "libcurl"]) func journey(session: String) async {
    await #expect(processExitsWith: .success) { [session] in
      do { try await Journey(session: session).run() } catch { Issue.record(error) }
    }
  }
}

@MainActor private final class Journey {
  private let sandbox: Sandbox
  private let user = User()
  private let window = ZLVViewController()
  private var orders = 0

  init(session: String) throws {
    sandbox = try Sandbox()
    var platform = ZLVPlatform()
    if session == "Foundation" { platform.urlSession = ZLVFoundationSession() }
    platform.applicationVersion = "2.1"
    platform.analyticsRootURL = URL(string: sandbox.url + "/")
    platform.userInterface = user
    ZLVPlatform.install(platform)
  }

  func run() async throws {
    configure(sandbox.url)
    let details = ZLVPartnerDetails(phoneNumber: "7700900123", countryCode: "44")
    let link = try await ZLVClient.linkAccount(
      withPaymentType: "zolva", zolvaPartnerDetails: details, viewController: window)
    #expect(link.statusCode == "201")
    #expect(link.actions?.first?.name == "activation-deeplink")
    #expect(user.pagesSeen == 1)

    let id = try #require(link.accountID)
    let account = try await ZLVClient.enquireAccount(withAccountID: id)
    #expect(account.accountStatus == "ENABLED")
    let option = try #require(account.metadata.paymentOptions?.first)
    #expect(option.active)
    #expect(option.balance.currency == "EUR")

    let zolva = ZLVZolvaDetails(accountID: id, paymentOptionToken: option.token)
    let paid = try await charge(zolva, 12.35)
    #expect(paid.transactionStatus == "settlement")
    #expect(paid.grossAmount == "12.35")
    #expect(user.pagesSeen == 1)
    for decision in [User.Decision.confirm, .cancel, .close] {
      user.decision = decision
      #expect(try await charge(zolva, 150).transactionStatus == "pending")
    }
    #expect(user.pagesSeen == 4)

    let refused = await error {
      try await self.charge(.init(accountID: id, paymentOptionToken: "none"), 5)
    }
    #expect(refused?.domain == ZLVErrorDomain)
    #expect(refused?.code == 404)
    #expect(refused?.requestMayHaveTakenEffect == false)
    #expect(refused?.localizedDescription.isEmpty == false)

    configure("http://127.0.0.1:1")
    let lost = await error { try await self.charge(zolva, 5) }
    #expect((lost as? URLError)?.code == .cannotConnectToHost || lost?.code == -1004)
    #expect(lost?.domain == NSURLErrorDomain)
    #expect(lost?.requestMayHaveTakenEffect == false)

    configure(sandbox.url)
    let unlinked = try await ZLVClient.disableAccount(withAccountID: id)
    #expect(unlinked.accountStatus == "DISABLED")
    #expect(await ZLVPlatform.untilIdle(limit: 30))
  }

  private func configure(_ server: String) {
    ZLVClient.initWithMerchantServerURL(server, merchantId: "M-1001", callbackUrl: "shop://done")
  }

  private func charge(_ zolva: ZLVZolvaDetails, _ amount: Double) async throws
    -> ZLVTransactionResult
  {
    orders += 1
    return try await ZLVClient.createTransaction(
      withPaymentType: "zolva", viewController: window, zolvaDetails: zolva,
      transactionDetails: .init(grossAmount: amount, orderID: "o-\(orders)", currency: "EUR"),
      customerDetails: .init(
        phoneNumber: "+447700900123", firstName: "Ada", email: "ada@example.com"),
      itemDetails: [.init(itemID: "1", name: "Coffee", price: amount, quantity: 1)])
  }

  private func error<Record>(_ call: () async throws -> Record) async -> ZLVError? {
    do { _ = try await call() } catch { return error as? ZLVError }
    return nil
  }
}
