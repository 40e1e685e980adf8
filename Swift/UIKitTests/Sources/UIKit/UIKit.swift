// What the library uses of the phone's UIKit, written from its public documentation, and behaving as
// it says: transitions take their time and end on the main queue; a controller is kept by what
// presents it and let go when its dismissal has ended; what cannot be presented is not.

import Foundation

@MainActor open class UIResponder: NSObject {
  public nonisolated override init() { super.init() }
}

@MainActor public final class UIWindow: UIResponder {
  public var rootViewController: UIViewController?
  public private(set) var isKeyWindow = false
  public weak var windowScene: UIWindowScene?

  public init(windowScene: UIWindowScene) {
    self.windowScene = windowScene
    super.init()
    windowScene.windows.append(self)
  }

  public func makeKeyAndVisible() {
    for window in windowScene?.windows ?? [] { window.isKeyWindow = false }
    isKeyWindow = true
  }
}

@MainActor open class UIScene: UIResponder {
  public enum ActivationState: Int, Sendable {
    case unattached = -1
    case foregroundActive, foregroundInactive, background
  }

  public var activationState = ActivationState.foregroundActive
}

@MainActor public final class UIWindowScene: UIScene {
  public fileprivate(set) var windows: [UIWindow] = []
  public var keyWindow: UIWindow? { windows.first(where: \.isKeyWindow) }
}

@MainActor public final class UIApplication: UIResponder {
  public static let shared = UIApplication()
  public var connectedScenes: Set<UIScene> = []
}

public enum UIModalPresentationStyle: Int, Sendable {
  case automatic = -2
  case none = -1
  case fullScreen, pageSheet
}

@MainActor open class UIViewController: UIResponder {
  public private(set) var presentedViewController: UIViewController?
  public private(set) weak var presentingViewController: UIViewController?
  public private(set) var isBeingDismissed = false
  open private(set) var children: [UIViewController] = []
  public fileprivate(set) weak var parent: UIViewController?
  open var modalPresentationStyle = UIModalPresentationStyle.automatic
  private var isInTransition = false
  private var isViewLoaded = false

  public nonisolated override init() { super.init() }

  open func viewDidLoad() {}

  public func addChild(_ child: UIViewController) {
    child.parent = self
    children.append(child)
  }

  /// Not while another controller is presented or on its way, nor outside a window.
  open func present(
    _ controller: UIViewController, animated: Bool, completion: (@MainActor () -> Void)? = nil
  ) {
    guard presentedViewController == nil, !isInTransition, isInWindow else { return }
    presentedViewController = controller
    controller.presentingViewController = self
    if !controller.isViewLoaded {
      controller.isViewLoaded = true
      controller.viewDidLoad()
    }
    transition(animated) { completion?() }
  }

  /// What this controller presents or, where it presents nothing, the controller itself.
  open func dismiss(animated: Bool, completion: (@MainActor () -> Void)? = nil) {
    guard let presented = presentedViewController else {
      presentingViewController?.dismiss(animated: animated, completion: completion)
      return
    }
    guard !isInTransition else { return }
    presented.isBeingDismissed = true
    transition(animated) { [self] in
      letGo()
      completion?()
    }
  }

  /// What is presented goes, and all that is above it.
  private func letGo() {
    presentedViewController?.letGo()
    presentedViewController = nil
  }

  private func transition(_ animated: Bool, end: @escaping @MainActor () -> Void) {
    isInTransition = true
    DispatchQueue.main.asyncAfter(deadline: .now() + (animated ? 0.01 : 0)) { [self] in
      isInTransition = false
      end()
    }
  }

  private var isInWindow: Bool {
    let windows = UIApplication.shared.connectedScenes.compactMap { $0 as? UIWindowScene }
      .flatMap(\.windows)
    var top = self
    while let next = top.parent ?? top.presentingViewController { top = next }
    return windows.contains { $0.rootViewController === top }
  }
}

@MainActor open class UINavigationController: UIViewController {
  public convenience init(rootViewController: UIViewController) {
    self.init()
    pushViewController(rootViewController, animated: false)
  }

  open func pushViewController(_ controller: UIViewController, animated _: Bool) {
    addChild(controller)
  }
}

@MainActor public final class UIDevice: NSObject {
  public static let current = UIDevice()
  public var name = "Ada's phone"
  public var systemVersion = "15.8"
  public var identifierForVendor: UUID? = UUID(
    uuidString: "E621E1F8-C36C-495A-93FC-0C247A3E6E5F")
}

@MainActor public final class UIScreen: NSObject {
  public static let main = UIScreen()
  public var bounds = CGRect(x: 0, y: 0, width: 390, height: 844)
}
