import Foundation
import Testing
import ZolvaCheckoutKit

/// The merchant's server, the wallet and the analytics collector, in a process of their own.
@MainActor final class Sandbox {
  let url: String
  private let child: Child

  init() throws {
    child = try Child("ZLV_CONSOLE", ["sandbox"])
    url = String(child.line()!.split(separator: " ")[2])
    child.ignoreOutput()
  }
}

/// Whoever sits before the screen: presses the same on every page.
@MainActor final class User: ZLVUserInterface {
  enum Decision: String { case confirm, cancel, close }

  var decision = Decision.confirm
  private(set) var pagesSeen = 0
  private var shown: ZLVPage?

  nonisolated init() {}

  func show(_ page: ZLVPage, over _: ZLVViewController) {
    pagesSeen += 1
    shown = page
    let form = ["-s", "-o", "/dev/null", "-d", "decision=\(decision.rawValue)"]
    let target = ["-w", "%{redirect_url}\\n", page.url.absoluteString]
    let isClosing = decision == .close
    Task {
      guard !isClosing else {
        shown = nil
        return
      }
      let url = try Child("curl", form + target).line().flatMap(URL.init(string:))
      ZLVClient.handleCallbackUrl(try #require(url))
    }
  }

  func hide(_: ZLVPage, animated _: Bool) { shown = nil }
}
