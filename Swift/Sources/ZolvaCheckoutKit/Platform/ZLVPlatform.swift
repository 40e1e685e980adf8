import Foundation

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

/// What the library uses of the machine it runs on. An application on a phone needs none of this:
/// configuring installs what fits. A command-line tool, or a test, replaces parts and installs the
/// result before it configures:
///
/// ```swift
/// var platform = ZLVPlatform()
/// platform.applicationVersion = "2.1"
/// platform.userInterface = MyBrowser()
/// ZLVPlatform.install(platform)
/// ```
public struct ZLVPlatform: Sendable {
  /// What this process's Foundation has and, on a phone, UIKit.
  public init() {}

  /// As the user sees it; absent: the main bundle's "CFBundleDisplayName".
  public var applicationName: String?
  /// Such as "2.1"; absent: the main bundle's "CFBundleShortVersionString". One of them is needed.
  public var applicationVersion: String?
  /// Where usage events go, ending in "/"; absent: to the usual service.
  public var analyticsRootURL: URL?
  /// Sends the requests. Nil, on Linux only, is the library's own session by libcurl: Foundation's
  /// ends the program there, or never answers, on some of what a server may send.
  public var urlSession: (any ZLVURLSession)? = standardSession
  /// Shows the wallet's pages.
  public var userInterface: any ZLVUserInterface = standardUserInterface
  /// Writes a line of the diagnostic log. Any thread, several at once.
  public var log: @Sendable (String) -> Void = { line in
    NSLog(line.replacingOccurrences(of: "%", with: "%%"))
  }
  /// Told of a fault in the midst of a call, such as an answer whose structure does not fit its
  /// record; the call is answered all the same.
  public var fault: @MainActor @Sendable (String) -> Void = { text in
    NSLog(text.replacingOccurrences(of: "%", with: "%%"))
  }

  /// Gives the library its platform until the process ends. Once, before it is configured; a second
  /// time ends the program.
  @MainActor public static func install(_ platform: ZLVPlatform) {
    Core.install(Host(platform))
    isInstalled = true
  }

  @MainActor static private(set) var isInstalled = false

  /// Waits until nothing of the library's is under way: every call answered, its page gone, every
  /// usage event uploaded or lost. For tools, before they end. Returns false once `limit` seconds
  /// have passed.
  @MainActor public static func untilIdle(limit: TimeInterval) async -> Bool {
    let end = Date(timeIntervalSinceNow: limit)
    while !Core.isIdle() {
      if Date() > end { return false }
      do { try await Task.sleep(nanoseconds: 10_000_000) } catch { return false }
    }
    return true
  }
}

#if canImport(Darwin)
private let standardSession: (any ZLVURLSession)? = ZLVFoundationSession()
#else
private let standardSession: (any ZLVURLSession)? = nil
#endif

/// Sends HTTP requests.
public protocol ZLVURLSession: Sendable {
  /// Sends `request` and calls `completion` once, with the answer's body and status code or with an
  /// error; later, never from inside. A POST must not go out twice, whatever becomes of its
  /// connection. Any thread, several at once. One that is never called, and let go, is the error
  /// `URLError.cancelled`.
  ///
  /// Of an `NSError` the domain, the code and what is text or number in the user info arrive in the
  /// call's `ZLVError`.
  func dataTask(
    with request: URLRequest,
    completion: @escaping @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void)
}

/// Shows the wallet's pages.
@MainActor public protocol ZLVUserInterface: Sendable {
  /// Shows a page over a view controller, full screen with a button to close it, and keeps `page` for
  /// as long as it is there. Letting it go tells the library that the page is gone.
  func show(_ page: ZLVPage, over viewController: ZLVViewController)
  /// Takes a page off the screen, and lets it go when it is gone.
  func hide(_ page: ZLVPage, animated: Bool)
}
