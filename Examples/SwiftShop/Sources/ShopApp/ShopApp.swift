#if canImport(SwiftUI)

import Checkout
import SwiftUI
import UIKit

/// The shop on a phone, to be shown in the application's window group. The scheme "shop" stands in
/// the application's Info.plist under CFBundleURLTypes.
public struct ShopView: View {
  private let checkout: Checkout
  @State private var state = Checkout.State.unlinked
  @State private var orders = 0
  @State private var isBusy = false

  /// `checkout` is the application's, made once.
  public init(checkout: Checkout) { self.checkout = checkout }

  public var body: some View {
    VStack(spacing: 16) {
      Text(verbatim: String(describing: state))
      Button("Link the wallet") {
        start { await checkout.link(phoneNumber: "7700900123", countryCode: "44", over: top) }
      }
      Button("Espresso, EUR 2.50") {
        orders += 1
        start { await checkout.pay(order: "o-\(orders)", amount: 2.5, over: top) }
      }
      Button("Unlink") { start { await checkout.unlink() } }
    }
    .disabled(isBusy)
    .onOpenURL { checkout.open($0) }
  }

  private func start(_ call: @escaping @MainActor () async -> Checkout.State) {
    isBusy = true
    Task {
      state = await call()
      isBusy = false
    }
  }

  /// What the wallet's page is shown over.
  private var top: UIViewController? {
    UIApplication.shared.connectedScenes.compactMap { $0 as? UIWindowScene }
      .first { $0.activationState == .foregroundActive }?.keyWindow?.rootViewController
  }
}

#endif
