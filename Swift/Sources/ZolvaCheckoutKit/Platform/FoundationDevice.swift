import Foundation

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
    case .machine: .text(Core.machine())
    case .name: .text(ProcessInfo.processInfo.hostName)
    case .systemVersion: .text(Self.systemVersion)
    case .threads: Core.threads().map(ZLVJSON.array)
    case .identifierForVendor, .mainScreenSize: nil
    }
  }

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
  nonisolated init() {}
  func show(_: ZLVPage, over _: ZLVViewController) {}
  func hide(_: ZLVPage, animated _: Bool) {}
}

#endif
