import Foundation

/// What the library asks of its platform, as Swift has it.
@MainActor final class Host {
  nonisolated let platform: ZLVPlatform
  nonisolated let device: any Device = standardDevice
  private var pages: [Core.Handle: () -> ZLVPage?] = [:]

  nonisolated init(_ platform: ZLVPlatform) { self.platform = platform }

  nonisolated func fact(_ fact: Fact) -> ZLVJSON? {
    switch fact {
    case .bundleDisplayName: platform.applicationName.map(ZLVJSON.text) ?? device.fact(fact)
    case .bundleShortVersion: platform.applicationVersion.map(ZLVJSON.text) ?? device.fact(fact)
    default: device.fact(fact)
    }
  }

  func show(_ page: ZLVPage, over presenter: Presenter) {
    pages = pages.filter { $0.value() != nil }
    pages[page.handle] = { [weak page] in page }
    presenter.page = page
    platform.userInterface.show(page, over: presenter.viewController)
  }

  func hide(_ handle: Core.Handle, animated: Bool) {
    guard let page = pages.removeValue(forKey: handle)?() else { return }
    platform.userInterface.hide(page, animated: animated)
  }
}

/// A user interface whose window has a tree of view controllers, through which the library looks for
/// the page that a callback URL closes. Without one the page that was shown last is closed.
@MainActor protocol ViewTree {
  func keyWindowRootViewController() -> ZLVViewController?
  func kind(of viewController: ZLVViewController) -> ViewKind
  func presented(by viewController: ZLVViewController) -> ZLVViewController?
  func lastChild(of viewController: ZLVViewController) -> ZLVViewController?
}

enum ViewKind {
  case other
  case navigationController
  case page(ZLVPage)
}

/// Facts about the device and the application. Any thread, several at once.
protocol Device: Sendable {
  func fact(_ fact: Fact) -> ZLVJSON?
}

/// The numbers are the C interface's.
enum Fact: Int32, CaseIterable {
  case identifierForVendor = 1
  case mainScreenSize
  case bundleDisplayName
  case bundleShortVersion
  case preferredLocalizations
  case preferredLanguages
  case machine
  case name
  case systemVersion
  case threads
}

/// Whether this is the main thread, or the thread that runs the main queue where there is no such.
var isOnMain: Bool {
  Thread.isMainThread || DispatchQueue.getSpecific(key: mainQueueKey) != nil
}

private let mainQueueKey = {
  let key = DispatchSpecificKey<Void>()
  DispatchQueue.main.setSpecific(key: key, value: ())
  return key
}()

/// Runs `action` on the main thread: at once where this is it, else later.
func onMain(_ action: @escaping @MainActor @Sendable () -> Void) {
  if isOnMain {
    MainActor.assumeIsolated(action)
  } else {
    DispatchQueue.main.async(execute: action)
  }
}
