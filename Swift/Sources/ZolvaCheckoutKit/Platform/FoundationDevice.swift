import Foundation

#if canImport(UIKit)
import UIKit
#endif

/// What Foundation knows of the device and the application, asked afresh each time.
struct FoundationDevice: Device {
  func fact(_ fact: Fact) -> ZLVJSON? {
    switch fact {
    case .bundleDisplayName:
      (Bundle.main.object(forInfoDictionaryKey: "CFBundleDisplayName") as? String).map(ZLVJSON.text)
    case .bundleShortVersion:
      (Bundle.main.infoDictionary?["CFBundleShortVersionString"] as? String).map(ZLVJSON.text)
    case .preferredLocalizations: .array(Bundle.main.preferredLocalizations.map(ZLVJSON.text))
    case .preferredLanguages: .array(Locale.preferredLanguages.map(ZLVJSON.text))
    case .machine: .text(Self.machine)
    case .name: .text(ProcessInfo.processInfo.hostName)
    case .systemVersion: .text(Self.systemVersion)
    case .threads: Self.threads
    case .identifierForVendor, .mainScreenSize: nil
    }
  }

  #if canImport(UIKit)
  /// Empty where the system does not tell.
  private static var machine: String {
    var name = [CTL_HW, HW_MACHINE]
    var buffer = [CChar](repeating: 0, count: 100)
    var size = buffer.count
    guard sysctl(&name, 2, &buffer, &size, nil, 0) == 0 else { return "" }
    return String(decoding: buffer.prefix { $0 != 0 }.map(UInt8.init(bitPattern:)), as: UTF8.self)
  }

  private static var threads: ZLVJSON? { Core.threads().map(ZLVJSON.array) }
  #else
  #if arch(arm64)
  private static let machine = "aarch64"
  #else
  private static let machine = "x86_64"
  #endif
  private static let threads: ZLVJSON? = nil
  #endif

  private static var systemVersion: String {
    let version = ProcessInfo.processInfo.operatingSystemVersion
    return "\(version.majorVersion).\(version.minorVersion).\(version.patchVersion)"
  }
}

#if !canImport(UIKit)

let standardDevice: any Device = FoundationDevice()
let standardUserInterface: any ZLVUserInterface = NoUserInterface()

/// What pages are shown over: whatever the host's `ZLVUserInterface` makes of it. On a phone this is
/// `UIViewController`.
@MainActor open class ZLVViewController {
  public nonisolated init() {}
}

/// Shows nothing: each page is gone at once.
struct NoUserInterface: ZLVUserInterface {
  func show(_: ZLVPage, over _: ZLVViewController) {}
  func hide(_: ZLVPage, animated _: Bool) {}
}

#endif
