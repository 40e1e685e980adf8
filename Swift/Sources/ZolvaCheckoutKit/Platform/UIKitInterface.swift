#if canImport(UIKit)

import SafariServices
import UIKit

/// What pages are shown over.
public typealias ZLVViewController = UIViewController

let standardUserInterface: any ZLVUserInterface = UIKitInterface()

/// Pages in the system's browser.
@MainActor final class UIKitInterface: ZLVUserInterface {
  private var shown: [() -> ZLVWebViewController?] = []

  nonisolated init() {}

  func show(_ page: ZLVPage, over viewController: ZLVViewController) {
    let browser = ZLVWebViewController(url: page.url)
    browser.page = page
    browser.modalPresentationStyle = .fullScreen
    shown = shown.filter { $0() != nil } + [{ [weak browser] in browser }]
    // Where it cannot be presented nobody keeps it, and the page is gone.
    viewController.present(browser, animated: page.isAnimated) { [weak browser] in
      browser?.presentationHasEnded()
    }
  }

  func hide(_ page: ZLVPage, animated: Bool) {
    shown.compactMap { $0() }.first { $0.page === page }?.hide(animated: animated)
  }

  /// Each scene has one; that of an active scene first.
  private var keyWindows: [UIWindow] {
    UIApplication.shared.connectedScenes.compactMap { $0 as? UIWindowScene }
      .sorted { $0.activationState.order < $1.activationState.order }
      .compactMap(\.keyWindow)
  }
}

extension UIKitInterface: ViewTree {
  /// Where several scenes have a key window, the one whose page is on top.
  func keyWindowRootViewController() -> ZLVViewController? {
    let roots = keyWindows.compactMap(\.rootViewController)
    return roots.first { isPageOnTop(of: $0) } ?? roots.first
  }

  func kind(of viewController: ZLVViewController) -> ViewKind {
    // Exactly these classes: a subclass may have a stack or a page of its own making.
    if type(of: viewController) == UINavigationController.self { return .navigationController }
    if type(of: viewController) == ZLVWebViewController.self,
      let page = (viewController as? ZLVWebViewController)?.page
    {
      return .page(page)
    }
    return .other
  }

  func presented(by viewController: ZLVViewController) -> ZLVViewController? {
    viewController.presentedViewController
  }

  func lastChild(of viewController: ZLVViewController) -> ZLVViewController? {
    viewController.children.last
  }

  private func isPageOnTop(of root: UIViewController) -> Bool {
    var top = root
    while true {
      let kind = kind(of: top)
      if case .navigationController = kind {
        guard let next = lastChild(of: top) else { return false }
        top = next
      } else if let next = presented(by: top) {
        top = next
      } else if case .page = kind {
        return true
      } else {
        return false
      }
    }
  }
}

extension UIScene.ActivationState {
  fileprivate var order: Int {
    switch self {
    case .foregroundActive: 0
    case .foregroundInactive: 1
    default: 2
    }
  }
}

/// A page on the screen. The call behind it completes when this controller is destroyed and not
/// before: the delegate's `safariViewControllerDidFinish` comes too early to present anything else,
/// and comes as well when a link opens another application in which the payment goes on. So it has
/// no delegate.
final class ZLVWebViewController: SFSafariViewController {
  var page: ZLVPage?
  private var isPresented = false
  /// To be dismissed as soon as it is presented: in between a dismissal would be lost.
  private var dismissal: (@MainActor () -> Void)?

  override func viewDidLoad() {
    super.viewDidLoad()
    dismissButtonStyle = (page?.dismissButtonStyle).flatMap(DismissButtonStyle.init) ?? .close
  }

  func presentationHasEnded() {
    isPresented = true
    dismissal?()
  }

  func hide(animated: Bool) {
    guard isPresented else {
      dismissal = { [weak self] in self?.dismiss(animated: animated) }
      return
    }
    dismiss(animated: animated)
  }
}

#endif
