import Foundation
import ZolvaCheckoutKit

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

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
  enum Decision: String, Codable, Sendable { case confirm, cancel, close }

  var decision = Decision.confirm
  private(set) var pagesSeen = 0
  private var shown: ZLVPage?

  nonisolated init() {}

  func show(_ page: ZLVPage, over _: ZLVViewController) {
    pagesSeen += 1
    shown = page
    let decision = decision
    let url = page.url
    Task {
      guard decision != .close else {
        shown = nil
        return
      }
      ZLVClient.handleCallbackUrl(try await Browser.decide(decision.rawValue, on: url))
    }
  }

  func hide(_: ZLVPage, animated _: Bool) { shown = nil }
}

/// Reads the wallet's page and submits its form, but follows no link out of it.
private final class Browser: NSObject, URLSessionTaskDelegate {
  static func decide(_ decision: String, on page: URL) async throws -> URL {
    let session = URLSession(configuration: .ephemeral, delegate: Browser(), delegateQueue: nil)
    defer { session.finishTasksAndInvalidate() }
    let text = String(decoding: try await session.data(from: page).0, as: UTF8.self)
    let action = text.components(separatedBy: "action=\"")[1].prefix { $0 != "\"" }
    var form = URLRequest(url: URL(string: String(action), relativeTo: page)!)
    form.httpMethod = "POST"
    form.httpBody = Data("decision=\(decision)".utf8)
    let answer = try await session.data(for: form).1 as! HTTPURLResponse
    return URL(string: answer.value(forHTTPHeaderField: "Location")!)!
  }

  func urlSession(
    _: URLSession, task _: URLSessionTask, willPerformHTTPRedirection _: HTTPURLResponse,
    newRequest _: URLRequest, completionHandler: @escaping @Sendable (URLRequest?) -> Void
  ) {
    completionHandler(nil)
  }
}
