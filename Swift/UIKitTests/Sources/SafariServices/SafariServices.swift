// What the library uses of the phone's SafariServices, from its public documentation.

import Foundation
import UIKit

@MainActor public protocol SFSafariViewControllerDelegate: AnyObject {
  func safariViewControllerDidFinish(_ controller: SFSafariViewController)
}

@MainActor open class SFSafariViewController: UIViewController {
  @MainActor public final class Configuration: NSObject {}

  public enum DismissButtonStyle: Int, Sendable {
    case done, close, cancel
  }

  public weak var delegate: (any SFSafariViewControllerDelegate)?
  public var dismissButtonStyle = DismissButtonStyle.done
  public let url: URL

  public init(url: URL, configuration _: Configuration) {
    self.url = url
    super.init()
  }

  public convenience init(url: URL) { self.init(url: url, configuration: Configuration()) }

  /// The closing button: the delegate hears of it while the dismissal is still to come.
  public func tapDismissButton() {
    delegate?.safariViewControllerDidFinish(self)
    dismiss(animated: true)
  }

  /// A link that opens another application: the delegate hears the same, and the page stays.
  public func openOtherApplication() {
    delegate?.safariViewControllerDidFinish(self)
  }
}
