import Foundation

/// A page of the wallet's that is to be shown or is on the screen. Its call completes once this has
/// gone, so whatever shows the page keeps it until the screen is free again.
public final class ZLVPage: Sendable {
  /// http or https.
  public let url: URL
  /// Whether it is to come with an animation.
  public let isAnimated: Bool
  /// The label of the closing button: 0 done, 1 close, 2 cancel.
  public let dismissButtonStyle: Int

  let handle: Core.Handle
  private let whenGone = Locked<(@MainActor @Sendable () -> Void)?>(nil)

  init(handle: Core.Handle, url: URL, isAnimated: Bool, dismissButtonStyle: Int) {
    self.handle = handle
    self.url = url
    self.isAnimated = isAnimated
    self.dismissButtonStyle = dismissButtonStyle
  }

  deinit {
    Core.pageClosed(handle)
    if let action = whenGone.value { DispatchQueue.main.async(execute: action) }
  }

  /// Runs `action` once this is gone.
  func afterEnd(_ action: @escaping @MainActor @Sendable () -> Void) {
    whenGone.value = action
  }
}

/// What a page is shown over, on behalf of one call.
@MainActor final class Presenter {
  let viewController: ZLVViewController
  weak var page: ZLVPage?

  init(_ viewController: ZLVViewController) { self.viewController = viewController }

  /// Lets an answer wait until the page has left the screen: nothing else can be shown before, and
  /// a callback URL is answered while the page is still on its way out.
  static func hold(_ answer: @escaping Core.Answer, _ presenter: Presenter?) -> Core.Answer {
    { result in
      guard let page = presenter?.page else { return answer(result) }
      page.afterEnd { answer(result) }
    }
  }
}

/// A value that threads share.
final class Locked<Value>: @unchecked Sendable {
  private let lock = NSLock()
  private var locked: Value

  init(_ value: Value) { locked = value }

  var value: Value {
    get { lock.withLock { locked } }
    set { lock.withLock { locked = newValue } }
  }

  func withLock<Result>(_ body: (inout Value) -> Result) -> Result {
    lock.withLock { body(&locked) }
  }
}
