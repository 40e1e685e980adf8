import Foundation
import SafariServices
import Testing
import UIKit

@testable import ZolvaCheckoutKit

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

/// A merchant's server that asks for a page after every link, without a network.
final class Server: ZLVURLSession {
  static let shared = Server()
  let uploads = Locked<[String]>([])

  func dataTask(
    with request: URLRequest,
    completion: @escaping @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void
  ) {
    let isUpload = request.url!.path.hasSuffix("/upload")
    if isUpload {
      uploads.withLock { $0.append(String(decoding: request.httpBody!, as: UTF8.self)) }
    }
    let page =
      #"{"status_code": "201", "account_id": "a", "actions": [{"name": "activation-deeplink", "url": "https://wallet.example/1"}]}"#
    DispatchQueue.global().async {
      completion(.success((Data((isUpload ? "{}" : page).utf8), isUpload ? 200 : 201)))
    }
  }
}

/// A phone with windows that are there for one test.
@MainActor struct Phone {
  let shop = UIViewController()

  /// The shop's root is what `root` makes of it.
  init(root: (UIViewController) -> UIViewController = { $0 }) {
    if !ZLVPlatform.isInstalled {
      var platform = ZLVPlatform()
      platform.urlSession = Server.shared
      platform.applicationVersion = "2.1"
      ZLVPlatform.install(platform)
      ZLVClient.initWithMerchantServerURL(
        "https://shop.example", merchantId: "M-1001", callbackUrl: "shop://done")
    }
    UIApplication.shared.connectedScenes = []
    Self.window(root(shop))
  }

  /// A key window in a scene of its own.
  @discardableResult static func window(
    _ root: UIViewController, _ state: UIScene.ActivationState = .foregroundActive
  ) -> UIWindow {
    let scene = UIWindowScene()
    scene.activationState = state
    UIApplication.shared.connectedScenes.insert(scene)
    let window = UIWindow(windowScene: scene)
    window.rootViewController = root
    window.makeKeyAndVisible()
    return window
  }

  /// A link, and its page over `controller`.
  func link(over controller: UIViewController) async throws -> Call {
    let call = Call(over: controller)
    try await until { controller.presentedViewController != nil }
    try await turnAround()
    #expect(call.answers.isEmpty)
    return call
  }

  /// The page over the shop; to be let go at once, as the page lives until then.
  var page: SFSafariViewController? { shop.presentedViewController as? SFSafariViewController }

  func comeBack() { ZLVClient.handleCallbackUrl(URL(string: "shop://done?result=success")!) }
}

/// A link under way.
@MainActor final class Call {
  private(set) var answers: [Result<ZLVLinkAccountResult, ZLVError>] = []
  /// Whether what the completion presented over the controller is there.
  private(set) var couldPresent = false

  init(over controller: UIViewController?) {
    ZLVClient.linkAccount(
      withPaymentType: "zolva", zolvaPartnerDetails: nil, viewController: controller
    ) { [weak controller] answer in
      self.answers.append(answer)
      let receipt = UIViewController()
      controller?.present(receipt, animated: true)
      self.couldPresent = controller?.presentedViewController === receipt
    }
  }

  /// Checks that it is answered, once, and that the next presentation worked.
  func end() async throws {
    try await until { !answers.isEmpty }
    try await turnAround()
    #expect(answers.count == 1)
    #expect(try answers.first?.get().accountID == "a")
    #expect(couldPresent)
  }
}

/// Lets the main queue go on until `condition` holds.
@MainActor func until(_ condition: () -> Bool) async throws {
  let limit = Date(timeIntervalSinceNow: 20)
  while !condition() {
    try #require(Date() < limit)
    await Task.yield()
  }
}

/// Lets all pass that is on its way through the main queue, transitions too.
@MainActor func turnAround() async throws {
  await withCheckedContinuation { (continuation: CheckedContinuation<Void, Never>) in
    DispatchQueue.main.asyncAfter(deadline: .now() + 0.03) { continuation.resume() }
  }
}
